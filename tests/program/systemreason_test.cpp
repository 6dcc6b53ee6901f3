#include "tools/sonavit/systemreason.h"

#include <gtest/gtest.h>

TEST(ProgramSystemReason, IsTheCodeAndItsMeaning)
{
    EXPECT_EQ("0x80070005, access denied", sonavit::program::reasonText(E_ACCESSDENIED));
    EXPECT_EQ("0x80004005, unspecified error", sonavit::program::reasonText(E_FAIL));
}

TEST(ProgramSystemReason, IsTheCodeAloneIfItHasNoWords)
{
    EXPECT_EQ("0x8889DEAD", sonavit::program::reasonText(static_cast<HRESULT>(0x8889DEAD)));
}
