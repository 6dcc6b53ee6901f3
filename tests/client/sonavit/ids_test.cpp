#include "sonavit/ids.h"

#include <gtest/gtest.h>

#include <sstream>
#include <unordered_map>
#include <unordered_set>

using namespace sonavit;

TEST(CompareIds, FoldsTheLettersAToZAlone)
{
    EXPECT_EQ(0, compareIds("{AbZ}", "{aBz}"));
    EXPECT_EQ(0, compareIds("", ""));
    EXPECT_NE(0, compareIds("[", "{"));
    EXPECT_NE(0, compareIds("\xC3\x84", "\xC3\xA4")); // no other letters
    EXPECT_NE(0, compareIds("@", "`"));
}

TEST(CompareIds, OrdersBytesAndPutsTheShorterFirst)
{
    EXPECT_LT(compareIds("a", "B"), 0);
    EXPECT_GT(compareIds("B", "a"), 0);
    EXPECT_LT(compareIds("a", "ab"), 0);
    EXPECT_GT(compareIds("ab", "A"), 0);
    EXPECT_LT(compareIds("z", "\xC3"), 0); // as unsigned numbers
    EXPECT_GT(compareIds("Z", "["), 0);    // as the small letter
    EXPECT_LT(compareIds(std::string_view("a\0a", 3), std::string_view("a\0b", 3)), 0);
}

TEST(HashId, IsEqualForEqualIds)
{
    EXPECT_EQ(hashId("{ABC}"), hashId("{abc}"));
    EXPECT_NE(hashId("{abc}"), hashId("{abd}"));
}

TEST(Id, IsEqualInAnyCaseAndKeepsItsSpelling)
{
    const EndpointId upper("{A}");
    const EndpointId lower("{a}");

    EXPECT_EQ(upper, lower);
    EXPECT_FALSE(upper < lower);
    EXPECT_LT(lower, EndpointId("{b}"));
    EXPECT_NE(upper, EndpointId("{b}"));
    EXPECT_EQ("{A}", upper.text());
    EXPECT_EQ(1u, (std::unordered_set<EndpointId>{upper, lower}.size()));
}

TEST(Id, IsEmptyForNothing)
{
    EXPECT_TRUE(CardId().isEmpty());
    EXPECT_FALSE(CardId("x").isEmpty());
}

TEST(Id, IsPrintedAsItIs)
{
    std::ostringstream out;
    out << EndpointId("{A}");

    EXPECT_EQ("{A}", out.str());
}

TEST(GuidParse, ReadsBothCasesWithAndWithoutBraces)
{
    const Guid expected = {0x01234567, 0x89AB, 0xCDEF, {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}};

    EXPECT_EQ(expected, Guid::parse("{01234567-89AB-CDEF-0123-456789ABCDEF}"));
    EXPECT_EQ(expected, Guid::parse("01234567-89ab-cdef-0123-456789abcdef"));
}

TEST(GuidParse, RefusesAnythingElse)
{
    for (const char* const text :
         {"", "{}", "{01234567-89AB-CDEF-0123-456789ABCDEF", "01234567-89AB-CDEF-0123-456789ABCDEF}",
          "{01234567-89AB-CDEF-0123-456789ABCDE}", "{01234567-89AB-CDEF-0123-456789ABCDEF0}",
          "{01234567 89AB-CDEF-0123-456789ABCDEF}", "{0123456G-89AB-CDEF-0123-456789ABCDEF}",
          "{-1234567-89AB-CDEF-0123-456789ABCDEF}", "{{1234567-89AB-CDEF-0123-456789ABCDE}}"})
        EXPECT_EQ(std::nullopt, Guid::parse(text)) << text;
}

TEST(GuidText, IsReadAgain)
{
    const Guid guid = {0x01234567, 0x89AB, 0xCDEF, {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}};

    EXPECT_EQ("{01234567-89AB-CDEF-0123-456789ABCDEF}", guid.text());
    EXPECT_EQ(guid, Guid::parse(guid.text()));
    EXPECT_EQ("{00000000-0000-0000-0000-000000000000}", Guid().text());
}

TEST(Guid, IsNullIfAllBitsAreZero)
{
    Guid guid;
    EXPECT_TRUE(guid.isNull());
    guid.data4[7] = 1;
    EXPECT_FALSE(guid.isNull());
}

TEST(Guid, IsOrderedByItsMembers)
{
    const Guid first = {1, 9, 9, {}};
    const Guid second = {2, 0, 0, {}};
    Guid third = second;
    third.data4[0] = 1;

    EXPECT_LT(first, second);
    EXPECT_LT(second, third);
    EXPECT_FALSE(third < third);
    EXPECT_NE(second, third);
}

TEST(Guid, IsAKeyOfHashTables)
{
    const Guid one = *Guid::parse("{8C7ED206-3F8A-4827-B3AB-AE9E1FAEFC6C}");
    const Guid other = *Guid::parse("{8C7ED206-3F8A-4827-B3AB-AE9E1FAEFC6D}");
    const std::unordered_map<Guid, int> numbers = {{one, 1}, {other, 2}};

    EXPECT_EQ(1, numbers.at(*Guid::parse("8c7ed206-3f8a-4827-b3ab-ae9e1faefc6c")));
    EXPECT_EQ(2, numbers.at(other));
    EXPECT_NE(std::hash<Guid>()(one), std::hash<Guid>()(other));
}
