// Captures of machines that no file may contain: whatever a platform answers, the capture can be read again.
#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/propertykeys.h"
#include "tests/client/capturing/capturetest.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <ostream>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace
{
constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float largest = std::numeric_limits<float>::max();
constexpr float smallest = std::numeric_limits<float>::denorm_min();

/// What makes a machine hostile.
struct Hostility
{
    const char* name;
    void (*apply)(sim::Machine& machine);
    bool isRepeated = true; ///< false: no machine file can answer so, and a capture of the replay finds something else
};

void PrintTo(const Hostility& hostility, std::ostream* out)
{
    *out << hostility.name;
}

/// The first endpoint with a volume that no part implements.
sim::EndpointVolume& volumeIn(sim::Machine& machine)
{
    for (sim::Endpoint& endpoint : machine.endpoints)
    {
        if (endpoint.volume)
        {
            endpoint.volume->hardware = {};
            return *endpoint.volume;
        }
    }
    throw std::logic_error("the machine has no volume");
}

/// The first adapter with subunits.
sim::Topology& topologyIn(sim::Machine& machine)
{
    for (sim::Adapter& adapter : machine.adapters)
    {
        if (adapter.topology && !adapter.topology->subunits.empty())
            return *adapter.topology;
    }
    throw std::logic_error("the machine has no topology");
}

sim::Part& partWithVolume(sim::Machine& machine)
{
    for (sim::Subunit& subunit : topologyIn(machine).subunits)
    {
        if (subunit.volume)
            return subunit;
    }
    throw std::logic_error("the machine has no level");
}

/// Changes an id wherever data refer to it.
void rename(sim::Machine& machine, const std::string& from, const std::string& to)
{
    const auto change = [&](std::string& id)
    {
        if (id == from)
            id = to;
    };
    const auto changePart = [&](sim::Part& part)
    {
        change(part.id);
        for (std::vector<std::string>* const list : {&part.incoming, &part.outgoing})
            std::for_each(list->begin(), list->end(), change);
    };
    const auto changeDevice = [&](sim::Device& device)
    {
        if (!device.topology)
            return;
        std::for_each(device.topology->connectors.begin(), device.topology->connectors.end(), changePart);
        std::for_each(device.topology->subunits.begin(), device.topology->subunits.end(), changePart);
        for (sim::SignalPath& path : device.topology->signalPaths)
        {
            change(path.from);
            change(path.to);
            std::for_each(path.through.begin(), path.through.end(), change);
        }
    };
    std::for_each(machine.endpoints.begin(), machine.endpoints.end(), changeDevice);
    std::for_each(machine.adapters.begin(), machine.adapters.end(), changeDevice);
    for (sim::Join& join : machine.joins)
    {
        change(join.from);
        change(join.to);
    }
}

void fail(sim::Machine& machine, const char* operation, const std::string& object = "*",
          std::vector<std::string> arguments = {})
{
    sim::FaultRule rule;
    rule.operation = operation;
    rule.object = object;
    rule.arguments = std::move(arguments);
    machine.faults.push_back(rule);
}

std::vector<std::uint8_t> plainFormat(WORD sizeOfWhatFollows)
{
    WAVEFORMATEX format = {};
    format.wFormatTag = WAVE_FORMAT_PCM;
    format.nChannels = 2;
    format.nSamplesPerSec = 48000;
    format.nBlockAlign = 4;
    format.nAvgBytesPerSec = 192000;
    format.wBitsPerSample = 16;
    format.cbSize = sizeOfWhatFollows;
    std::vector<std::uint8_t> bytes(sizeof format);
    std::memcpy(bytes.data(), &format, sizeof format);
    return bytes;
}

void setMixFormat(sim::Machine& machine, std::vector<std::uint8_t> bytes)
{
    for (sim::Endpoint& endpoint : machine.endpoints)
    {
        endpoint.mixFormat.reset();
        endpoint.mixFormatBytes = bytes;
    }
}

sim::EndpointVolume ranging(float minimum, float maximum, float step, std::vector<float> channels)
{
    sim::EndpointVolume volume;
    volume.minimum = minimum;
    volume.maximum = maximum;
    volume.step = step;
    volume.channels = std::move(channels);
    return volume;
}

void setRange(sim::Machine& machine, float minimum, float maximum, float step, std::vector<float> channels)
{
    volumeIn(machine) = ranging(minimum, maximum, step, std::move(channels));
}

PROPERTYKEY keyOf(unsigned long family, DWORD number)
{
    PROPERTYKEY key = {};
    key.fmtid.Data1 = family;
    key.pid = number;
    return key;
}

void addProperty(sim::Machine& machine, const PROPERTYKEY& key, sim::PropertyValue value)
{
    sim::Properties& properties = machine.endpoints.front().properties;
    properties.insert(properties.begin(), {key, std::move(value)});
}

const std::vector<Hostility> hostilities = {
    // Endpoint volumes.
    {"AVolumeRangeThatIsNoNumber",
     [](sim::Machine& machine) {
         setRange(machine, notANumber, notANumber, notANumber, {0, 0});
     }},
    {"AnInfiniteVolumeRange",
     [](sim::Machine& machine) {
         setRange(machine, -infinity, infinity, infinity, {0, -infinity});
     }},
    {"TheWidestVolumeRange",
     [](sim::Machine& machine) {
         setRange(machine, -largest, largest, smallest, {0, -1});
     }},
    {"TheWidestVolumeRangeWithoutLevels",
     [](sim::Machine& machine)
     {
         setRange(machine, -largest, largest, largest, {0, -1, largest});
         fail(machine, "IAudioEndpointVolume::GetChannelVolumeLevel");
         fail(machine, "IAudioEndpointVolume::GetMasterVolumeLevel");
     }},
    {"AVolumeRangeTheWrongWayRound",
     [](sim::Machine& machine) {
         setRange(machine, 10, -10, -1, {0, 20, -30});
     }},
    {"ATinyVolumeRange",
     [](sim::Machine& machine) {
         setRange(machine, 0, smallest, smallest, {smallest, 0, -0.0f});
     }},
    {"LevelsThatAreNoNumbers",
     [](sim::Machine& machine) {
         setRange(machine, -60, 0, 1, {notANumber, infinity, -infinity});
     }},
    {"LevelsWithoutRange",
     [](sim::Machine& machine)
     {
         setRange(machine, -60, 0, 1, {largest, -largest});
         fail(machine, "IAudioEndpointVolume::GetVolumeRange");
     }},
    {"SeventyChannels", [](sim::Machine& machine) { setRange(machine, -60, 0, 1, std::vector<float>(70, -3)); }},
    {"AMeasuredTaperThatIsNoNumber",
     [](sim::Machine& machine)
     {
         volumeIn(machine).taper = sim::Taper::measured;
         volumeIn(machine).taperPoints = {{-50, notANumber}, {-40, infinity}, {-30, 5}, {-20, 2}, {-10, -1}};
         volumeIn(machine).channels = {-50, -40, -35, -30, -20, -10};
     },
     false},
    {"AMasterThatIsNoNumber", [](sim::Machine& machine) { volumeIn(machine).master = notANumber; }},
    {"NoSteps", [](sim::Machine& machine) { volumeIn(machine).steps = 0; }},
    {"TheMostSteps", [](sim::Machine& machine) { volumeIn(machine).steps = UINT32_MAX; }},
    {"UnknownHardwareSupport", [](sim::Machine& machine) { volumeIn(machine).hardwareSupport = UINT32_MAX; }},
    // Endpoints.
    {"AnUnknownFlow", [](sim::Machine& machine) { machine.endpoints.front().flow = static_cast<EDataFlow>(77); }},
    {"AnUnknownState", [](sim::Machine& machine) { machine.endpoints.front().state = 0xFFFFFFFF; }},
    {"NoState", [](sim::Machine& machine) { machine.endpoints.front().state = 0; }},
    {"AnEmptyEndpointId", [](sim::Machine& machine) { machine.endpoints.front().id.clear(); }},
    {"EndpointIdsLikeShortPartIds",
     [](sim::Machine& machine)
     {
         for (sim::Endpoint& endpoint : machine.endpoints)
             endpoint.id.insert(0, "/");
     }},
    {"EndpointIdsLikeShortPartIdsAndPartsWithoutId",
     [](sim::Machine& machine)
     {
         for (sim::Endpoint& endpoint : machine.endpoints)
             endpoint.id.insert(0, "/");
         fail(machine, "IPart::GetGlobalId");
     }},
    {"EndpointsOfOneId",
     [](sim::Machine& machine)
     {
         for (sim::Endpoint& endpoint : machine.endpoints)
             endpoint.id = machine.endpoints.front().id;
     }},
    {"AnEndpointWithAnInventedId",
     [](sim::Machine& machine)
     {
         machine.endpoints.front().id.clear();
         machine.endpoints.back().id = "{0.0.0.00000000}.{captured-0}";
     }},
    {"PeriodsOfNothing",
     [](sim::Machine& machine) {
         machine.endpoints.front().periods = sim::DevicePeriods{0, 0};
     }},
    {"AMinimumPeriodOfNothing",
     [](sim::Machine& machine) {
         machine.endpoints.front().periods = sim::DevicePeriods{100000, 0};
     }},
    {"TheLongestPeriods",
     [](sim::Machine& machine) {
         machine.endpoints.front().periods = sim::DevicePeriods{UINT32_MAX, UINT32_MAX - 1};
     }},
    {"AMixFormatOfPlainSamplesThatSaysThatMoreFollows",
     [](sim::Machine& machine) { setMixFormat(machine, plainFormat(22)); }},
    {"AMixFormatOfZeros", [](sim::Machine& machine) { setMixFormat(machine, std::vector<std::uint8_t>(18)); }},
    // Properties.
    {"StringsThatAreNotUtf8",
     [](sim::Machine& machine)
     {
         const std::string text = "a\xFF\xC0\x80\xED\xA0\x80 b\xF8";
         addProperty(machine, keyOf(7, 1), sim::PropertyValue::ofText(text));
         addProperty(machine, keyOf(7, 2), sim::PropertyValue::ofNarrowText(text));
         machine.endpoints.front().topology->connectors.front().name = text;
         partWithVolume(machine).name = text;
     }},
    {"StringsWithAZeroCharacter",
     [](sim::Machine& machine)
     {
         const std::string text("a\0b", 3);
         addProperty(machine, keyOf(7, 1), sim::PropertyValue::ofText(text));
         addProperty(machine, keyOf(7, 2), sim::PropertyValue::ofNarrowText(text));
         partWithVolume(machine).name = text;
     }},
    {"EveryTag",
     [](sim::Machine& machine)
     {
         for (DWORD tag = 0; tag < 0x60; ++tag)
         {
             addProperty(machine, keyOf(8, tag), sim::PropertyValue::ofTag(static_cast<VARTYPE>(tag)));
             addProperty(machine, keyOf(9, tag), sim::PropertyValue::ofNumber(UINT64_MAX, static_cast<VARTYPE>(tag)));
             addProperty(machine, keyOf(10, tag), sim::PropertyValue::ofTag(static_cast<VARTYPE>(0x1000 | tag)));
             addProperty(machine, keyOf(11, tag), sim::PropertyValue::ofTag(static_cast<VARTYPE>(0x4000 | tag)));
         }
     }},
    {"RealsThatAreNoNumbers",
     [](sim::Machine& machine)
     {
         DWORD number = 0;
         for (const float real : {notANumber, infinity, -infinity, smallest, largest, -0.0f})
         {
             addProperty(machine, keyOf(8, ++number), sim::PropertyValue::ofReal(real));
             addProperty(machine, keyOf(9, number), sim::PropertyValue::ofLongReal(double{real} / 1e300));
         }
     }},
    {"PropertiesOfOneKey",
     [](sim::Machine& machine)
     {
         addProperty(machine, keyOf(8, 1), sim::PropertyValue::ofNumber(1));
         addProperty(machine, keyOf(8, 1), sim::PropertyValue::ofNumber(2));
     }},
    {"AKeyLikeAnInventedOne",
     [](sim::Machine& machine)
     {
         addProperty(machine, keyOf(8, 1), sim::PropertyValue::ofNumber(1));
         addProperty(machine, keyOf(0, 1), sim::PropertyValue::ofNumber(2));
         fail(machine, "IPropertyStore::GetAt", "*", {"1"});
     }},
    // Hardware graphs.
    {"PartsWithoutId",
     [](sim::Machine& machine)
     {
         sim::Topology& topology = topologyIn(machine);
         rename(machine, topology.subunits.front().id, "");
         rename(machine, topology.connectors.front().id, "");
     }},
    {"APartIdLikeAShortOne",
     [](sim::Machine& machine)
     {
         sim::Topology& topology = topologyIn(machine);
         rename(machine, topology.subunits.front().id, "/1");
         rename(machine, topology.connectors.front().id, "/");
         rename(machine, topology.connectors.back().id, "/2");
     }},
    {"PartsOfOneId",
     [](sim::Machine& machine)
     {
         sim::Topology& topology = topologyIn(machine);
         topology.subunits.front().id = topology.subunits.back().id;
         topology.connectors.front().id = topology.connectors.back().id;
     }},
    {"ASubunitWithTheIdOfAConnector",
     [](sim::Machine& machine)
     {
         sim::Topology& topology = topologyIn(machine);
         for (sim::Connector& connector : topology.connectors)
             rename(machine, connector.id, topology.subunits.front().id);
     }},
    {"AnEndpointWhosePartsHaveTheIdsOfAnAdapter",
     [](sim::Machine& machine)
     {
         for (sim::Endpoint& endpoint : machine.endpoints)
         {
             if (endpoint.topology)
                 endpoint.topology->connectors.front().id = topologyIn(machine).connectors.front().id;
         }
     }},
    {"PartsOfOneLocalId",
     [](sim::Machine& machine)
     {
         for (sim::Subunit& subunit : topologyIn(machine).subunits)
             subunit.localId = 0;
         for (sim::Connector& connector : topologyIn(machine).connectors)
             connector.localId = UINT32_MAX;
     }},
    {"ASubunitWithTheIdOfAConnectorOfAnotherDevice",
     [](sim::Machine& machine)
     {
         const std::string id = machine.endpoints.front().topology->connectors.front().id;
         topologyIn(machine).subunits.front().id = id;
     }},
    {"JoinsToSubunits",
     [](sim::Machine& machine)
     {
         for (sim::Join& join : machine.joins)
         {
             join.to = topologyIn(machine).subunits.front().id;
             join.bothWays = false;
         }
     }},
    {"JoinsToThemselves",
     [](sim::Machine& machine)
     {
         for (sim::Join& join : machine.joins)
             join.to = join.from;
     }},
    {"JoinsToDevicesWithoutName",
     [](sim::Machine& machine)
     {
         for (sim::Join& join : machine.joins)
         {
             join.to.clear();
             join.toDevice = "";
         }
     }},
    {"AnAdapterWithoutId",
     [](sim::Machine& machine)
     {
         for (sim::Join& join : machine.joins)
             join.toDevice = "";
         machine.adapters.front().id.clear();
     }},
    {"AdaptersLikeShortPartIdsWithPartsThatHaveNone",
     [](sim::Machine& machine)
     {
         for (sim::Join& join : machine.joins)
             join.toDevice = "/x";
         machine.adapters.front().id = "/x";
         machine.adapters.front().topology->deviceId = "/x";
         fail(machine, "IPart::GetGlobalId");
     }},
    {"AdaptersLikeShortPartIdsThatCannotBeOpened",
     [](sim::Machine& machine)
     {
         for (sim::Join& join : machine.joins)
             join.toDevice = "/x";
         for (sim::Adapter& adapter : machine.adapters)
             adapter.openable = false;
         fail(machine, "IPart::GetGlobalId");
     }},
    {"PartsOfUnknownKinds",
     [](sim::Machine& machine)
     {
         for (sim::Connector& connector : topologyIn(machine).connectors)
         {
             connector.type = static_cast<ConnectorType>(-1);
             connector.direction = static_cast<DataFlow>(9);
         }
     }},
    {"JacksOfUnknownKinds",
     [](sim::Machine& machine)
     {
         for (sim::Connector& connector : topologyIn(machine).connectors)
         {
             sim::Jack jack;
             jack.connection = static_cast<EPcxConnectionType>(-5);
             jack.geometricLocation = static_cast<EPcxGeoLocation>(0x7FFFFFFF);
             jack.generalLocation = static_cast<EPcxGenLocation>(-1);
             jack.portConnection = static_cast<EPxcPortConnection>(99);
             jack.channels = UINT32_MAX;
             jack.colour = UINT32_MAX;
             connector.type = Physical_External;
             connector.jacks.assign(100, jack);
         }
     }},
    {"LevelsOfPartsThatAreNoNumbers",
     [](sim::Machine& machine)
     {
         partWithVolume(machine).volume->channels = {
             {notANumber, 0, 1, 0},  {-infinity, infinity, 1, notANumber}, {0, -10, 1, 0},
             {-10, 0, -1, infinity}, {-largest, largest, 0, 1e9f},         {-10, 0, infinity, smallest}};
     }},
    {"SeventyChannelsOfAPart", [](sim::Machine& machine) { partWithVolume(machine).volume->channels.resize(70); }},
    {"ASelectionOfNothing",
     [](sim::Machine& machine) { partWithVolume(machine).selector = sim::SelectorControl{UINT32_MAX}; }},
    {"FurtherControlsWithOwnInterfaces",
     [](sim::Machine& machine)
     {
         partWithVolume(machine).furtherControls = {
             {IID_IAudioVolumeLevel, "a"}, {GUID{}, std::nullopt}, {IID_IAudioMute, ""}, {IID_IAudioMute, "b"}};
         fail(machine, "IPart::GetControlInterface", "*", {"0"});
     }},
    {"NeighboursThatAreNoParts",
     [](sim::Machine& machine)
     {
         sim::Topology& topology = topologyIn(machine);
         topology.subunits.front().incoming.push_back(topology.subunits.front().id);
         topology.subunits.front().incoming.push_back(topology.subunits.front().id);
     }},
    {"NeighboursOfAnotherDevice", [](sim::Machine& machine)
     { topologyIn(machine).subunits.front().incoming = {machine.endpoints.front().topology->connectors.front().id}; }},
    {"SignalPathsThatRepeatThemselves",
     [](sim::Machine& machine)
     {
         sim::Topology& topology = topologyIn(machine);
         const std::string from = topology.connectors.front().id;
         const std::string to = topology.connectors.back().id;
         const std::string between = topology.subunits.front().id;
         topology.signalPaths = {{from, to, {between, from, between, to}, true},
                                 {from, to, {between}, true},
                                 {from, to, {}, false},
                                 {from, from, {from, from}, false}};
     }},
    {"PartsOfUnknownTypeThatNoTopologyLists",
     [](sim::Machine& machine)
     {
         fail(machine, "IDeviceTopology::GetConnector");
         fail(machine, "IPart::GetPartType");
         fail(machine, "IConnector::QueryInterface");
     }},
    {"TopologiesThatCannotBeCounted",
     [](sim::Machine& machine)
     {
         fail(machine, "IDeviceTopology::GetConnectorCount");
         fail(machine, "IDeviceTopology::GetSubunitCount");
         fail(machine, "IDeviceTopology::GetDeviceId");
     }},
    // What belongs to no device.
    {"DeviceInstancesInACircle",
     [](sim::Machine& machine)
     {
         for (sim::DeviceInstance& instance : machine.deviceInstances)
             instance.parent = machine.deviceInstances.front().id;
     }},
    {"DeviceInstancesWithoutName",
     [](sim::Machine& machine)
     {
         for (sim::DeviceInstance& instance : machine.deviceInstances)
             instance.parent = "";
     }},
    {"DeviceInstancesThatAreNotUtf8",
     [](sim::Machine& machine)
     {
         for (sim::DeviceInstance& instance : machine.deviceInstances)
             instance.parent = "ROOT\\\xFF\xED\xA0\x80";
     }},
    {"WaveDevicesWithLongIds",
     [](sim::Machine& machine)
     {
         machine.waveOut.push_back({std::string(100000, 'x')});
         machine.waveIn.push_back({"\xFF\xC0\x80"});
         machine.waveIn.push_back({""});
     }},
};

class CaptureOfAHostileMachine : public CaptureTest, public testing::WithParamInterface<Hostility>
{
};

TEST_P(CaptureOfAHostileMachine, CanBeReadAgainAndCapturedWithTheSameResult)
{
    sim::Machine machine = sim::findMachine("laptop");
    machine.script.clear();
    GetParam().apply(machine);

    const Captured first = captured(machine);
    const Captured second = captured(replayed(first));

    EXPECT_TRUE(first.left.empty()) << first.left;
    EXPECT_EQ("", support::firstDifference(first.problems(), second.problems()));
    if (GetParam().isRepeated)
        EXPECT_EQ("", support::firstDifference(first.lines(), second.lines()));
    else
        EXPECT_FALSE(first.capture.notes.empty());
}

INSTANTIATE_TEST_SUITE_P(Machines, CaptureOfAHostileMachine, testing::ValuesIn(hostilities),
                         [](const testing::TestParamInfo<Hostility>& each) { return std::string(each.param.name); });

TEST_F(CaptureTest, IsUnreadableUnderANameThatNoFileCanContain)
{
    sim::Simulation simulation(sim::findMachine("virtual"));
    simulation.latency().clear();
    sonavit::CaptureOptions options;
    options.name = std::string("a\0b", 3);

    const sonavit::Result<sonavit::Capture> capture = resultOf(simulation, options);

    ASSERT_FALSE(capture);
    EXPECT_EQ(sonavit::Problem::Kind::unreadable, capture.problem().kind());
    EXPECT_EQ("capture", capture.problem().operation());
    EXPECT_THAT(capture.problem().sentence(), testing::HasSubstr("a string without a zero character"));
}

/// Calls of which several fail, with a code or with null, as far as they have one.
TEST_F(CaptureTest, OfMachinesAtWhichSeveralCallsFailCanBeReadAgain)
{
    constexpr std::uint32_t machines = isSlow ? 10 : 100;
    const sim::Machine whole = sim::findMachine("laptop");
    const sim::JournalEntries calls = captured(whole).journal;
    for (std::uint32_t seed = 0; seed < machines && !HasFailure(); ++seed)
    {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        sim::Machine machine = whole;
        machine.script.clear();
        for (std::uint32_t count = 0; count < 3 + seed % 20; ++count)
        {
            const sim::JournalEntry& call = calls[random() % calls.size()];
            if (call.operation.rfind("Co", 0) == 0)
                continue; // without COM there is no capture
            const bool isEverywhere = random() % 3 == 0;
            fail(machine, call.operation.c_str(), isEverywhere || call.object.empty() ? "*" : call.object,
                 isEverywhere ? std::vector<std::string>() : call.arguments);
            if (random() % 3 == 0)
                machine.faults.back().outcome = sim::FaultRule::Outcome::nullSuccess;
        }

        const Captured first = captured(machine);
        const Captured second = captured(replayed(first));

        EXPECT_TRUE(first.left.empty()) << first.left;
        EXPECT_EQ("", support::firstDifference(first.lines(), second.lines()));
    }
}

/// Any two of them at once.
TEST_F(CaptureTest, OfTwiceHostileMachinesCanBeReadAgain)
{
    for (std::size_t one = 0; one < hostilities.size(); ++one)
    {
        const std::size_t other = (one * 7 + 3) % hostilities.size();
        SCOPED_TRACE(hostilities[one].name + std::string(", ") + hostilities[other].name);
        sim::Machine machine = sim::findMachine("laptop");
        machine.script.clear();
        hostilities[one].apply(machine);
        try
        {
            hostilities[other].apply(machine);
        }
        catch (const std::logic_error&)
        {
            continue; // nothing is left to be changed
        }

        replayed(captured(machine));
    }
}
}
