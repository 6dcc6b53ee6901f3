#include "simulator/core/composedproperties.h"

#include "simulator/machine/formfactor.h"
#include "simulator/machine/identity.h"
#include "simulator/machine/nodetypes.h"
#include "simulator/machine/propertykeys.h"
#include "simulator/machine/valuetext.h"

#include <algorithm>

namespace sim
{
namespace
{
/// What a device's properties are composed from.
struct Sources
{
    const Hardware& hardware;
    const Device& device;
    bool isEndpoint;
    std::optional<Peer> peer;     ///< of the first connector
    const Part* jack = nullptr;   ///< the connector of an adapter that the first connector is joined to
    OptionalString instance = {}; ///< id of an endpoint's device instance
};

std::string textOf(const Properties& properties, const PROPERTYKEY& key)
{
    const PropertyValue* const value = findProperty(properties, key);
    return value == nullptr ? std::string() : value->text.value_or("");
}

Sources sourcesOf(Hardware& hardware, const Device& device)
{
    Sources sources = {hardware, device, hardware.endpoint(device.id) == &device, {}};
    if (device.topology && !device.topology->connectors.empty())
        sources.peer = hardware.peer(device.topology->connectors.front().id);
    const ChangeablePartPlace* const jack = sources.peer ? hardware.part(sources.peer->connector) : nullptr;
    sources.jack = jack == nullptr ? nullptr : jack->part;
    const std::string instance = instanceOfPath(textOf(device.properties, keys::instancePath));
    if (sources.isEndpoint && !instance.empty())
        sources.instance = instance;
    return sources;
}

/// "Speakers (Analog Audio)". The wave functions of Windows read it for every endpoint and require it.
PropertyValue fullName(const Sources& sources)
{
    const Properties& properties = sources.device.properties;
    return PropertyValue::ofText(textOf(properties, keys::deviceDescription) + " (" +
                                 textOf(properties, keys::friendlyName) + ")");
}

PropertyValue instanceId(const Sources& sources)
{
    const std::optional<std::string> instance = instanceOfAdapter(sources.device.id);
    return sources.isEndpoint || !instance ? PropertyValue() : PropertyValue::ofText(instance);
}

PropertyValue interfacePath(const Sources& sources)
{
    const bool isKnown = sources.isEndpoint && sources.peer && sources.peer->device;
    return isKnown ? PropertyValue::ofText(sources.peer->device) : PropertyValue();
}

PropertyValue enumeratorName(const Sources& sources)
{
    if (!sources.instance)
        return {};
    return PropertyValue::ofText(sources.instance->substr(0, sources.instance->find('\\')));
}

PropertyValue containerId(const Sources& sources)
{
    if (!sources.instance)
        return {};
    const DeviceInstance* const instance = sources.hardware.machine().deviceInstance(*sources.instance);
    return PropertyValue::ofGuid(
        containerOf(*sources.instance, instance == nullptr ? OptionalString() : instance->parent));
}

PropertyValue formFactor(const Sources& sources)
{
    const bool isKnown = sources.isEndpoint && sources.jack != nullptr;
    return isKnown ? PropertyValue::ofNumber(static_cast<std::uint32_t>(formFactorOf(sources.jack->subType)))
                   : PropertyValue();
}

/// The category of the connector, which says what kind of jack it is.
PropertyValue category(const Sources& sources)
{
    const bool isKnown = sources.isEndpoint && sources.jack != nullptr && !IsEqualGUID(sources.jack->subType, GUID{});
    return isKnown ? PropertyValue::ofText(guidText(sources.jack->subType)) : PropertyValue();
}

struct Composed
{
    PROPERTYKEY key;
    PropertyValue (*compose)(const Sources& sources);
};

constexpr Composed composed[] = {{keys::fullName, fullName},           {keys::instanceId, instanceId},
                                 {keys::interfacePath, interfacePath}, {keys::enumeratorName, enumeratorName},
                                 {keys::containerId, containerId},     {keys::formFactor, formFactor},
                                 {keys::jackSubType, category},        {keys::association, category}};
}

PropertyValue shownProperty(Hardware& hardware, const Device& device, const PROPERTYKEY& key)
{
    if (const PropertyValue* const value = findProperty(device.properties, key))
        return *value;
    for (const Composed& each : composed)
    {
        if (sameKey(each.key, key))
            return each.compose(sourcesOf(hardware, device));
    }
    return {};
}

std::vector<PROPERTYKEY> shownKeys(Hardware& hardware, const Device& device)
{
    std::vector<PROPERTYKEY> result;
    for (const Property& property : device.properties)
    {
        if (property.value.tag != VT_EMPTY)
            result.push_back(property.key);
    }
    const Sources sources = sourcesOf(hardware, device);
    for (const Composed& each : composed)
    {
        if (findProperty(device.properties, each.key) == nullptr && each.compose(sources).tag != VT_EMPTY)
            result.push_back(each.key);
    }
    return result;
}

bool isComposed(const PROPERTYKEY& key)
{
    const auto isMeant = [&](const Composed& each) { return sameKey(each.key, key); };
    return std::any_of(std::begin(composed), std::end(composed), isMeant);
}
}
