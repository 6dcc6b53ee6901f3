// The tables of endpoints and adapters.
#include "simulator/machine/file/check.h"
#include "simulator/machine/file/codecs.h"
#include "simulator/machine/file/propertycodecs.h"
#include "simulator/machine/file/shortids.h"

namespace sim
{
namespace
{
template<class AnyDevice>
void addState(Kind<AnyDevice>& kind)
{
    kind.optional("state", &Device::state, StateCodec())
        .optional("openable", &Device::openable, BooleanCodec(),
                  "false: the enumerator does not find the device by its id.");
}

/// The list of the interfaces that a device activates, of which each is a member of the data.
template<class AnyDevice>
void addInterfaces(Kind<AnyDevice>& kind)
{
    const auto read = [](const JsonCursor& cursor, AnyDevice& device)
    {
        for (const JsonCursor& element : cursor.elements())
            device.*element.named(interfaceNames) = true;
    };
    const auto write = [](const AnyDevice& device)
    {
        JsonValue result = JsonValue::array();
        for (const auto& named : interfaceNames)
        {
            if (device.*named.value)
                result.elements.push_back(JsonValue::ofString(std::string(named.name)));
        }
        return result;
    };
    const auto isEqual = [](const AnyDevice& left, const AnyDevice& right)
    {
        bool result = true;
        for (const auto& named : interfaceNames)
            result = result && left.*named.value == right.*named.value;
        return result;
    };
    const JsonValue schema = listCodec(nameCodec(interfaceNames, "interface")).schema();
    kind.add({"interfaces", false, annotated(schema, "Further interfaces that the device activates.", {})},
             {read, write, isEqual});
}

Topology newTopology(const std::string& deviceId)
{
    Topology topology;
    topology.deviceId = deviceId;
    return topology;
}

/// The topology, in whose description the ids of parts are short. The field comes after the device's id, which it
/// needs.
template<class AnyDevice>
void addTopology(Kind<AnyDevice>& kind)
{
    const auto read = [](const JsonCursor& cursor, AnyDevice& device)
    {
        Topology topology = kindOf<Topology>().read(cursor, newTopology(device.id));
        device.topology = withFullIds(std::move(topology), device.id);
    };
    const auto write = [](const AnyDevice& device)
    {
        return device.topology
                   ? kindOf<Topology>().write(withShortIds(*device.topology, device.id), newTopology(device.id))
                   : JsonValue();
    };
    const auto isEqual = [](const AnyDevice& left, const AnyDevice& right) { return left.topology == right.topology; };
    kind.add({"topology", false, reference(kindOf<Topology>().rule().name)}, {read, write, isEqual});
}

template<class AnyDevice>
Kind<AnyDevice> plainDeviceKind(const std::string& name)
{
    Kind<AnyDevice> kind(name);
    kind.required("id", &Device::id, StringCodec{"id"});
    addState(kind);
    addInterfaces(kind);
    kind.optional("properties", &Device::properties, PropertiesCodec());
    addTopology(kind);
    return kind;
}

Kind<Endpoint> endpointKind()
{
    Kind<Endpoint> kind("endpoint");
    kind.required("id", &Device::id, StringCodec{"id"})
        .required("flow", &Endpoint::flow, nameCodec(flowNames, "flow"))
        .optional("installed", &Endpoint::installed, BooleanCodec(),
                  "false: no collection contains it before an event adds it.")
        .optional("defaultFor", &Endpoint::defaultFor, listCodec(nameCodec(roleNames, "role")),
                  "Roles in which it is the default of its flow.");
    addState(kind);
    addInterfaces(kind);
    kind.optional("properties", &Device::properties, PropertiesCodec())
        .optional("volume", &Endpoint::volume, optionalCodec(ObjectCodec<EndpointVolume>()));
    addTopology(kind);
    return kind;
}
}

template<>
const std::vector<Kind<EndpointVolume>>& kindsOf<EndpointVolume>()
{
    static const std::vector<Kind<EndpointVolume>> kinds = {
        Kind<EndpointVolume>("endpointVolume", "IAudioEndpointVolume, in decibels.")
            .required("minimum", &EndpointVolume::minimum, DecibelsCodec())
            .required("maximum", &EndpointVolume::maximum, DecibelsCodec())
            .required("step", &EndpointVolume::step, DecibelsCodec{true})
            .required("channels", &EndpointVolume::channels, listCodec(DecibelsCodec(), 1, maximumChannels))
            .optional("muted", &EndpointVolume::muted, BooleanCodec())
            .optional("hardwareSupport", &EndpointVolume::hardwareSupport, HardwareSupportCodec())
            .optional("refused", &EndpointVolume::refused, listCodec(StringCodec()),
                      "Operations that return E_NOTIMPL, such as SetMute.")};
    return kinds;
}

template<>
const std::vector<Kind<Device>>& kindsOf<Device>()
{
    static const std::vector<Kind<Device>> kinds = {plainDeviceKind<Device>("device")};
    return kinds;
}

template<>
const std::vector<Kind<Adapter>>& kindsOf<Adapter>()
{
    static const std::vector<Kind<Adapter>> kinds = {plainDeviceKind<Adapter>("adapter")};
    return kinds;
}

template<>
const std::vector<Kind<Endpoint>>& kindsOf<Endpoint>()
{
    static const std::vector<Kind<Endpoint>> kinds = {endpointKind()};
    return kinds;
}
}
