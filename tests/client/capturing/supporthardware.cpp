#include "tests/client/capturing/supporthardware.h"

#include "COM/interfacequery.h"
#include "client/capturing/faults.h"
#include "client/capturing/hardware.h"
#include "client/capturing/textanswer.h"

#include <algorithm>
#include <set>
#include <unordered_map>
#include <utility>

namespace support
{
namespace
{
using sonavit::capturing::OpenEndpoint;
using sonavit::reading::Handle;

/// The endpoints of the list of all, recorded.
std::vector<OpenEndpoint> openEndpoints(IMMDeviceEnumerator& enumerator, sim::Machine& machine)
{
    std::vector<OpenEndpoint> endpoints;
    IMMDeviceCollection* list = nullptr;
    enumerator.EnumAudioEndpoints(eAll, DEVICE_STATEMASK_ALL, &list);
    const Handle<IMMDeviceCollection> holder(list);
    UINT count = 0;
    list->GetCount(&count);
    for (UINT index = 0; index < count; ++index)
    {
        IMMDevice* device = nullptr;
        list->Item(index, &device);
        OpenEndpoint endpoint = {"", Handle<IMMDevice>(device)};
        std::optional<std::string> id;
        sonavit::capturing::readText([&](LPWSTR* text) { return device->GetId(text); }, id);
        endpoint.id = id.value();
        machine.endpoints.emplace_back().id = endpoint.id;
        endpoints.push_back(std::move(endpoint));
    }
    return endpoints;
}

std::vector<sim::Device*> devicesOf(sim::Machine& machine)
{
    std::vector<sim::Device*> devices;
    for (sim::Endpoint& endpoint : machine.endpoints)
        devices.push_back(&endpoint);
    for (sim::Adapter& adapter : machine.adapters)
        devices.push_back(&adapter);
    return devices;
}

/// The ids of the parts of @p from, each with that of the part in its place in @p to.
void addIds(const sim::Topology& from, const sim::Topology& to, std::unordered_map<std::string, std::string>& ids)
{
    for (std::size_t i = 0; i < from.connectors.size() && i < to.connectors.size(); ++i)
        ids[from.connectors[i].id] = from.connectors[i].reportsId ? from.connectors[i].id : to.connectors[i].id;
    for (std::size_t i = 0; i < from.subunits.size() && i < to.subunits.size(); ++i)
        ids[from.subunits[i].id] = from.subunits[i].reportsId ? from.subunits[i].id : to.subunits[i].id;
}

/// Compares a machine with its survey.
class Comparison
{
public:
    Comparison(const sim::Machine& machine, const sim::Machine& surveyed) : m_machine(machine), m_surveyed(surveyed) {}

    std::vector<std::string> differences()
    {
        findDevices();
        for (sim::Device* const device : devicesOf(m_surveyed))
        {
            const sim::Device* const original = deviceOf(device->id);
            if (original == nullptr || !original->topology || !device->topology)
                continue;
            addIds(*original->topology, *device->topology, m_ids);
        }
        for (sim::Device* const device : devicesOf(m_surveyed))
            compare(*device);
        return m_differences;
    }

private:
    const sim::Device* deviceOf(const std::string& id) const
    {
        const sim::Device* const endpoint = m_machine.endpoint(id);
        return endpoint != nullptr ? endpoint : m_machine.adapter(id);
    }

    void tell(const std::string& text) { m_differences.push_back(text); }

    /// The devices to which connectors lead from the listed endpoints on are those of the survey.
    void findDevices()
    {
        std::vector<std::string> found;
        std::set<std::string> known;
        const auto add = [&](const std::string& id)
        {
            if (known.insert(id).second)
                found.push_back(id);
        };
        for (const sim::Endpoint& endpoint : m_machine.endpoints)
        {
            if (endpoint.installed)
                add(endpoint.id);
        }
        for (std::size_t i = 0; i < found.size(); ++i)
        {
            const sim::Device* const device = deviceOf(found[i]);
            if (device == nullptr || !device->topology)
                continue;
            for (const sim::Connector& connector : device->topology->connectors)
            {
                const std::optional<sim::Peer> peer = m_machine.peer(connector.id);
                const sim::Device* const named = peer && peer->device ? m_machine.openDevice(*peer->device) : nullptr;
                if (named != nullptr)
                    add(named->id);
                if (peer && !peer->connector.empty())
                    add(m_machine.part(peer->connector).device->id);
            }
        }
        for (const sim::Device* const device : devicesOf(m_surveyed))
        {
            if (known.erase(device->id) == 0)
                tell("the survey has " + device->id);
        }
        for (const std::string& id : known)
            tell("the survey lacks " + id);
    }

    std::string idOf(const std::string& original) const
    {
        const auto found = m_ids.find(original);
        return found == m_ids.end() ? original : found->second;
    }

