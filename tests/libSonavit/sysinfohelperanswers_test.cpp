#include "libSonavit/sysinfohelper.h"

#include "tests/libSonavit/supportsysinfo.h"

using support::Answers;
using support::BalancedHelper;
using testing::ElementsAre;

namespace
{
struct SysInfoHelperAnswers : support::SysInfoHelperTest
{
};
}

TEST_F(SysInfoHelperAnswers, DistinguishEachKind)
{
    builder.card("Analog", "analog").headphones();
    builder.card("Digital", "digital").spdifOut();
    builder.card("Line", "line").lineIn();
    builder.card("Microphone", "microphone").microphone();
    runBuilt();
    BalancedHelper helper;

    EXPECT_EQ((Answers{true, false, false, false}), answersOf(helper, "analog"));
    EXPECT_EQ((Answers{false, true, false, false}), answersOf(helper, "digital"));
    EXPECT_EQ((Answers{false, false, true, false}), answersOf(helper, "line"));
    EXPECT_EQ((Answers{false, false, false, true}), answersOf(helper, "microphone"));
}

TEST_F(SysInfoHelperAnswers, AreFalseForACardWithoutSuchEndpoints)
{
    sim::CardBuilder card = builder.card("Outputs and inputs of other kinds", "USB");
    card.lineOut();
    card.hdmi();
    card.spdifIn();
    runBuilt();
    BalancedHelper helper;

    EXPECT_EQ(none, answersOf(helper, "USB"));
}

TEST_F(SysInfoHelperAnswers, AreFalseForAnUnknownId)
{
    builder.card("Codec", "USB").speaker();
    runBuilt();
    BalancedHelper helper;

    EXPECT_EQ(none, answersOf(helper, "USB2"));
    EXPECT_EQ(nullptr, helper.soundCard("USB2").get());
}

TEST_F(SysInfoHelperAnswers, UseTheInstanceIdIgnoringCase)
{
    builder.card("Codec", "USB\\VID_0001").speaker();
    runBuilt();
    BalancedHelper helper;

    EXPECT_TRUE(helper.hasAnalogOut("usb\\vid_0001"));
    EXPECT_EQ(helper.m_soundCards[0].get(), helper.soundCard("Usb\\Vid_0001").get());
}

TEST_F(SysInfoHelperAnswers, DoNotUseTheParentId)
{
    builder.card("Codec", "USB").speaker();
    builder.machine().deviceInstances = {{"USB", "HUB"}};
    runBuilt();
    BalancedHelper helper;

    EXPECT_FALSE(helper.hasAnalogOut("HUB"));
    EXPECT_EQ(0u, simulation().journal().count("getParentDeviceInstanceId"));
}

TEST_F(SysInfoHelperAnswers, CountEndpointsInEveryState)
{
    sim::CardBuilder card = builder.card("Codec", "USB");
    card.speaker().disabled();
    card.spdifOut().notPresent();
    card.lineIn().unplugged();
    card.microphone();
    runBuilt();
    BalancedHelper helper;

    EXPECT_EQ((Answers{true, true, true, true}), answersOf(helper, "USB"));
}

TEST_F(SysInfoHelperAnswers, AreThoseOfTheLastOfTwoCardsOfOneInstanceId)
{
    builder.card("First", "USB").microphone();
    builder.card("Second", "USB2").lineIn().property(sim::keys::instancePath, sim::PropertyValue::ofText("{2}.USB"));
    runBuilt();
    BalancedHelper helper;

    EXPECT_EQ((Answers{false, false, true, false}), answersOf(helper, "USB"));
}

TEST_F(SysInfoHelperAnswers, AreThoseOfTheLastCardWithoutAnInstanceIdForAnEmptyId)
{
    builder.card("First", "USB1").microphone().property(sim::keys::instancePath, sim::PropertyValue::ofText("first"));
    builder.card("Second", "USB2").lineIn().property(sim::keys::instancePath, sim::PropertyValue::ofText("second"));
    builder.card("Third", "USB3").speaker();
    runBuilt();
    BalancedHelper helper;

    EXPECT_EQ((Answers{false, false, true, false}), answersOf(helper, ""));
}

TEST_F(SysInfoHelperAnswers, LogACardWithoutAnInstanceIdAtEveryQuestion)
{
    builder.card("Codec", "USB").microphone().property(sim::keys::instancePath, sim::PropertyValue::ofText("odd"));
    runBuilt();
    BalancedHelper helper;
    log.clear();

    helper.hasMicIn("odd");
    helper.hasLineIn("odd");

    EXPECT_THAT(log.texts(qor::LoggerPriority::LOG_WARNING, "libSonavit.soundcard"),
                ElementsAre("Unrecognized device id format odd", "Unrecognized device id format odd"));
}
