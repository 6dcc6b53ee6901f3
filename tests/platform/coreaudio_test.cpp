#include "platform/coreaudio.h"

#include <gtest/gtest.h>

TEST(PlatformText, KeepsEveryUnitInBothDirections)
{
    const unsigned short units[] = {0x41, 0xE9, 0x20AC, 0xD83D, 0xDE00, 0xFFFF, 0};

    const WCHAR* const wide = platform::wide(units);
    const unsigned short* const back = platform::ucs2(wide);

    EXPECT_EQ(units, back);
    for (std::size_t index = 0; index < sizeof(units) / sizeof(units[0]); ++index)
        EXPECT_EQ(units[index], wide[index]) << index;
}

TEST(PlatformText, LeavesNullNull)
{
    EXPECT_EQ(nullptr, platform::wide(nullptr));
    EXPECT_EQ(nullptr, platform::ucs2(nullptr));
}

TEST(PlatformIdentifiers, AreEqualOnlyWhenEveryFieldIs)
{
    const GUID identifier = {0x01020304, 0x0506, 0x0708, {9, 10, 11, 12, 13, 14, 15, 16}};

    EXPECT_TRUE(identifier == GUID(identifier));
    for (std::size_t index = 0; index < sizeof(GUID); ++index)
    {
        GUID other = identifier;
        reinterpret_cast<unsigned char*>(&other)[index] ^= 0x80;
        EXPECT_TRUE(identifier != other) << "byte " << index;
    }
}

TEST(PlatformPropertyKeys, AreEqualOnlyWhenBothFieldsAre)
{
    const PROPERTYKEY key = {GUID{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}}, 2};
    PROPERTYKEY otherNumber = key;
    otherNumber.pid += 1;
    PROPERTYKEY otherFormat = key;
    otherFormat.fmtid.Data1 ^= 1;

    EXPECT_TRUE(key == PROPERTYKEY(key));
    EXPECT_TRUE(key != otherNumber);
    EXPECT_TRUE(key != otherFormat);
}

TEST(PlatformResults, AreJudgedByTheirSign)
{
    EXPECT_TRUE(SUCCEEDED(S_OK));
    EXPECT_TRUE(SUCCEEDED(S_FALSE));
    EXPECT_FALSE(SUCCEEDED(E_FAIL));
    EXPECT_TRUE(FAILED(E_NOTFOUND));
    EXPECT_FALSE(FAILED(S_FALSE));
}

TEST(PlatformValues, AreEmptyAfterPropVariantInit)
{
    PROPVARIANT value;
    value.vt = VT_LPWSTR;
    value.pwszVal = nullptr;
    value.blob.cbSize = 7;

    PropVariantInit(&value);

    EXPECT_EQ(VT_EMPTY, value.vt);
    EXPECT_EQ(0u, value.ulVal);
}
