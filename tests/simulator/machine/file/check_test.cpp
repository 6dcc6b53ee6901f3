#include "simulator/machine/file/check.h"

#include "simulator/machine/namedvalues.h"
#include "tests/simulator/machine/file/machinesample.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <limits>

namespace
{
using testing::ElementsAre;

/// What the check says about the sample after @p change, as "place: expected ..., found ...".
std::vector<std::string> problemsAfter(const std::function<void(sim::Machine&)>& change)
{
    sim::Machine machine = sample::machine();
    change(machine);
    std::vector<std::string> result;
    for (const sim::MachineProblem& problem : sim::checkMachine(machine))
        result.push_back(problem.place + ": expected " + problem.expected + ", found " + problem.found);
    return result;
}

TEST(MachineCheck, FindsNothingInTheSample)
{
    EXPECT_THAT(problemsAfter([](sim::Machine&) {}), testing::IsEmpty());
}

TEST(MachineCheck, FindsBitsOfHardwareSupportWithoutAName)
{
    EXPECT_THAT(problemsAfter([](sim::Machine& machine) { machine.endpoints[0].volume->hardwareSupport = 9; }),
                ElementsAre("/endpoints/0/volume/hardwareSupport: expected a sum of 1, 2 and 4, found 9"));
}

TEST(MachineCheck, FindsAVolumeThatDiffersFromThePartThatImplementsIt)
{
    const auto change = [](sim::Machine& machine)
    {
        machine.endpoints[1].volume->maximum = 6.0f;
        machine.endpoints[1].volume->channels = {-1.0f};
        machine.endpoints[1].volume->muted = false;
    };

    EXPECT_THAT(problemsAfter(change),
                ElementsAre("/endpoints/1/volume: expected the range of the part that implements it, found -96 to 6 by "
                            "1.5",
                            "/endpoints/1/volume/channels/0: expected the level of the part that implements it, found "
                            "-1",
                            "/endpoints/1/volume/muted: expected the mute of the part that implements it, found "
                            "false"));
}

TEST(MachineCheck, FindsOtherChannelsThanThoseOfThePartThatImplementsThem)
{
    EXPECT_THAT(problemsAfter(
                    [](sim::Machine& machine) {
                        machine.endpoints[1].volume->channels = {-0.1f, -0.1f};
                    }),
                ElementsAre("/endpoints/1/volume/channels: expected the 1 channels of the part that implements them, "
                            "found 2"));
}

TEST(MachineCheck, FindsAPartThatImplementsNoVolume)
{
    const std::string plug = sample::speakers + "/plug";
    const auto change = [&](sim::Machine& machine) { machine.endpoints[1].volume->hardware = {"nothing", plug}; };

    EXPECT_THAT(problemsAfter(change),
                ElementsAre("/endpoints/1/volume/hardware/volume: expected the id of a part with a volume, found "
                            "\"nothing\"",
                            "/endpoints/1/volume/hardware/mute: expected the id of a part with a mute, found \"" +
                                plug + "\""));
}

TEST(MachineCheck, TakesALevelBetweenTwoStepsOfThePart)
{
    EXPECT_THAT(problemsAfter([](sim::Machine& machine) { machine.endpoints[1].volume->channels = {-0.8f}; }),
                testing::IsEmpty());
}

TEST(MachineCheck, TakesRangesStepsAndLevelsAsDriversReportThem)
{
    const auto change = [](sim::Machine& machine)
    {
        sim::EndpointVolume& volume = *machine.endpoints[0].volume;
        volume.minimum = volume.maximum = -3.0f;
        volume.step = 0.0f;
        volume.channels = {7.0f};
        sim::VolumeControl& node = *machine.adapters[0].topology->subunits[0].volume;
        node.channels = {{-3.0f, -3.0f, 5.0f, -4.0f}};
        machine.script[6].level = -3.0f;
    };

    EXPECT_THAT(problemsAfter(change), testing::IsEmpty());
    EXPECT_THAT(problemsAfter([](sim::Machine& machine) { machine.endpoints[0].volume->channels.clear(); }),
                testing::IsEmpty());
}

TEST(MachineCheck, FindsRangesStepsAndLevelsThatAreNoNumbers)
{
    const float infinite = std::numeric_limits<float>::infinity();
    const auto change = [&](sim::Machine& machine)
    {
        sim::EndpointVolume& volume = *machine.endpoints[0].volume;
        volume.minimum = -infinite;
        volume.step = infinite;
        volume.channels = {-infinite};
        sim::VolumeControl& node = *machine.adapters[0].topology->subunits[0].volume;
        node.channels = {{-3.0f, infinite, 0.0f, infinite}};
    };
    const std::string node = "/adapters/0/topology/subunits/0/volume/channels/0";

    EXPECT_THAT(problemsAfter(change),
                ElementsAre("/endpoints/0/volume: expected a minimum not above the maximum, found -inf to 6",
                            "/endpoints/0/volume/step: expected a step of 0 or more, found inf",
                            "/endpoints/0/volume/channels/0: expected a number of decibels, found -inf",
                            node + ": expected a minimum not above the maximum, found -3 to inf",
                            node + "/level: expected a number of decibels, found inf"));
}

TEST(MachineCheck, FindsMeasuredPointsThatDoNotRise)
{
    const auto after = [](const std::vector<sim::TaperPoint>& points)
    { return problemsAfter([&](sim::Machine& machine) { machine.endpoints[1].volume->taperPoints = points; }); };
    const std::string second = "/endpoints/1/volume/taperPoints/1: expected a higher level than before, at no lower "
                               "scalar, found ";

    EXPECT_THAT(after({{-97.0f, -0.5f}, {-20.0f, 0.5f}, {-10.0f, 0.5f}, {13.0f, 1.5f}}), testing::IsEmpty());
    EXPECT_THAT(after({{-10.0f, 0.5f}, {-10.0f, 0.75f}}), ElementsAre(second + "-10 at 0.75"));
    EXPECT_THAT(after({{-10.0f, 0.5f}, {-20.0f, 0.75f}}), ElementsAre(second + "-20 at 0.75"));
    EXPECT_THAT(after({{-10.0f, 0.5f}, {-5.0f, 0.25f}}), ElementsAre(second + "-5 at 0.25"));
}

TEST(MachineCheck, FindsMeasuredPointsOfAnotherTaper)
{
    EXPECT_THAT(problemsAfter([](sim::Machine& machine) { machine.endpoints[1].volume->taper = sim::Taper::audio; }),
                ElementsAre("/endpoints/1/volume/taperPoints: expected no points, or the taper \"measured\", found 2"));
}

TEST(MachineCheck, FindsAMasterLevelAndAMeasuredPointThatAreNoNumbers)
{
    const float infinite = std::numeric_limits<float>::infinity();
    const auto change = [&](sim::Machine& machine)
    {
        machine.endpoints[1].volume->taperPoints = {{-10.0f, infinite}};
        machine.endpoints[1].volume->master = infinite;
    };

    EXPECT_THAT(problemsAfter(change),
                ElementsAre("/endpoints/1/volume/taperPoints/0: expected two numbers, found -10 at inf",
                            "/endpoints/1/volume/master: expected a number of decibels, found inf"));
}

TEST(MachineCheck, FindsPeriodsThatNoStreamCouldHave)
{
    const auto after = [](std::uint32_t usual, std::uint32_t minimum)
    {
        return problemsAfter(
            [&](sim::Machine& machine) {
                machine.endpoints[0].periods = sim::DevicePeriods{usual, minimum};
            });
    };

    EXPECT_THAT(after(50000000, 50000000), testing::IsEmpty());
    EXPECT_THAT(after(0, 0), testing::IsEmpty());
    EXPECT_THAT(after(30000, 100000), testing::IsEmpty()); // a driver may report the shorter one as the usual one
    EXPECT_THAT(after(50000001, 50000001),
                ElementsAre("/endpoints/0/periods/default: expected a period of at most 50000000, found 50000001",
                            "/endpoints/0/periods/minimum: expected a period of at most 50000000, found 50000001"));
}

TEST(MachineCheck, FindsOptionsWithoutAName)
{
    const auto change = [](sim::Machine& machine)
    {
        machine.removedEndpoints = static_cast<sim::RemovedEndpoints>(2);
        machine.callbackThread = static_cast<sim::CallbackThread>(3);
        machine.latencyPreset = static_cast<sim::LatencyPreset>(4);
        machine.captureAccess = static_cast<sim::CaptureAccess>(4);
        machine.composition = static_cast<sim::Composition>(2);
        machine.notPresentNames = static_cast<sim::NotPresentNames>(2);
        machine.endpoints[1].volume->taper = static_cast<sim::Taper>(3);
        machine.endpoints[1].volume->taperPoints.clear();
    };

    EXPECT_THAT(problemsAfter(change),
                ElementsAre("/removedEndpoints: expected \"open\" or \"unknown\", found 2",
                            "/callbackThread: expected \"com\" or \"bare\", found 3",
                            "/latencyPreset: expected \"none\" or \"windows\", found 4",
                            "/notPresentNames: expected \"readable\" or \"failing\", found 2",
                            "/composition: expected \"usual\" or \"none\", found 2",
                            "/captureAccess: expected \"allowed\" or \"denied\", found 4",
                            "/endpoints/1/volume/taper: expected \"linear\", \"audio\" or \"measured\", found 3"));
}

TEST(MachineCheck, TakesAJackAndAKindOfConnectorWithoutNames)
{
    const auto change = [](sim::Machine& machine)
    {
        sim::Connector& connector = machine.adapters[0].topology->connectors[0];
        connector.type = static_cast<ConnectorType>(7);
        sim::Jack& jack = connector.jacks[0];
        // Drivers report numbers that the types of the platform do not name.
        const auto report = [](auto& value, int number) { std::memcpy(&value, &number, sizeof value); };
        report(jack.connection, 12);
        report(jack.geometricLocation, 0);
        report(jack.generalLocation, 7);
        report(jack.portConnection, 5);
    };

    EXPECT_THAT(problemsAfter(change), testing::IsEmpty());
}

TEST(MachineCheck, FindsAMixFormatThatIsTooShortOrHasAnotherLength)
{
    const auto after = [](std::size_t size)
    { return problemsAfter([&](sim::Machine& machine) { machine.endpoints[1].mixFormatBytes.resize(size); }); };
    const std::string place = "/endpoints/1/mixFormat: expected ";

    EXPECT_THAT(after(20), testing::IsEmpty());
    EXPECT_THAT(after(1), ElementsAre(place + "the 18 bytes of a WAVEFORMATEX or more, found 1"));
    EXPECT_THAT(after(17), ElementsAre(place + "the 18 bytes of a WAVEFORMATEX or more, found 17"));
    EXPECT_THAT(after(18), ElementsAre(place + "20 bytes, as the format says, found 18"));
    EXPECT_THAT(after(21), ElementsAre(place + "20 bytes, as the format says, found 21"));
}

TEST(MachineCheck, FindsTwoMixFormats)
{
    EXPECT_THAT(problemsAfter([](sim::Machine& machine) { machine.endpoints[1].mixFormat = sim::MixFormat(); }),
                ElementsAre("/endpoints/1/mixFormat: expected one mix format, found another as bytes"));
}

TEST(MachineCheck, FindsADirectionWithoutAName)
{
    const auto change = [](sim::Machine& machine)
    { machine.adapters[0].topology->connectors[0].direction = static_cast<DataFlow>(2); };

    EXPECT_THAT(problemsAfter(change),
                ElementsAre("/adapters/0/topology/connectors/0/direction: expected \"in\" or \"out\", found 2"));
}

TEST(MachineCheck, FindsAnAccountAFlowAndARoleWithoutAName)
{
    const auto change = [](sim::Machine& machine)
    {
        machine.account = static_cast<sim::Account>(2);
        machine.endpoints[0].defaultFor = {ERole_enum_count};
        machine.script[8].flow = eAll;
        machine.script[8].role = ERole_enum_count;
    };

    EXPECT_THAT(problemsAfter(change),
                ElementsAre("/account: expected \"administrator\" or \"ordinary\", found 2",
                            "/endpoints/0/defaultFor/0: expected \"console\", \"multimedia\" or \"communications\", "
                            "found 3",
                            "/script/8/flow: expected \"render\" or \"capture\", found 2",
                            "/script/8/role: expected \"console\", \"multimedia\" or \"communications\", found 3"));
}

TEST(MachineCheck, FindsAFaultAfterAnEventWithoutAName)
{
    EXPECT_THAT(
        problemsAfter([](sim::Machine& machine) { machine.faults[0].after = static_cast<sim::ScriptEvent::Kind>(99); }),
        ElementsAre("/faults/0/after: expected " + sim::oneOf(sim::eventNames) + ", found 99"));
}

TEST(MachineCheck, KnowsTheObjectsOfFaults)
{
    const std::string jack = sample::codec + "/jack";
    const std::string stream = sample::codec + "/stream";
    const auto isKnown = [](const std::string& object)
    { return problemsAfter([&](sim::Machine& machine) { machine.faults[0].object = object; }).empty(); };

    for (const std::string& object :
         {std::string("*"), std::string("enumerator"), std::string("endpoints(eAll, 15)"),
          std::string("endpoints(eRender, 1)"), std::string("endpoints(eCapture, 4294967295)"), sample::codec,
          sample::speakers, jack, jack + " incoming", stream + " outgoing", stream + " to " + jack, jack + " control 0",
          jack + " control 4"})
        EXPECT_TRUE(isKnown(object)) << object;
    for (const std::string& object :
         {std::string(""), std::string("enumerators"), std::string("endpoints(eAll, )"),
          std::string("endpoints(eAll, 15"), std::string("endpoints(all, 15)"), std::string("endpoints(eAll, 1)5)"),
          sample::codec + " incoming", jack + " incomings", std::string(" incoming"), jack + " to", jack + " to x",
          "x to " + jack, jack + " control 5", jack + " control 00", jack + " control ", std::string("x control 0"),
          stream + " control 0"})
        EXPECT_FALSE(isKnown(object)) << object;
}

TEST(MachineCheck, KnowsTheListOfAPathWhoseEndsContainTheWordBetweenThem)
{
    const auto change = [](sim::Machine& machine)
    {
        sim::Topology& topology = machine.adapters[0].topology.emplace();
        topology.connectors.resize(2);
        topology.connectors[0].id = "a to b";
        topology.connectors[1].id = "c to d";
        topology.connectors[1].localId = 1;
        machine.joins.clear();
        machine.endpoints[1].volume->hardware = {};
        machine.faults = {{"IPartsList::GetCount", "a to b to c to d", ""}};
    };

    EXPECT_THAT(problemsAfter(change), testing::IsEmpty());
}
}
