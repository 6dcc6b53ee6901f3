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
/// The string of a property of the machine; empty if there is none.
std::string textOf(const Device& device, const PROPERTYKEY& key)
{
    const PropertyValue* const value = findProperty(device, key);
    return value == nullptr ? std::string() : value->text.value_or("");
}

/// What a device's properties are composed from. Each question is answered anew: a property needs one or two of them.
class Sources
{
public:
    Sources(const Hardware& hardware, const Device& device) : m_hardware(hardware), m_device(device) {}

    const Device& device() const { return m_device; }

    bool isEndpoint() const { return m_hardware.isEndpoint(m_device); }

    /// The peer of an endpoint's first connector, or null.
    const Peer* peer() const
    {
        const bool hasConnector = isEndpoint() && m_device.topology && !m_device.topology->connectors.empty();
        return hasConnector ? m_hardware.peer(m_device.topology->connectors.front().id) : nullptr;
    }

    /// The connector of an adapter that an endpoint's first connector is joined to, or null.
    const Part* jack() const
    {
        const Peer* const found = peer();
        const ChangeablePartPlace* const place = found == nullptr ? nullptr : m_hardware.part(found->connector);
        return place == nullptr ? nullptr : place->part;
    }

    /// The id of an endpoint's device instance; empty if there is none.
    std::string instance() const
    {
        return isEndpoint() ? instanceOfPath(textOf(m_device, keys::instancePath)) : std::string();
    }

    OptionalString parentOf(const std::string& instance) const
    {
        const DeviceInstance* const found = m_hardware.deviceInstance(instance);
        return found == nullptr ? OptionalString() : found->parent;
    }

private:
    const Hardware& m_hardware;
    const Device& m_device;
};

/// "Speakers (Analog Audio)". The wave functions of Windows read it for every endpoint and require it.
PropertyValue fullName(const Sources& sources)
{
    return PropertyValue::ofText(textOf(sources.device(), keys::deviceDescription) + " (" +
                                 textOf(sources.device(), keys::friendlyName) + ")");
}

PropertyValue instanceId(const Sources& sources)
{
    const std::optional<std::string> instance = instanceOfAdapter(sources.device().id);
    return sources.isEndpoint() || !instance ? PropertyValue() : PropertyValue::ofText(instance);
}

PropertyValue interfacePath(const Sources& sources)
{
    const Peer* const peer = sources.peer();
    return peer != nullptr && peer->device ? PropertyValue::ofText(peer->device) : PropertyValue();
}

PropertyValue enumeratorName(const Sources& sources)
{
    const std::string instance = sources.instance();
    return instance.empty() ? PropertyValue() : PropertyValue::ofText(instance.substr(0, instance.find('\\')));
}

PropertyValue containerId(const Sources& sources)
{
    const std::string instance = sources.instance();
    return instance.empty() ? PropertyValue()
                            : PropertyValue::ofGuid(containerOf(instance, sources.parentOf(instance)));
}

PropertyValue formFactor(const Sources& sources)
{
    const Part* const jack = sources.jack();
    return jack == nullptr ? PropertyValue()
                           : PropertyValue::ofNumber(static_cast<std::uint32_t>(formFactorOf(jack->subType)));
}

/// The category of the connector, which says what kind of jack it is.
PropertyValue category(const Sources& sources)
{
    const Part* const jack = sources.jack();
    const bool isKnown = jack != nullptr && !IsEqualGUID(jack->subType, GUID{});
    return isKnown ? PropertyValue::ofText(guidText(jack->subType)) : PropertyValue();
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

PropertyValue composedProperty(const Hardware& hardware, const Device& device, const PROPERTYKEY& key)
{
    if (hardware.machine().composition == Composition::none)
        return {};
    for (const Composed& each : composed)
    {
        if (sameKey(each.key, key))
            return each.compose(Sources(hardware, device));
    }
    return {};
}

std::vector<PROPERTYKEY> shownKeys(const Hardware& hardware, const Device& device)
{
    std::vector<PROPERTYKEY> result;
    for (const Property& property : device.properties)
    {
        if (property.value.tag != VT_EMPTY)
            result.push_back(property.key);
    }
    if (hardware.machine().composition == Composition::none)
        return result;
    const Sources sources(hardware, device);
    for (const Composed& each : composed)
    {
        if (findProperty(device, each.key) == nullptr && each.compose(sources).tag != VT_EMPTY)
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
