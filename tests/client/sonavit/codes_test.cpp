#include "sonavit/codes.h"

#include "sonavit/problem.h"

#include <gtest/gtest.h>

namespace
{
using sonavit::knownCode;

TEST(KnownCode, HasNameAndWords)
{
    ASSERT_NE(nullptr, knownCode(0x88890008));
    EXPECT_STREQ("AUDCLNT_E_UNSUPPORTED_FORMAT", knownCode(0x88890008)->name);
    EXPECT_STREQ("the format is not supported", knownCode(0x88890008)->words);
    EXPECT_EQ(nullptr, knownCode(0x8889DEAD));
    EXPECT_EQ(nullptr, knownCode(0));
}

/// The lookup depends on the order of the table, so that a code at each end and of each family must be found.
TEST(KnownCode, IsFoundInEachFamily)
{
    for (const std::uint32_t code : {0x1U, 0x15U, 0x8000000AU, 0x80004003U, 0x80010108U, 0x80020005U, 0x80030005U,
                                     0x80040154U, 0x800401F0U, 0x80070005U, 0x80070490U, 0x800706BAU, 0x80080005U,
                                     0x800F020BU, 0x88890001U, 0x88890029U, 0xE0000204U, 0xE000020BU, 0xE0000225U})
        EXPECT_NE(nullptr, knownCode(code)) << std::hex << code;
}

TEST(KnownCode, OfTheWaveFunctionsGivesOtherCallsNoWords)
{
    EXPECT_STREQ("MMSYSERR_NOTSUPPORTED", knownCode(8)->name);
    EXPECT_EQ("0x00000008", sonavit::reasonText(8));
    EXPECT_EQ("0x80010108, the object has lost its connection",
              sonavit::reasonText(static_cast<std::int32_t>(0x80010108)));
}
}
