// The tables of endpoints and adapters.
#include "simulator/machine/file/check.h"
#include "simulator/machine/file/codecs.h"
#include "simulator/machine/file/propertycodecs.h"
#include "simulator/machine/file/propertyforms.h"
#include "simulator/machine/file/shortids.h"

namespace sim
{
namespace
{
/// A level from 0 to 1.
struct ScalarCodec : DecibelsCodec
{
    float read(const JsonCursor& cursor) const { return cursor.real(); }
};

/// A mix format, written as MixFormat::text().
struct MixFormatCodec
{
    MixFormat read(const JsonCursor& cursor) const
    {
        const std::optional<MixFormat> format = cursor.isString() ? MixFormat::fromText(cursor.string()) : std::nullopt;
        if (!format)
            cursor.fail("a format such as \"32f/48000/2\" or \"16/48000/2\"");
        return *format;
    }

    JsonValue write(const MixFormat& format) const { return JsonValue::ofString(format.text()); }

    JsonValue schema() const
    {
        return JsonValue::object()
            .add("type", JsonValue::ofString("string"))
            .add("pattern", JsonValue::ofString(MixFormat::pattern()));
    }
};

template<class AnyDevice>
void addState(FieldTable<AnyDevice>& table)
{
    table.optional("state", &Device::state, StateCodec())
        .optional("openable", &Device::openable, BooleanCodec(),
                  "false: the enumerator does not find the device by its id.");
}

template<class AnyDevice>
void addProperties(FieldTable<AnyDevice>& table)
{
    table.optional("properties", &Device::properties, PropertiesCodec())
        .optional("unlistedProperties", &Device::unlistedProperties, PropertiesCodec(),
                  "GetValue returns them, but GetCount and GetAt do not list them.");
}

/// The list of the interfaces that a device activates, of which each is a member of the data.
template<class AnyDevice>
void addInterfaces(FieldTable<AnyDevice>& table)
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
    const auto schema = []
    { return annotated(listCodec(interfaceCodec).schema(), "Further interfaces that the device activates.", {}); };
    table.add({"interfaces", false, schema}, read, write, isEqual);
}

/// The mix format: in the form of people, or the bytes of any other.
void addMixFormat(FieldTable<Endpoint>& table)
{
    const auto read = [](const JsonCursor& cursor, Endpoint& endpoint)
    {
        if (!cursor.isObject())
            endpoint.mixFormat = MixFormatCodec().read(cursor);
        else if (endpoint.mixFormatBytes = BlobCodec().read(cursor); endpoint.mixFormatBytes.empty())
            cursor.fail("the bytes of a WAVEFORMATEX");
    };
    const auto write = [](const Endpoint& endpoint)
    {
        return endpoint.mixFormat ? MixFormatCodec().write(*endpoint.mixFormat)
                                  : BlobCodec().write(endpoint.mixFormatBytes);
    };
    const auto isEqual = [](const Endpoint& left, const Endpoint& right)
    { return left.mixFormat == right.mixFormat && left.mixFormatBytes == right.mixFormatBytes; };
    const auto schema = []
    {
        const JsonValue forms = JsonValue::array({MixFormatCodec().schema(), BlobCodec().schema()});
        return annotated(JsonValue::object().add("oneOf", forms),
                         "The format of the shared engine: bits/rate/channels, with 32f for floating point; as a blob "
                         "the bytes of a WAVEFORMATEX. If it is missing: 32f at the rate and with the channels of the "
                         "device format.",
                         {});
    };
    table.add({"mixFormat", false, schema}, read, write, isEqual);
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
void addTopology(FieldTable<AnyDevice>& table)
{
    const auto read = [](const JsonCursor& cursor, AnyDevice& device)
    {
        Topology topology = fieldsOf<Topology>().read(cursor, newTopology(device.id));
        device.topology = withFullIds(std::move(topology), device.id);
    };
    const auto write = [](const AnyDevice& device)
    {
        return device.topology
                   ? fieldsOf<Topology>().write(withShortIds(*device.topology, device.id), newTopology(device.id))
                   : JsonValue();
    };
    const auto isEqual = [](const AnyDevice& left, const AnyDevice& right) { return left.topology == right.topology; };
    table.add({"topology", false, [] { return ObjectCodec<Topology>().schema(); }}, read, write, isEqual);
}

FieldTable<Adapter> adapterTable()
{
    FieldTable<Adapter> table("adapter");
    table.required("id", &Device::id, StringCodec{definition::id});
    addState(table);
    addInterfaces(table);
    addProperties(table);
    addTopology(table);
    return table;
}

FieldTable<Endpoint> endpointTable()
{
    FieldTable<Endpoint> table("endpoint");
    table.required("id", &Device::id, StringCodec{definition::id})
        .required("flow", &Endpoint::flow, flowCodec)
        .optional("installed", &Endpoint::installed, BooleanCodec(),
                  "false: no collection contains it before an event adds it.")
        .optional("defaultFor", &Endpoint::defaultFor, listCodec(roleCodec),
                  "Roles in which the user has chosen it as the default of its flow. While it is not active, the "
                  "platform elects another.");
    addState(table);
    addInterfaces(table);
    addProperties(table);
    table.optional("volume", &Endpoint::volume, optionalCodec(ObjectCodec<EndpointVolume>()))
        .optional("periods", &Endpoint::periods, optionalCodec(ObjectCodec<DevicePeriods>()));
    addMixFormat(table);
    addTopology(table);
    return table;
}
}

template<>
const FieldTable<EndpointVolume>& fieldsOf<EndpointVolume>()
{
    static const auto& table = *new FieldTable<EndpointVolume>(
        FieldTable<EndpointVolume>("endpointVolume", "IAudioEndpointVolume, in decibels.")
            .required("minimum", &EndpointVolume::minimum, DecibelsCodec())
            .required("maximum", &EndpointVolume::maximum, DecibelsCodec())
            .required("step", &EndpointVolume::step, DecibelsCodec::distance())
            .required("channels", &EndpointVolume::channels, listCodec(DecibelsCodec(), 0, maximumChannels))
            .optional("muted", &EndpointVolume::muted, BooleanCodec())
            .optional("hardwareSupport", &EndpointVolume::hardwareSupport, HardwareSupportCodec())
            .optional("refused", &EndpointVolume::refused, listCodec(StringCodec()),
                      "Operations that return E_NOTIMPL, such as SetMute.")
            .optional("taper", &EndpointVolume::taper, taperCodec,
                      "How scalar levels depend on decibels: linearly, as on Windows, or as taperPoints say.")
            .optional("taperPoints", &EndpointVolume::taperPoints, listCodec(ObjectCodec<TaperPoint>()),
                      "With the taper measured: levels in rising order. Between two points scalar levels are linear in "
                      "decibels.")
            .optional("master", &EndpointVolume::master, optionalCodec(DecibelsCodec()),
                      "The master level until a level is set. If it is missing: that of the loudest channel.")
            .optional("steps", &EndpointVolume::steps, optionalCodec(NumberCodec()),
                      "What GetVolumeStepInfo counts. If it is missing: the steps that the range contains.")
            .optional("hardware", &EndpointVolume::hardware, ObjectCodec<HardwareControls>()));
    return table;
}

template<>
const FieldTable<TaperPoint>& fieldsOf<TaperPoint>()
{
    static const auto& table = *new FieldTable<TaperPoint>(
        FieldTable<TaperPoint>("taperPoint", "A level as both scales have it.")
            .required("level", &TaperPoint::level, DecibelsCodec(), "In decibels.")
            .required("scalar", &TaperPoint::scalar, ScalarCodec(), "The scalar level, usually from 0 to 1."));
    return table;
}

template<>
const FieldTable<HardwareControls>& fieldsOf<HardwareControls>()
{
    static const auto& table = *new FieldTable<HardwareControls>(
        FieldTable<HardwareControls>("hardwareControls",
                                     "The parts that implement the endpoint's volume, by id, in full. Range, levels "
                                     "and mute of the endpoint are theirs.")
            .optional("volume", &HardwareControls::volume, StringCodec())
            .optional("mute", &HardwareControls::mute, StringCodec()));
    return table;
}

template<>
const FieldTable<DevicePeriods>& fieldsOf<DevicePeriods>()
{
    static const auto& table = *new FieldTable<DevicePeriods>(
        FieldTable<DevicePeriods>("periods",
                                  "Periods of an endpoint's streams in units of 100 nanoseconds. If they are "
                                  "missing: 10 ms rounded up to 32 frames, and 3 ms.")
            .required("default", &DevicePeriods::usual, NumberCodec(), "Of the shared engine.")
            .required("minimum", &DevicePeriods::minimum, NumberCodec(), "Of exclusive streams."));
    return table;
}

template<>
const FieldTable<Adapter>& fieldsOf<Adapter>()
{
    static const auto& table = *new FieldTable<Adapter>(adapterTable());
    return table;
}

template<>
const FieldTable<Endpoint>& fieldsOf<Endpoint>()
{
    static const auto& table = *new FieldTable<Endpoint>(endpointTable());
    return table;
}
}
