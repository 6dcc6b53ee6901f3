#include "tests/client/capturing/hostilities.h"

#include "simulator/machine/propertykeys.h"
#include "tests/client/capturing/hostilechanges.h"

#include <limits>
#include <string>
#include <utility>

namespace
{
using namespace hostile;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float largest = std::numeric_limits<float>::max();
constexpr float smallest = std::numeric_limits<float>::denorm_min();

const std::vector<Hostility> allHostilities = {
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
     },
     false},
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
}

const std::vector<Hostility>& hostilities()
{
    return allHostilities;
}