    void rename(sim::Part& part) const
    {
        part.id = idOf(part.id);
        for (std::vector<std::string>* const list : {&part.incoming, &part.outgoing})
            std::transform(list->begin(), list->end(), list->begin(), [&](const std::string& id) { return idOf(id); });
    }

    /// The topology as a survey should have it.
    sim::Topology expected(sim::Topology topology, const sim::Topology& surveyed) const
    {
        std::vector<sim::SignalPath> paths;
        for (std::size_t i = 0; i < topology.connectors.size(); ++i)
        {
            sim::Connector& connector = topology.connectors[i];
            rename(connector);
            const bool isPhysical = connector.type == Physical_External || connector.type == Physical_Internal;
            if (!isPhysical)
                connector.jacks.clear(); // no question leads to them
            for (std::size_t jack = 0; jack < connector.jacks.size(); ++jack)
            {
                std::optional<bool>& isConnected = connector.jacks[jack].connected;
                if (!isConnected && i < surveyed.connectors.size() && jack < surveyed.connectors[i].jacks.size())
                    isConnected = surveyed.connectors[i].jacks[jack].connected.value();
            }
        }
        for (sim::Subunit& subunit : topology.subunits)
            rename(subunit);
        for (const sim::Connector& from : topology.connectors)
        {
            for (const sim::Connector& to : topology.connectors)
            {
                for (sim::SignalPath& path : topology.signalPaths)
                {
                    if (idOf(path.from) != from.id || idOf(path.to) != to.id)
                        continue;
                    path.from = from.id;
                    path.to = to.id;
                    for (std::string& id : path.through)
                        id = idOf(id);
                    paths.push_back(path);
                }
            }
        }
        topology.signalPaths = paths;
        return topology;
    }

    void compare(const sim::Device& surveyed)
    {
        const sim::Device* const original = deviceOf(surveyed.id);
        if (original == nullptr)
            return;
        if (original->openable != surveyed.openable && m_machine.endpoint(surveyed.id) == nullptr)
            tell(surveyed.id + " is openable in one of them");
        if (original->topology.has_value() != surveyed.topology.has_value())
            tell(surveyed.id + " has a topology in one of them");
        if (!original->topology || !surveyed.topology)
            return;
        const sim::Topology topology = expected(*original->topology, *surveyed.topology);
        if (!(topology == *surveyed.topology))
            tell(surveyed.id + " has another topology");
        for (const sim::Connector& connector : original->topology->connectors)
            comparePeers(m_machine.peer(connector.id), m_surveyed.peer(idOf(connector.id)), connector.id);
    }

    void comparePeers(std::optional<sim::Peer> expectedPeer, const std::optional<sim::Peer>& peer,
                      const std::string& id)
    {
        if (expectedPeer)
            expectedPeer->connector = idOf(expectedPeer->connector);
        const bool isSame =
            expectedPeer.has_value() == peer.has_value() &&
            (!peer || (peer->connector == expectedPeer->connector && peer->device == expectedPeer->device));
        if (!isSame)
            tell(id + " has another peer");
    }

    const sim::Machine& m_machine;
    sim::Machine m_surveyed;
    std::unordered_map<std::string, std::string> m_ids;
    std::vector<std::string> m_differences;
};
}

sonavit::capturing::Survey surveyedHardware(const std::function<void()>& onPause)
{
    sonavit::capturing::Survey survey;
    survey.machine.composition = sim::Composition::none;
    sonavit::capturing::Recorder recorder(survey);
    IMMDeviceEnumerator* created = nullptr;
    interfacequery::createEnumerator(created);
    const Handle<IMMDeviceEnumerator> enumerator(created);
    const std::vector<OpenEndpoint> endpoints = openEndpoints(*enumerator, survey.machine);
    sonavit::capturing::surveyHardware(*enumerator, endpoints, survey.machine, recorder, onPause);
    return survey;
}

sonavit::capturing::Survey surveyedHardwareOf(const sim::Machine& machine)
{
    sim::Simulation simulation(machine);
    simulation.latency().clear();
    static_cast<void>(simulation.registerOnThisThread());
    return surveyedHardware();
}

sim::Machine replayOf(const sonavit::capturing::Survey& survey)
{
    sim::Machine machine = survey.machine;
    machine.faults = sonavit::capturing::faultRules(survey.failures);
    return machine;
}

std::vector<std::string> hardwareDifferences(const sim::Machine& machine, const sim::Machine& surveyed)
{
    return Comparison(machine, surveyed).differences();
}

std::vector<std::string> textsOf(const std::vector<sonavit::capturing::FailedCall>& failures)
{
    std::vector<std::string> texts;
    for (const sonavit::capturing::FailedCall& failure : failures)
    {
        const bool isNull = failure.outcome == sonavit::capturing::FailedCall::Outcome::nullSuccess;
        texts.push_back(failure.call() + " on " + failure.object + (isNull ? " stores null" : ""));
    }
    return texts;
}
}
