// The examiner itself: what it does not see, no comparison of transcripts shows.
#include "tests/support/questions.h"

#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/propertykeys.h"
#include "tests/support/clienttest.h"

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <utility>

namespace
{
/// Changes a machine. @return whether the machine has what is to be changed
using MachineChange = std::function<bool(sim::Machine&)>;

struct NamedChange
{
    const char* name;
    MachineChange change;
};

/// Changes the first endpoint of which @p change says that it could be changed.
MachineChange ofEndpoint(const std::function<bool(sim::Endpoint&)>& change)
{
    return [change](sim::Machine& machine)
    { return std::any_of(machine.endpoints.begin(), machine.endpoints.end(), change); };
}

MachineChange ofActiveEndpoint(const std::function<bool(sim::Endpoint&)>& change)
{
    return ofEndpoint([change](sim::Endpoint& endpoint)
                      { return endpoint.state == sim::stateActive && endpoint.hasAudioClient && change(endpoint); });
}

MachineChange ofVolume(const std::function<void(sim::EndpointVolume&)>& change)
{
    return ofEndpoint(
        [change](sim::Endpoint& endpoint)
        {
            const bool isOwn = endpoint.volume && endpoint.volume->hardware.volume.empty();
            if (isOwn)
                change(*endpoint.volume);
            return isOwn;
        });
}

MachineChange ofAdapter(const std::function<bool(sim::Adapter&)>& change)
{
    return [change](sim::Machine& machine)
    { return std::any_of(machine.adapters.begin(), machine.adapters.end(), change); };
}

MachineChange ofConnector(const std::function<bool(sim::Connector&)>& change)
{
    return ofAdapter(
        [change](sim::Adapter& adapter)
        {
            return adapter.topology &&
                   std::any_of(adapter.topology->connectors.begin(), adapter.topology->connectors.end(), change);
        });
}

MachineChange ofSubunit(const std::function<bool(sim::Subunit&)>& change)
{
    return ofAdapter(
        [change](sim::Adapter& adapter)
        {
            return adapter.topology &&
                   std::any_of(adapter.topology->subunits.begin(), adapter.topology->subunits.end(), change);
        });
}

MachineChange ofSignalPath(const std::function<bool(sim::SignalPath&)>& change)
{
    return ofAdapter(
        [change](sim::Adapter& adapter)
        {
            return adapter.topology &&
                   std::any_of(adapter.topology->signalPaths.begin(), adapter.topology->signalPaths.end(), change);
        });
}

/// Turns a flag or a value into another one.
template<class T>
bool becomes(T& place, const T& value)
{
    return std::exchange(place, value) != value;
}

const PROPERTYKEY ownKey = {{0xB5E3C9A2, 0x3C44, 0x4F2D, {0x8E, 0x6B, 0x0C, 0x61, 0x7F, 0x0D, 0x9A, 0x05}}, 2};

// clang-format off
const NamedChange changesOfDevices[] = {
    {"order", [](sim::Machine& machine) { return machine.endpoints.size() > 1 && (std::swap(machine.endpoints[0], machine.endpoints[1]), true); }},
    {"account", [](sim::Machine& machine) { return becomes(machine.account, sim::Account::ordinary); }},
    {"names", [](sim::Machine& machine) { return becomes(machine.notPresentNames, sim::NotPresentNames::failing); }},
    {"state", ofEndpoint([](sim::Endpoint& endpoint) { return becomes(endpoint.state, sim::stateDisabled); })},
    {"flow", ofEndpoint([](sim::Endpoint& endpoint) { return becomes(endpoint.flow, eCapture); })},
    {"installed", ofEndpoint([](sim::Endpoint& endpoint) { return becomes(endpoint.installed, false); })},
    {"string", ofEndpoint([](sim::Endpoint& endpoint) { sim::setProperty(endpoint.properties, sim::keys::friendlyName, sim::PropertyValue::ofText("x")); return true; })},
    {"null string", ofEndpoint([](sim::Endpoint& endpoint) { sim::setProperty(endpoint.properties, sim::keys::friendlyName, sim::PropertyValue::ofText(sim::Text())); return true; })},
    {"blob", ofEndpoint([](sim::Endpoint& endpoint) { sim::setProperty(endpoint.properties, ownKey, sim::PropertyValue::ofBytes({1, 2})); return true; })},
    {"tag", ofEndpoint([](sim::Endpoint& endpoint) { sim::setProperty(endpoint.properties, sim::keys::formFactor, sim::PropertyValue::ofNumber(1, VT_UI8)); return true; })},
    {"property of an adapter", ofAdapter([](sim::Adapter& adapter) { sim::setProperty(adapter.properties, ownKey, sim::PropertyValue::ofReal(0.5f)); return true; })},
    {"client", ofEndpoint([](sim::Endpoint& endpoint) { return becomes(endpoint.hasAudioClient, false); })},
    {"filter", ofEndpoint([](sim::Endpoint& endpoint) { return becomes(endpoint.hasBaseFilter, false); })},
    {"meter", ofEndpoint([](sim::Endpoint& endpoint) { return becomes(endpoint.hasMeter, !endpoint.hasMeter); })},
    {"mix format", ofActiveEndpoint([](sim::Endpoint& endpoint) { endpoint.mixFormat = sim::MixFormat{{16, 22050, 1}, false}; return true; })},
    {"periods", ofActiveEndpoint([](sim::Endpoint& endpoint) { endpoint.periods = sim::DevicePeriods(); endpoint.periods->usual = 123456; return true; })},
    {"shortest period", ofActiveEndpoint([](sim::Endpoint& endpoint) { endpoint.periods = sim::DevicePeriods(); endpoint.periods->minimum = 12345; return true; })},
    {"no volume", ofEndpoint([](sim::Endpoint& endpoint) { return std::exchange(endpoint.volume, std::nullopt).has_value(); })},
    {"lowest level", ofVolume([](sim::EndpointVolume& volume) { volume.minimum -= 1; })},
    {"step", ofVolume([](sim::EndpointVolume& volume) { volume.step += 0.25f; })},
    {"level", ofVolume([](sim::EndpointVolume& volume) { volume.channels.at(0) -= 0.5f; })},
    {"channels", ofVolume([](sim::EndpointVolume& volume) { volume.channels.push_back(volume.minimum); })},
    {"mute", ofVolume([](sim::EndpointVolume& volume) { volume.muted = !volume.muted; })},
    {"hardware support", ofVolume([](sim::EndpointVolume& volume) { volume.hardwareSupport ^= 4; })},
    {"taper", ofVolume([](sim::EndpointVolume& volume) { volume.taper = volume.taper == sim::Taper::audio ? sim::Taper::linear : sim::Taper::audio; })},
    {"refusal", ofVolume([](sim::EndpointVolume& volume) { volume.refused.push_back("GetMute"); })},
    {"default", ofEndpoint([](sim::Endpoint& endpoint) { return !std::exchange(endpoint.defaultFor, {}).empty(); })},
    {"wave device", [](sim::Machine& machine) { return !machine.waveOut.empty() && (machine.waveOut.pop_back(), true); }},
    {"wave id", [](sim::Machine& machine) { return !machine.waveIn.empty() && (machine.waveIn[0].endpointId += "x", true); }},
    {"wave code", [](sim::Machine& machine) { return !machine.waveOut.empty() && becomes(machine.waveOut[0].sizeResult, 5u); }},
    {"further wave code", [](sim::Machine& machine) { return !machine.waveIn.empty() && becomes(machine.waveIn[0].idResult, 5u); }},
#if !defined(_WIN32) // there the configuration manager is that of Windows
    {"parent", [](sim::Machine& machine) { return !machine.deviceInstances.empty() && (machine.deviceInstances[0].parent = "X\\Y\\Z", true); }},
#endif
};

const NamedChange changesOfHardware[] = {
    {"no topology", ofEndpoint([](sim::Endpoint& endpoint) { return std::exchange(endpoint.topology, std::nullopt).has_value(); })},
    {"device of a topology", ofAdapter([](sim::Adapter& adapter) { return adapter.topology && (adapter.topology->deviceId = sim::Text(), true); })},
    {"adapter that cannot be opened", ofAdapter([](sim::Adapter& adapter) { return becomes(adapter.openable, false); })},
    {"name", ofSubunit([](sim::Subunit& part) { part.name = "x"; return true; })},
    {"local id", ofSubunit([](sim::Subunit& part) { part.localId += 1000; return true; })},
    {"no id", ofSubunit([](sim::Subunit& part) { return becomes(part.reportsId, false); })},
    {"subtype", ofSubunit([](sim::Subunit& part) { part.subType.Data1 += 1; return true; })},
    {"incoming", ofSubunit([](sim::Subunit& part) { return !std::exchange(part.incoming, {}).empty(); })},
    {"order of neighbours", ofSubunit([](sim::Subunit& part) { return part.incoming.size() > 1 && (std::swap(part.incoming[0], part.incoming[1]), true); })},
    {"outgoing", ofConnector([](sim::Connector& part) { return !std::exchange(part.outgoing, {}).empty(); })},
    {"level of a control", ofSubunit([](sim::Subunit& part) { return part.volume && !part.volume->channels.empty() && (part.volume->channels.back().level -= 0.5f, true); })},
    {"range of a control", ofSubunit([](sim::Subunit& part) { return part.volume && !part.volume->channels.empty() && (part.volume->channels.back().minimum -= 1, true); })},
    {"step of a control", ofSubunit([](sim::Subunit& part) { return part.volume && !part.volume->channels.empty() && (part.volume->channels.back().step += 1, true); })},
    {"mute of a control", ofSubunit([](sim::Subunit& part) { return part.mute && becomes(part.mute->muted, !part.mute->muted); })},
    {"no mute", ofSubunit([](sim::Subunit& part) { return std::exchange(part.mute, std::nullopt).has_value(); })},
    {"selection", ofSubunit([](sim::Subunit& part) { return part.selector && (part.selector->selection += 1, true); })},
    {"type", ofConnector([](sim::Connector& part) { return becomes(part.type, Physical_Internal); })},
    {"direction", ofConnector([](sim::Connector& part) { return becomes(part.direction, In); })},
    {"no jacks", ofConnector([](sim::Connector& part) { return !std::exchange(part.jacks, {}).empty(); })},
    {"colour", ofConnector([](sim::Connector& part) { return !part.jacks.empty() && (part.jacks[0].colour ^= 1, true); })},
    {"plug", ofConnector([](sim::Connector& part) { return !part.jacks.empty() && (part.jacks[0].connected = false, true); })},
    {"changing formats", ofConnector([](sim::Connector& part) { return !part.jacks.empty() && becomes(part.jacks[0].changesFormat, !part.jacks[0].changesFormat); })},
    {"no join", [](sim::Machine& machine) { return !machine.joins.empty() && (machine.joins.erase(machine.joins.begin()), true); }},
    {"join of one direction", [](sim::Machine& machine) { return !machine.joins.empty() && becomes(machine.joins[0].bothWays, false); }},
    {"join to nothing", [](sim::Machine& machine) { return !machine.joins.empty() && (machine.joins[0].toDevice = machine.joins[0].from, machine.joins[0].to.clear(), true); }},
    {"far device", [](sim::Machine& machine) { return !machine.joins.empty() && (machine.joins[0].toDevice = "x", true); }},
    {"no signal path", ofAdapter([](sim::Adapter& adapter) { return adapter.topology && !std::exchange(adapter.topology->signalPaths, {}).empty(); })},
    {"way of a signal", ofSignalPath([](sim::SignalPath& path) { return !std::exchange(path.through, {}).empty(); })},
    {"mixed signal", ofSignalPath([](sim::SignalPath& path) { return becomes(path.mixed, !path.mixed); })},
};
// clang-format on

class Examiner : public support::ClientTest
{
protected:
    /// Whether the examiner sees the change on the first machine that can be changed so.
    bool sees(const NamedChange& change)
    {
        for (const char* const name : {"laptop", "published", "studio", "broken"})
        {
            const sim::Machine machine = sim::findMachine(name);
            sim::Machine changed = machine;
            if (!change.change(changed))
                continue;
            support::Transcript& whole = m_transcripts[name];
            if (whole.empty())
                whole = support::transcriptOf(machine);
            return !support::firstDifference(whole, support::transcriptOf(changed)).empty();
        }
        return false;
    }

private:
    std::map<std::string, support::Transcript> m_transcripts;
};

TEST_F(Examiner, GivesTheSameTranscriptTwice)
{
    sim::Simulation& simulation = play("studio");

    const support::Examination first = support::examine(simulation);
    const support::Examination second = support::examine(simulation);

    EXPECT_EQ("", support::firstDifference(first.transcript, second.transcript));
    EXPECT_EQ(first.journal.lines(), second.journal.lines());
}

TEST_F(Examiner, ChangesNothing)
{
    sim::Simulation& simulation = play("studio");
    const sim::Machine before = simulation.machine();

    const support::Examination examination = support::examine(simulation);

    EXPECT_EQ(before, simulation.machine());
    EXPECT_EQ(sim::Census(), simulation.census());
    for (const char* const operations :
         {"IAudioEndpointVolume::Set*", "IPropertyStore::Set*", "IAudioVolumeLevel::Set*"})
        EXPECT_TRUE(examination.journal.of(operations).empty()) << examination.journal.of(operations);
}

TEST_F(Examiner, SeesEachChangeOfADevice)
{
    for (const NamedChange& change : changesOfDevices)
        EXPECT_TRUE(sees(change)) << change.name;
}

TEST_F(Examiner, SeesEachChangeOfAHardwareGraph)
{
    for (const NamedChange& change : changesOfHardware)
        EXPECT_TRUE(sees(change)) << change.name;
}
}
