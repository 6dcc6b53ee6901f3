#include "simulator/machine/valuetext.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{
TEST(ValueTextNumber, ReadsDecimalDigitsOnly)
{
    EXPECT_EQ(0u, sim::numberFromText("0"));
    EXPECT_EQ(4294967295u, sim::numberFromText("4294967295"));
    for (const char* wrong : {"", "01", "-1", "+1", " 1", "1.0", "4294967296", "12345678901", "0x1"})
        EXPECT_FALSE(sim::numberFromText(wrong)) << wrong;
}

TEST(ValueTextGuid, ReadsBothCasesAndWritesUpperCase)
{
    const auto guid = sim::guidFromText("{0a1b2c3D-4e5F-6071-8293-a4b5c6d7e8f9}");

    ASSERT_TRUE(guid);
    EXPECT_EQ("{0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9}", sim::guidText(*guid));
    for (const char* wrong : {"", "{}", "0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9",
                              "{0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8FG}", "{0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9} "})
        EXPECT_FALSE(sim::guidFromText(wrong)) << wrong;
}

TEST(ValueTextResult, IsAHexadecimalNumberOfEightDigits)
{
    EXPECT_EQ(E_FAIL, sim::resultFromText("0x80004005"));
    EXPECT_EQ(E_FAIL, sim::resultFromText(sim::resultText(E_FAIL)));
    EXPECT_EQ("0x00000001", sim::resultText(S_FALSE));
    for (const char* wrong : {"", "0x8000400", "80004005", "0X80004005", "0x8000400G", "0xG0004005", "0x800040055"})
        EXPECT_FALSE(sim::resultFromText(wrong)) << wrong;
}

TEST(ValueTextDecimal, ReadsBackAsTheSameNumber)
{
    for (const float value : {0.0f, -0.1f, 1e-3f, -65.25f, 3.4e38f, std::numeric_limits<float>::denorm_min()})
        EXPECT_EQ(value, sim::fromDecimal(sim::decimal(value)));
    for (const char* wrong : {"", "-", "1x", "inf", "nan", "1e300"})
        EXPECT_FALSE(sim::fromDecimal(wrong)) << wrong;
}
}
