#include "qor/string.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

using qor::String;

namespace
{
TEST(StringHashNoCase, IsTheSameForTextsThatDifferOnlyInCaseAtEveryLength)
{
    const std::string lower = "{2}.\\\\?\\hdaudio#func_01&ven_10ec#abcdefghijklmnopqrstuvwxyz";
    std::string upper = lower;
    for (char& letter : upper)
        letter = letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - ('a' - 'A')) : letter;
    for (std::size_t length = 0; length <= lower.size(); ++length)
    {
        const String left(lower.substr(0, length).c_str());
        const String right(upper.substr(0, length).c_str());

        ASSERT_EQ(0, String::compareNoCase(left, right));
        EXPECT_EQ(String::hashNoCase(left), String::hashNoCase(right)) << length;
    }
}

TEST(StringHashNoCase, AgreesWithCompareNoCaseForEveryUnitAtEveryPlace)
{
    for (unsigned int unit = 1; unit <= 0xFFFF; ++unit)
    {
        for (unsigned int place = 0; place < 5; ++place)
        {
            unsigned short left[] = {'x', 0xFFFF, 'Y', 0x8041, 'z', 0};
            unsigned short right[] = {'X', 0xFFFF, 'y', 0x8041, 'Z', 0};
            left[place] = static_cast<unsigned short>(unit);
            right[place] = static_cast<unsigned short>(unit ^ 0x20);
            const bool equal = String::compareNoCase(left, right) == 0;
            ASSERT_TRUE(!equal || String::hashNoCase(left) == String::hashNoCase(right)) << unit << ' ' << place;
        }
    }
}

TEST(StringHashNoCase, OfTheEmptyTextIsTheSameHoweverItCameToBe)
{
    String cleared("x");
    cleared.clear();

    EXPECT_EQ(String::hashNoCase(String()), String::hashNoCase(String("")));
    EXPECT_EQ(String::hashNoCase(String()), String::hashNoCase(cleared));
}

TEST(StringHashNoCase, TellsTheIdsOfTenThousandPartsApart)
{
    std::set<unsigned int> hashes;
    std::set<unsigned int> low;
    for (int part = 0; part < 10000; ++part)
    {
        const std::string id = "{2}.\\\\?\\hdaudio#func_01&ven_10ec&dev_0900#4&1a2b3c4d&0&0001#{6994ad04}\\wave/" +
                               std::to_string(part % 100) + "/0002" + std::to_string(part / 100);
        const unsigned int hash = String::hashNoCase(String(id.c_str()));
        hashes.insert(hash);
        low.insert(hash & 0xFFFF);
    }

    EXPECT_LE(9990u, hashes.size());
    EXPECT_LE(9000u, low.size()) << "the low bits choose the place in a table of 65,536";
}
}
