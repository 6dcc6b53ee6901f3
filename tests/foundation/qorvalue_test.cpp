#include "qor/qorvalue.h"

#include "tests/support/printers.h"

#include <gtest/gtest.h>

#include <limits>
#include <type_traits>

using qor::QORValue;
using qor::String;

namespace
{
TEST(QORValueToString, GivesTheDecimalText)
{
    EXPECT_EQ(String("0"), QORValue(0).toString(QORValue::nilValue));
    EXPECT_EQ(String("168"), QORValue(168).toString(QORValue::nilValue));
    EXPECT_EQ(String("2147483647"), QORValue(std::numeric_limits<int>::max()).toString(QORValue::nilValue));
}

TEST(QORValueToString, PutsAMinusBeforeANegativeInt)
{
    EXPECT_EQ(String("-1"), QORValue(-1).toString(QORValue::nilValue));
    EXPECT_EQ(String("-2147483648"), QORValue(std::numeric_limits<int>::min()).toString(QORValue::nilValue));
}

TEST(QORValueToString, WritesAnUnsignedNumberWithoutASign)
{
    EXPECT_EQ(String("2147483649"), QORValue(2147483649u).toString(QORValue::nilValue));
    EXPECT_EQ(String("4294967295"), QORValue(4294967295u).toString(QORValue::nilValue));
}

TEST(QORValueToHexString, GivesThePrefixAndEightUpperCaseDigits)
{
    EXPECT_EQ(String("0x00000000"), QORValue(0).toHexString(true));
    EXPECT_EQ(String("0x80070490"), QORValue(0x80070490u).toHexString(true));
    EXPECT_EQ(String("0x0000ABCD"), QORValue(0xABCD).toHexString(true));
}

TEST(QORValueToHexString, WithoutPrefixGivesOnlyTheDigits)
{
    EXPECT_EQ(String("80070490"), QORValue(0x80070490u).toHexString(false));
    EXPECT_EQ(String("0000000F"), QORValue(15).toHexString(false));
}

TEST(QORValueToHexString, ReadsANegativeIntAsItsTwosComplement)
{
    EXPECT_EQ(String("0xFFFFFFFF"), QORValue(-1).toHexString(true));
    EXPECT_EQ(String("0x80070005"), QORValue(static_cast<int>(0x80070005u)).toHexString(true));
}

TEST(QORValueType, HasAVirtualDestructorAndAnUnsignedNilValue)
{
    EXPECT_TRUE(std::has_virtual_destructor_v<QORValue>);
    EXPECT_TRUE((std::is_same_v<const unsigned int, decltype(QORValue::nilValue)>));
}
}
