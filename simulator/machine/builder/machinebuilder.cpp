#include "simulator/machine/builder/machinebuilder.h"

#include "simulator/machine/identity.h"
#include "simulator/machine/nodetypes.h"
#include "simulator/machine/propertykeys.h"
#include "simulator/machine/valuetext.h"

#include <algorithm>
#include <utility>

namespace sim
{
namespace
{
void giveIds(Part& part, const std::string& deviceId, std::uint32_t localId)
{
    part.localId = localId;
    part.id = partId(deviceId, localId);
}

void removeId(std::vector<std::string>& ids, const std::string& id)
{
    ids.erase(std::remove(ids.begin(), ids.end(), id), ids.end());
}

/// The usual properties, in the order in which a property store lists them.
Properties usualProperties(const std::string& description, const std::string& card, const std::string& instancePath,
                           const GUID& guid)
{
    const DeviceFormat format = {16, 48000, 2};
    const std::string driver = driverName(instancePath);

    Properties properties;
    setProperty(properties, keys::deviceDescription, PropertyValue::ofText(description));
    setProperty(properties, keys::deviceFormat, PropertyValue::ofBytes(format.bytes()));
    setProperty(properties, keys::instancePath, PropertyValue::ofText(instancePath));
    setProperty(properties, keys::driverNodeStrongName, PropertyValue::ofText(driver));
    setProperty(properties, keys::friendlyName, PropertyValue::ofText(card));
    setProperty(properties, keys::speakerConfig, PropertyValue::ofNumber(format.speakers()));
    setProperty(properties, keys::endpointGuid, PropertyValue::ofText(guidText(guid)));
    return properties;
}

/// A topology that consists of one connector, of the type of the jacks that CardBuilder::endpoint() makes.
Topology oneConnector(const std::string& deviceId, DataFlow direction)
{
    Connector connector;
    giveIds(connector, deviceId, usualConnectorLocalId(0));
    connector.type = Physical_External;
    connector.direction = direction;

    Topology topology;
    topology.deviceId = deviceId;
    topology.connectors.push_back(std::move(connector));
    return topology;
}

void chooseDefaults(Machine& machine, EDataFlow flow)
{
    const auto isOfFlow = [&](const Endpoint& endpoint) { return endpoint.flow == flow && endpoint.installed; };
    const auto hasRole = [&](const Endpoint& endpoint) { return isOfFlow(endpoint) && !endpoint.defaultFor.empty(); };
    if (std::any_of(machine.endpoints.begin(), machine.endpoints.end(), hasRole))
        return;
    for (Endpoint& endpoint : machine.endpoints)
    {
        if (isOfFlow(endpoint) && endpoint.state == stateActive)
        {
            endpoint.defaultFor = {eConsole, eMultimedia, eCommunications};
            return;
        }
    }
}

void giveWaveIds(const Machine& machine, EDataFlow flow, std::vector<WaveDevice>& waveDevices)
{
    if (!waveDevices.empty())
        return;
    for (const Endpoint& endpoint : machine.endpoints)
    {
        if (endpoint.flow == flow && endpoint.installed && endpoint.state == stateActive)
            waveDevices.push_back({endpoint.id});
    }
}
}

CardBuilder::CardBuilder(MachineBuilder& owner, std::size_t index) : m_owner(&owner), m_index(index) {}

EndpointBuilder CardBuilder::speaker(const std::string& name)
{
    return endpoint(name, eRender, nodetypes::speaker);
}

EndpointBuilder CardBuilder::headphones(const std::string& name)
{
    return endpoint(name, eRender, nodetypes::headphones);
}

EndpointBuilder CardBuilder::lineOut(const std::string& name)
{
    return endpoint(name, eRender, nodetypes::line);
}

EndpointBuilder CardBuilder::spdifOut(const std::string& name)
{
    return endpoint(name, eRender, nodetypes::spdif);
}

EndpointBuilder CardBuilder::hdmi(const std::string& name)
{
    return endpoint(name, eRender, nodetypes::hdmi);
}

EndpointBuilder CardBuilder::microphone(const std::string& name)
{
    return endpoint(name, eCapture, nodetypes::microphone);
}

EndpointBuilder CardBuilder::lineIn(const std::string& name)
{
    return endpoint(name, eCapture, nodetypes::line);
}

EndpointBuilder CardBuilder::spdifIn(const std::string& name)
{
    return endpoint(name, eCapture, nodetypes::spdif);
}

EndpointBuilder CardBuilder::endpoint(const std::string& name, EDataFlow flow, const GUID& jackType)
{
    const bool isRender = flow == eRender;
    const MachineBuilder::Card& card = m_owner->m_cards[m_index];
    Machine& machine = m_owner->m_machine;
    const std::size_t index = machine.endpoints.size();
    const GUID guid = derivedGuid(machine.name + "/" + card.name + "/" + name + "/" + std::to_string(index));

    Endpoint endpoint;
    endpoint.id = endpointId(flow, guid);
    endpoint.flow = flow;
    endpoint.properties = usualProperties(name, card.name, card.instancePath, guid);
    endpoint.topology = oneConnector(endpoint.id, isRender ? In : Out);
    endpoint.hasAudioClient = true;
    endpoint.hasBaseFilter = true;
    endpoint.volume = EndpointVolume();

    const std::string own = endpoint.topology->connectors.front().id;
    const std::string jack = connector(name, jackType, isRender ? Out : In, Physical_External);
    const std::string stream = connector(name + " Stream", nodetypes::stream, isRender ? In : Out, Software_IO);
    chain(isRender ? std::vector<std::string>{stream, jack} : std::vector<std::string>{jack, stream});
    machine.joins.push_back({own, jack, {}, true});
    machine.endpoints.push_back(std::move(endpoint));
    m_owner->m_wirings.push_back({index, m_index, own, {jack, stream}});
    return {*m_owner, m_owner->m_wirings.size() - 1};
}

std::string CardBuilder::connector(OptionalString name, const GUID& type, DataFlow direction, ConnectorType kind)
{
    Topology& topology = *adapter().topology;
    Connector connector;
    giveIds(connector, adapter().id, usualConnectorLocalId(topology.connectors.size()));
    connector.name = std::move(name);
    connector.subType = type;
    connector.direction = direction;
    connector.type = kind;
    return append(topology.connectors, std::move(connector));
}

std::string CardBuilder::subunit(Subunit subunit)
{
    Topology& topology = *adapter().topology;
    giveIds(subunit, adapter().id, usualSubunitLocalId(topology.subunits.size()));
    return append(topology.subunits, std::move(subunit));
}

template<class AnyPart>
std::string CardBuilder::append(std::vector<AnyPart>& list, AnyPart part)
{
    list.push_back(std::move(part));
    const MachineBuilder::PartPosition position = {m_owner->m_cards[m_index].adapter, list.size() - 1};
    const auto [entry, isNew] = m_owner->m_parts.insert({list.back().id, position});
    if (!isNew && position.adapter < entry->second.adapter)
        entry->second = position; // two cards of one device instance: the first one in the machine counts
    return list.back().id;
}

CardBuilder& CardBuilder::chain(const std::vector<std::string>& parts)
{
    for (std::size_t index = 1; index < parts.size(); ++index)
    {
        m_owner->part(parts[index - 1])->outgoing.push_back(parts[index]);
        m_owner->part(parts[index])->incoming.push_back(parts[index - 1]);
    }
    if (parts.size() >= 2)
        adapter().topology->signalPaths.push_back(
            {parts.front(), parts.back(), {parts.begin() + 1, parts.end() - 1}, false});
    return *this;
}

void CardBuilder::unchain(const std::vector<std::string>& parts)
{
    for (std::size_t index = 1; index < parts.size(); ++index)
    {
        removeId(m_owner->part(parts[index - 1])->outgoing, parts[index]);
        removeId(m_owner->part(parts[index])->incoming, parts[index - 1]);
    }
    std::vector<SignalPath>& paths = adapter().topology->signalPaths;
    const auto isTheirs = [&](const SignalPath& path) { return path.from == parts.front() && path.to == parts.back(); };
    paths.erase(std::remove_if(paths.begin(), paths.end(), isTheirs), paths.end());
}

std::string CardBuilder::instancePath() const
{
    return m_owner->m_cards[m_index].instancePath;
}

std::string CardBuilder::instanceId() const
{
    return m_owner->m_cards[m_index].instanceId;
}

Adapter& CardBuilder::adapter() const
{
    return m_owner->m_machine.adapters[m_owner->m_cards[m_index].adapter];
}

MachineBuilder::MachineBuilder(const std::string& name)
{
    m_machine.name = name;
}

CardBuilder MachineBuilder::card(const std::string& name)
{
    const std::string seed = m_machine.name + "/" + name + "/" + std::to_string(m_cards.size());
    m_machine.deviceInstances.push_back({boardInstance(seed), boardParent(seed)});
    return card(name, boardInstance(seed));
}

CardBuilder MachineBuilder::usbCard(const std::string& name)
{
    const std::string seed = m_machine.name + "/" + name + "/" + std::to_string(m_cards.size());
    m_machine.deviceInstances.push_back({usbInstance(seed), usbParent(seed)});
    return card(name, usbInstance(seed));
}

CardBuilder MachineBuilder::card(const std::string& name, const std::string& instanceId)
{
    Adapter adapter;
    adapter.id = adapterId(instanceId);
    adapter.topology = Topology();
    adapter.topology->deviceId = adapter.id;
    setProperty(adapter.properties, keys::deviceDescription, PropertyValue::ofText(name));
    setProperty(adapter.properties, keys::friendlyName, PropertyValue::ofText(name));
    m_machine.adapters.push_back(std::move(adapter));
    m_cards.push_back({m_machine.adapters.size() - 1, name, instanceId, "{1}." + instanceId});
    return {*this, m_cards.size() - 1};
}

MachineBuilder& MachineBuilder::account(Account account)
{
    m_machine.account = account;
    return *this;
}

MachineBuilder& MachineBuilder::withoutDefaults()
{
    m_choosesDefaults = false;
    return *this;
}

MachineBuilder& MachineBuilder::withoutWaveIds()
{
    m_givesWaveIds = false;
    return *this;
}

MachineBuilder& MachineBuilder::removedEndpoints(RemovedEndpoints fate)
{
    m_machine.removedEndpoints = fate;
    return *this;
}

MachineBuilder& MachineBuilder::callbackThread(CallbackThread thread)
{
    m_machine.callbackThread = thread;
    return *this;
}

Machine& MachineBuilder::machine()
{
    return m_machine;
}

ChangeablePartPlace MachineBuilder::part(const std::string& id)
{
    const auto known = m_parts.find(id);
    const ChangeablePartPlace place = known == m_parts.end() ? ChangeablePartPlace() : partAt(known->second, id);
    return place ? place : m_machine.part(id);
}

ChangeablePartPlace MachineBuilder::partAt(const PartPosition& position, const std::string& id)
{
    const bool isThere =
        position.adapter < m_machine.adapters.size() && m_machine.adapters[position.adapter].topology.has_value();
    if (!isThere)
        return {};
    Adapter& adapter = m_machine.adapters[position.adapter];
    std::vector<Connector>& connectors = adapter.topology->connectors;
    std::vector<Subunit>& subunits = adapter.topology->subunits;
    if (position.index < connectors.size() && connectors[position.index].id == id)
        return {&adapter, &connectors[position.index], &connectors[position.index]};
    if (position.index < subunits.size() && subunits[position.index].id == id)
        return {&adapter, &subunits[position.index], nullptr};
    return {};
}

Machine MachineBuilder::build() const
{
    Machine result = m_machine;
    for (const EDataFlow flow : {eRender, eCapture})
    {
        if (m_choosesDefaults)
            chooseDefaults(result, flow);
        if (m_givesWaveIds)
            giveWaveIds(result, flow, flow == eRender ? result.waveOut : result.waveIn);
    }
    return result;
}
}
