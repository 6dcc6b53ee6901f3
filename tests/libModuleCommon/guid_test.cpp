#include "libModuleCommon/guid.h"

#include "tests/support/printers.h"

#include <gtest/gtest.h>

namespace
{
const GUID everyDigit = {0x01234567, 0x89AB, 0xCDEF, {0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10}};
}

TEST(GuidToString, WritesTheGroupsInUpperCaseBetweenBraces)
{
    GUID guid = everyDigit;

    EXPECT_EQ(qor::String("{01234567-89AB-CDEF-FEDC-BA9876543210}"), guidToString(&guid));
}

TEST(GuidToString, WritesLeadingZeros)
{
    GUID guid = {0x0000000A, 0x000B, 0x000C, {0x00, 0x0D, 0x00, 0x00, 0x00, 0x00, 0x00, 0x0E}};

    EXPECT_EQ(qor::String("{0000000A-000B-000C-000D-00000000000E}"), guidToString(&guid));
}

TEST(GuidToString, WritesTheZeroIdentifier)
{
    GUID guid = {};

    EXPECT_EQ(qor::String("{00000000-0000-0000-0000-000000000000}"), guidToString(&guid));
}

TEST(GuidToString, WritesTheHighestIdentifier)
{
    GUID guid = {0xFFFFFFFF, 0xFFFF, 0xFFFF, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}};

    EXPECT_EQ(qor::String("{FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF}"), guidToString(&guid));
}

TEST(GuidToString, OnlyReadsItsArgument)
{
    GUID guid = everyDigit;

    guidToString(&guid);

    EXPECT_TRUE(guid == everyDigit);
}
