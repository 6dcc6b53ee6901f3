#include "simulator/machine/machine.h"

#include "simulator/machine/casefolding.h"

#include <algorithm>

namespace sim
{
namespace
{
/// The element of @p list whose `id` is @p id, or null; works for constant and for changeable lists.
template<class List>
auto* withId(List& list, const std::string& id)
{
    const auto found = std::find_if(list.begin(), list.end(), [&](const auto& element) { return element.id == id; });
    return found == list.end() ? nullptr : &*found;
}

template<class Place, class AnyDevice>
Place partOf(AnyDevice& device, const std::string& id)
{
    if (!device.topology)
        return {};
    if (auto* const connector = withId(device.topology->connectors, id))
        return {&device, connector, connector};
    if (auto* const subunit = withId(device.topology->subunits, id))
        return {&device, subunit, nullptr};
    return {};
}

/// Looks through all devices of @p machine, which may be constant or not.
template<class Place, class AnyMachine>
Place findPart(AnyMachine& machine, const std::string& id)
{
    for (auto& endpoint : machine.endpoints)
    {
        if (const Place place = partOf<Place>(endpoint, id))
            return place;
    }
    for (auto& adapter : machine.adapters)
    {
        if (const Place place = partOf<Place>(adapter, id))
            return place;
    }
    return {};
}

OptionalString deviceOf(const Machine& machine, const std::string& connector)
{
    const PartPlace place = machine.part(connector);
    return place ? OptionalString(place.device->id) : OptionalString();
}
}

const PropertyValue* findProperty(const Device& device, const PROPERTYKEY& key)
{
    const PropertyValue* const listed = findProperty(device.properties, key);
    return listed != nullptr ? listed : findProperty(device.unlistedProperties, key);
}

const Endpoint* Machine::endpoint(const std::string& id) const
{
    return withId(endpoints, id);
}

Endpoint* Machine::endpoint(const std::string& id)
{
    return withId(endpoints, id);
}

const Adapter* Machine::adapter(const std::string& id) const
{
    return withId(adapters, id);
}

Adapter* Machine::adapter(const std::string& id)
{
    return withId(adapters, id);
}

const Device* Machine::openDevice(const std::string& id) const
{
    std::vector<const Device*> devices;
    for (const Endpoint& candidate : endpoints)
    {
        if (!isGone(candidate))
            devices.push_back(&candidate);
    }
    for (const Adapter& candidate : adapters)
        devices.push_back(&candidate);

    const Device* nearly = nullptr;
    for (const Device* candidate : devices)
    {
        if (!candidate->openable)
            continue;
        if (candidate->id == id)
            return candidate;
        if (nearly == nullptr && equalNoCase(candidate->id, id))
            nearly = candidate;
    }
    return nearly;
}

bool Machine::isGone(const Endpoint& endpoint) const
{
    return !endpoint.installed && removedEndpoints == RemovedEndpoints::unknown;
}

PartPlace Machine::part(const std::string& id) const
{
    return findPart<PartPlace>(*this, id);
}

ChangeablePartPlace Machine::part(const std::string& id)
{
    return findPart<ChangeablePartPlace>(*this, id);
}

std::optional<Peer> Machine::peer(const std::string& id) const
{
    for (const Join& join : joins)
    {
        if (join.from == id)
            return Peer{join.toDevice ? join.toDevice : deviceOf(*this, join.to), join.to};
        if (join.to == id && join.bothWays)
            return Peer{deviceOf(*this, join.from), join.from};
    }
    return std::nullopt;
}

const DeviceInstance* Machine::deviceInstance(const std::string& id) const
{
    for (const DeviceInstance& instance : deviceInstances)
    {
        if (equalNoCase(instance.id, id))
            return &instance;
    }
    return nullptr;
}
}
