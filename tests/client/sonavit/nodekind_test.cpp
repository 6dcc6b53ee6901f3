#include "sonavit/nodekind.h"

#include "platform/coreaudio.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <sstream>
#include <string>

using namespace sonavit;

namespace
{
constexpr int kinds = static_cast<int>(NodeKind::peakMeter) + 1;

Guid guid(const GUID& platformGuid)
{
    Guid result;
    std::memcpy(static_cast<void*>(&result), &platformGuid, sizeof result);
    return result;
}
}

TEST(NodeKind, IsThatOfThePlatformsType)
{
    EXPECT_EQ(NodeKind::spdif, kindOf(guid(KSNODETYPE_SPDIF_INTERFACE)));
    EXPECT_EQ(NodeKind::microphone, kindOf(guid(KSNODETYPE_MICROPHONE)));
    EXPECT_EQ(NodeKind::subwoofer, kindOf(guid(KSNODETYPE_LOW_FREQUENCY_EFFECTS_SPEAKER)));
    EXPECT_EQ(NodeKind::selector, kindOf(guid(KSNODETYPE_MUX)));
    EXPECT_EQ(NodeKind::peakMeter, kindOf(guid(KSNODETYPE_PEAKMETER)));
    EXPECT_EQ(NodeKind::stream, kindOf(*Guid::parse("{6994AD04-93EF-11D0-A3CC-00A0C9223196}")));
    EXPECT_EQ(NodeKind::other, kindOf(Guid{1, 2, 3, {}}));
    EXPECT_EQ(NodeKind::other, kindOf(Guid()));
}

TEST(NodeKind, IsFoundAgainByItsGuid)
{
    for (int number = 1; number < kinds; ++number)
    {
        const auto kind = static_cast<NodeKind>(number);
        EXPECT_EQ(kind, kindOf(guidOf(kind))) << keyOf(kind);
    }
    EXPECT_TRUE(guidOf(NodeKind::other).isNull());
}

TEST(NodeKind, HasAKeyOfItsOwnAndWords)
{
    std::set<std::string> keys;
    for (int number = 0; number < kinds; ++number)
    {
        const auto kind = static_cast<NodeKind>(number);
        keys.insert(keyOf(kind));
        EXPECT_EQ(kind == NodeKind::other, wordsOf(kind) == std::string("Other")) << keyOf(kind);
    }

    EXPECT_EQ(static_cast<std::size_t>(kinds), keys.size());
    EXPECT_STREQ("spdif", keyOf(NodeKind::spdif));
    EXPECT_STREQ("S/PDIF", wordsOf(NodeKind::spdif));
    EXPECT_STREQ("other", keyOf(NodeKind::other));
}

TEST(NodeKind, SurvivesNumbersWithoutNames)
{
    for (const int number : {-1, kinds, 1000000})
    {
        const auto kind = static_cast<NodeKind>(number);
        EXPECT_STREQ("other", keyOf(kind));
        EXPECT_STREQ("Other", wordsOf(kind));
        EXPECT_TRUE(guidOf(kind).isNull());
        EXPECT_FALSE(isDigital(kind));
    }
}

TEST(NodeKind, IsDigitalForFiveOfThem)
{
    std::set<std::string> digital;
    for (int number = 0; number < kinds; ++number)
    {
        if (isDigital(static_cast<NodeKind>(number)))
            digital.insert(keyOf(static_cast<NodeKind>(number)));
    }

    EXPECT_EQ((std::set<std::string>{"digitalInterface", "displayPort", "firewire", "hdmi", "spdif"}), digital);
}

TEST(NodeKind, IsPrintedInWords)
{
    std::ostringstream out;
    out << NodeKind::cdPlayer;

    EXPECT_EQ("CD player", out.str());
}
