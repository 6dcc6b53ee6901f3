#include "sonavit/jack.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace sonavit;

namespace
{
Colour colour(std::uint8_t red, std::uint8_t green, std::uint8_t blue)
{
    Colour result;
    result.red = red;
    result.green = green;
    result.blue = blue;
    return result;
}

/// Whether each number from @p first to @p last has a key and words of its own, and the numbers around them have none.
template<class Enum>
void expectNames(int first, int last, int unknown)
{
    for (int number = first; number <= last; ++number)
    {
        const auto value = static_cast<Enum>(number);
        EXPECT_EQ(number == unknown, keyOf(value) == std::string("unknown")) << number;
        EXPECT_EQ(number == unknown, wordsOf(value) == std::string("unknown")) << number;
    }
    for (const int number : {first - 1, last + 1, -1000, 1000})
    {
        EXPECT_STREQ("unknown", keyOf(static_cast<Enum>(number)));
        EXPECT_STREQ("unknown", wordsOf(static_cast<Enum>(number)));
    }
}
}

TEST(JackNames, ExistForEachNumberThatThePlatformNames)
{
    constexpr int none = -1;

    expectNames<FormFactor>(0, 10, 10);
    expectNames<JackPlace>(0, 3, none);
    expectNames<JackGeometry>(1, 14, none);
    expectNames<JackConnection>(0, 11, 0);
    expectNames<JackPort>(0, 3, 3);
}

TEST(JackNames, AreKeysAndWords)
{
    EXPECT_STREQ("digitalDisplay", keyOf(FormFactor::digitalDisplay));
    EXPECT_STREQ("digital display", wordsOf(FormFactor::digitalDisplay));
    EXPECT_STREQ("rearPanel", keyOf(JackGeometry::rearPanel));
    EXPECT_STREQ("rear panel", wordsOf(JackGeometry::rearPanel));
    EXPECT_STREQ("primaryBox", keyOf(JackPlace::primaryBox));
    EXPECT_STREQ("3.5 mm jack", wordsOf(JackConnection::miniJack));
    EXPECT_STREQ("integratedDevice", keyOf(JackPort::integratedDevice));
}

TEST(Colour, HasANameIfItIsUsualForJacks)
{
    EXPECT_EQ("black", Colour().name());
    EXPECT_EQ("lime green", colour(0x32, 0xCD, 0x32).name());
    EXPECT_EQ("pink", colour(0xFF, 0xC0, 0xCB).name());
    EXPECT_EQ("#010AFF", colour(1, 10, 255).name());
}

TEST(Colour, IsEqualIfItsPartsAre)
{
    EXPECT_EQ(colour(1, 2, 3), colour(1, 2, 3));
    EXPECT_NE(colour(1, 2, 3), colour(0, 2, 3));
    EXPECT_NE(colour(1, 2, 3), colour(1, 0, 3));
    EXPECT_NE(colour(1, 2, 3), colour(1, 2, 0));
}

TEST(JackSentence, NamesKindColourAndGeometry)
{
    Jack jack;
    jack.type = guidOf(NodeKind::headphones);
    jack.colour = colour(0x32, 0xCD, 0x32);
    jack.geometry = JackGeometry::rear;
    jack.isConnected = true;

    EXPECT_EQ("Headphones, lime green, rear", jack.sentence());
    jack.isConnected = false;
    EXPECT_EQ("Headphones, lime green, rear, nothing plugged in", jack.sentence());
}

TEST(JackSentence, LeavesOutWhatIsNotKnown)
{
    Jack jack;
    EXPECT_EQ("Jack", jack.sentence());
    EXPECT_EQ(NodeKind::other, jack.kind());
    jack.colour = Colour(); // no colour, in many descriptions
    jack.geometry = JackGeometry::notApplicable;
    EXPECT_EQ("Jack", jack.sentence());
    jack.geometry = static_cast<JackGeometry>(99);
    EXPECT_EQ("Jack", jack.sentence());
}

TEST(JackSentence, UsesTheFormFactorWithoutAKind)
{
    Jack jack;
    jack.formFactor = FormFactor::digitalDisplay;
    EXPECT_EQ("Digital display", jack.sentence());
    jack.formFactor = FormFactor::unknown;
    EXPECT_EQ("Jack", jack.sentence());
    jack.formFactor = static_cast<FormFactor>(99);
    EXPECT_EQ("Jack", jack.sentence());
}

TEST(Jack, IsEqualIfEachMemberIs)
{
    const auto differs = [](auto change)
    {
        Jack jack;
        change(jack);
        return jack != Jack() && jack == Jack(jack);
    };

    EXPECT_TRUE(differs([](Jack& jack) { jack.type.emplace(); }));
    EXPECT_TRUE(differs([](Jack& jack) { jack.formFactor.emplace(); }));
    EXPECT_TRUE(differs([](Jack& jack) { jack.channels.emplace(); }));
    EXPECT_TRUE(differs([](Jack& jack) { jack.colour.emplace(); }));
    EXPECT_TRUE(differs([](Jack& jack) { jack.place.emplace(); }));
    EXPECT_TRUE(differs([](Jack& jack) { jack.geometry.emplace(); }));
    EXPECT_TRUE(differs([](Jack& jack) { jack.connection.emplace(); }));
    EXPECT_TRUE(differs([](Jack& jack) { jack.port.emplace(); }));
    EXPECT_TRUE(differs([](Jack& jack) { jack.isConnected.emplace(); }));
}

TEST(Jack, IsPrintedWithAllThatIsKnown)
{
    Jack jack;
    jack.formFactor = static_cast<FormFactor>(99);
    jack.channels = 3;
    jack.colour = Colour();
    jack.place = JackPlace::internal;
    jack.isConnected = false;
    std::ostringstream out;
    out << jack;

    EXPECT_EQ("Jack(formFactor: unknown 99, channels: 3, colour: black, place: internal, isConnected: no)", out.str());
}

TEST(JackNames, ArePrintedInWords)
{
    std::ostringstream out;
    out << FormFactor::lineLevel << ", " << JackPlace::primaryBox << ", " << JackGeometry::insideMobileLid << ", "
        << JackConnection::miniJack << ", " << JackPort::both << ", " << static_cast<JackGeometry>(0) << ", "
        << Colour{0x32, 0xCD, 0x32};

    EXPECT_EQ(
        "line level, primary box, inside of the lid, 3.5 mm jack, jack and integrated device, unknown, lime green",
        out.str());
}
