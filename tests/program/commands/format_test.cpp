#include "tests/program/programtest.h"

#include "simulator/machine/deviceformat.h"
#include "simulator/machine/propertykeys.h"

#include <nlohmann/json.hpp>

using nlohmann::json;

namespace
{
class ProgramFormat : public support::ProgramTest
{
protected:
    /// The speaker's format in the property store, or "none".
    std::string stored()
    {
        const sim::Machine machine = simulation().machine();
        const sim::PropertyValue* const value =
            sim::findProperty(machine.endpoint(support::speakerId())->properties, sim::keys::deviceFormat);
        const auto format = value == nullptr ? std::nullopt : sim::DeviceFormat::fromBytes(value->bytes);
        return format ? format->text() : "none";
    }
};
}

TEST_F(ProgramFormat, IsShownInWords)
{
    run(support::smallMachine());

    const support::Answer answer = call({"format", "Speakers"});

    EXPECT_EQ("Speakers (Analog Audio): 48000 Hz, 16 bit, 2 channels (stereo)\n", answer.out);
    EXPECT_EQ(0, answer.code);
}

TEST_F(ProgramFormat, IsAnsweredInJson)
{
    run(support::smallMachine());

    const json answer = json::parse(call({"format", "Speakers", "--json"}).out);

    EXPECT_EQ(json::parse(R"({"rate": 48000, "bits": 16, "validBits": 16, "channels": 2, "encoding": "pcm",
                              "channelMask": 3})"),
              answer["format"]);
}

TEST_F(ProgramFormat, IsSetForAWhileAndPutBack)
{
    run(support::smallMachine());
    std::string whileHeld;
    std::chrono::milliseconds held{};
    pause = [&](std::chrono::milliseconds duration)
    {
        whileHeld = stored();
        held = duration;
        return false;
    };

    const support::Answer answer = call({"format", "Speakers", "--set", "24/96000/2", "--hold", "2.5"});

    EXPECT_EQ("Speakers (Analog Audio)\n"
              "before  48000 Hz, 16 bit, 2 channels (stereo)\n"
              "during  96000 Hz, 24 bit, 2 channels (stereo)\n"
              "after   48000 Hz, 16 bit, 2 channels (stereo)\n",
              answer.out);
    EXPECT_EQ(0, answer.code);
    EXPECT_EQ("24/96000/2", whileHeld);
    EXPECT_EQ(std::chrono::milliseconds(2500), held);
    EXPECT_EQ("16/48000/2", stored());
}

TEST_F(ProgramFormat, AnswersInJsonHowItWasAndIs)
{
    run(support::smallMachine());

    const json answer = json::parse(call({"format", "Speakers", "--set", "24/96000/2", "--json"}).out);

    EXPECT_EQ(48000, answer["before"]["rate"]);
    EXPECT_EQ(96000, answer["during"]["rate"]);
    EXPECT_EQ(24, answer["during"]["bits"]);
    EXPECT_EQ(48000, answer["after"]["rate"]);
}

TEST_F(ProgramFormat, IsPutBackWhenTheEndIsRequested)
{
    run(support::smallMachine());
    std::string whileHeld;
    bool isDeferred = false;
    bool wasDeferredWhilePutBack = false;
    deferEnd = [&]
    {
        isDeferred = true;
        return std::shared_ptr<void>(&isDeferred,
                                     [&](bool* flag)
                                     {
                                         wasDeferredWhilePutBack = stored() == "16/48000/2";
                                         *flag = false;
                                     });
    };
    pause = [&](std::chrono::milliseconds)
    {
        whileHeld = isDeferred ? stored() : "not deferred";
        return true;
    };

    const support::Answer answer = call({"format", "Speakers", "--set", "24/96000/2"});

    EXPECT_EQ(130, answer.code);
    EXPECT_EQ("", answer.err);
    EXPECT_THAT(answer.out, testing::HasSubstr("\nafter   48000 Hz"));
    EXPECT_EQ("24/96000/2", whileHeld);
    EXPECT_TRUE(wasDeferredWhilePutBack);
    EXPECT_FALSE(isDeferred);
}

TEST_F(ProgramFormat, IsLeftAloneWhereTheSystemRefuses)
{
    sim::Simulation& simulation = run(support::smallMachine());
    simulation.faults().fail("IPropertyStore::SetValue", E_ACCESSDENIED);

    const support::Answer answer = call({"format", "Speakers", "--set", "24/96000/2"});

    EXPECT_EQ(1, answer.code);
    EXPECT_EQ("sonavit: the format of Speakers (Analog Audio) cannot be set: IPropertyStore::SetValue(deviceFormat) "
              "failed: 0x80070005, access denied\n",
              answer.err);
    EXPECT_EQ("16/48000/2", stored());
}

TEST_F(ProgramFormat, IsNotSetWhereThereIsNoneToGoBackTo)
{
    sim::Machine machine = support::smallMachine();
    sim::removeProperty(machine.endpoints[0].properties, sim::keys::deviceFormat);
    run(std::move(machine));

    const support::Answer answer = call({"format", "Speakers", "--set", "24/96000/2"});

    EXPECT_EQ(1, answer.code);
    EXPECT_EQ("sonavit: the format of Speakers (Analog Audio) cannot be set: the endpoint has no device format\n",
              answer.err);
    EXPECT_EQ("none", stored());
    EXPECT_EQ("Speakers (Analog Audio): -\n", call({"format", "Speakers"}).out);
}

TEST_F(ProgramFormat, IsNotSetWhereTheStoreCannotBeOpened)
{
    sim::Simulation& simulation = run(support::smallMachine());
    simulation.faults().fail("IMMDevice::OpenPropertyStore", E_ACCESSDENIED);

    const support::Answer answer = call({"format", support::speakerId(), "--set", "24/96000/2"});

    EXPECT_EQ(1, answer.code);
    EXPECT_EQ("16/48000/2", stored());
}

TEST_F(ProgramFormat, IsPutBackIfTheOutputIsLost)
{
    run(support::smallMachine());
    std::ostringstream out;
    std::ostringstream err;
    sonavit::program::Environment own = environment(out, err);
    std::string whileHeld;
    own.pause = [&](std::chrono::milliseconds)
    {
        whileHeld = stored();
        out.setstate(std::ios::badbit);
        return true;
    };

    const int code = sonavit::program::run({"format", "Speakers", "--set", "24/96000/2"}, own);

    EXPECT_EQ(130, code);
    EXPECT_EQ("24/96000/2", whileHeld);
    EXPECT_EQ("16/48000/2", stored());
}

TEST_F(ProgramFormat, IsLeftAloneIfAnotherProgramHasChangedItMeanwhile)
{
    run(support::smallMachine());
    pause = [this](std::chrono::milliseconds)
    {
        simulation().events().setProperty(support::speakerId(), sim::keys::deviceFormat,
                                          sim::PropertyValue::ofBytes(sim::DeviceFormat{32, 44100, 2}.bytes()));
        return false;
    };

    const support::Answer answer = call({"format", "Speakers", "--set", "24/96000/2"});

    EXPECT_EQ(1, answer.code);
    EXPECT_THAT(answer.err, testing::StartsWith("sonavit: the format of Speakers (Analog Audio) cannot be put back: "));
    EXPECT_EQ("32/44100/2", stored());
}
