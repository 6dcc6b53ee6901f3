// The tables of hardware graphs.
#include "simulator/machine/file/check.h"
#include "simulator/machine/file/codecs.h"
#include "simulator/machine/identity.h"

namespace sim
{
namespace
{
/// Connectors or subunits. If a file does not contain the local id of a part, it follows from the part's position.
template<class AnyPart>
struct PartsCodec
{
    std::uint32_t (*usualLocalId)(std::size_t position);

    std::vector<AnyPart> read(const JsonCursor& cursor) const
    {
        const std::vector<JsonCursor> elements = cursor.elements();
        std::vector<AnyPart> result;
        result.reserve(elements.size());
        for (const JsonCursor& element : elements)
            result.push_back(fieldsOf<AnyPart>().read(element, start(result.size())));
        return result;
    }

    JsonValue write(const std::vector<AnyPart>& parts) const
    {
        JsonValue result = JsonValue::array();
        for (const AnyPart& part : parts)
            result.elements.push_back(fieldsOf<AnyPart>().write(part, start(result.elements.size())));
        return result;
    }

    JsonValue schema() const { return listCodec(ObjectCodec<AnyPart>()).schema(); }

private:
    AnyPart start(std::size_t position) const
    {
        AnyPart result;
        result.localId = usualLocalId(position);
        return result;
    }
};

/// The first fields of each part.
template<class AnyPart>
void addIdentity(FieldTable<AnyPart>& table)
{
    table.required("id", &Part::id, StringCodec{definition::partId})
        .contextual("localId", &Part::localId, NumberCodec(),
                    "If it is missing: the position plus 65536 for a connector, plus 131072 for a subunit.")
        .optional("reportsId", &Part::reportsId, BooleanCodec(), "false: GetGlobalId stores null.")
        .optional("name", &Part::name, NullableStringCodec(), "null or missing: GetName stores null.")
        .optional("type", &Part::subType, NodeTypeCodec());
}

/// The last fields of each part.
template<class AnyPart>
void addNeighboursAndControls(FieldTable<AnyPart>& table)
{
    table.optional("incoming", &Part::incoming, PartIdsCodec())
        .optional("outgoing", &Part::outgoing, PartIdsCodec())
        .optional("volume", &Part::volume, optionalCodec(ObjectCodec<VolumeControl>()))
        .optional("mute", &Part::mute, optionalCodec(ObjectCodec<MuteControl>()))
        .optional("selector", &Part::selector, optionalCodec(ObjectCodec<SelectorControl>()))
        .optional("furtherControls", &Part::furtherControls, listCodec(ObjectCodec<FurtherControl>()),
                  "Controls that the part lists after the others and that cannot be activated.");
}

FieldTable<Subunit> subunitTable()
{
    FieldTable<Subunit> table("subunit");
    addIdentity(table);
    addNeighboursAndControls(table);
    return table;
}

FieldTable<Connector> connectorTable()
{
    FieldTable<Connector> table("connector");
    addIdentity(table);
    table.optional("kind", &Connector::type, nameOrNumber(connectorTypeCodec))
        .optional("direction", &Connector::direction, directionCodec)
        .optional("jacks", &Connector::jacks, listCodec(ObjectCodec<Jack>()),
                  "The descriptions that IKsJackDescription returns.");
    addNeighboursAndControls(table);
    return table;
}
}

template<>
const FieldTable<Topology>& fieldsOf<Topology>()
{
    static const auto& table = *new FieldTable<Topology>(
        FieldTable<Topology>("topology")
            .contextual("deviceId", &Topology::deviceId, NullableStringCodec(),
                        "What GetDeviceId returns. If it is missing: the device's id.")
            .optional("connectors", &Topology::connectors, PartsCodec<Connector>{&usualConnectorLocalId})
            .optional("subunits", &Topology::subunits, PartsCodec<Subunit>{&usualSubunitLocalId})
            .optional("signalPaths", &Topology::signalPaths, listCodec(ObjectCodec<SignalPath>())));
    return table;
}

template<>
const FieldTable<Connector>& fieldsOf<Connector>()
{
    static const auto& table = *new FieldTable<Connector>(connectorTable());
    return table;
}

template<>
const FieldTable<Jack>& fieldsOf<Jack>()
{
    static const auto& table = *new FieldTable<Jack>(
        FieldTable<Jack>("jack", "A description of a jack.")
            .optional("channels", &Jack::channels, NumberCodec(), "Mask of the speakers that it carries.")
            .optional("colour", &Jack::colour, NumberCodec(), "Red, green and blue: 65280 is green.")
            .optional("connection", &Jack::connection, nameOrNumber(jackConnectionCodec))
            .optional("geometricLocation", &Jack::geometricLocation, nameOrNumber(geometricLocationCodec))
            .optional("generalLocation", &Jack::generalLocation, nameOrNumber(generalLocationCodec))
            .optional("portConnection", &Jack::portConnection, nameOrNumber(portConnectionCodec))
            .optional("detectsPresence", &Jack::detectsPresence, BooleanCodec(),
                      "Whether the hardware knows that something is plugged in.")
            .optional("changesFormat", &Jack::changesFormat, BooleanCodec(),
                      "Whether the formats depend on what is plugged in.")
            .optional("connected", &Jack::connected, optionalCodec(BooleanCodec()),
                      "Whether something is plugged in. If it is missing: as the states of the endpoints at the "
                      "connector say if the hardware detects presence, otherwise true."));
    return table;
}

template<>
const FieldTable<Subunit>& fieldsOf<Subunit>()
{
    static const auto& table = *new FieldTable<Subunit>(subunitTable());
    return table;
}

template<>
const FieldTable<VolumeControl>& fieldsOf<VolumeControl>()
{
    static const auto& table =
        *new FieldTable<VolumeControl>(FieldTable<VolumeControl>("volumeControl", "IAudioVolumeLevel.")
                                           .required("channels", &VolumeControl::channels,
                                                     listCodec(ObjectCodec<ChannelLevel>(), 0, maximumChannels)));
    return table;
}

template<>
const FieldTable<ChannelLevel>& fieldsOf<ChannelLevel>()
{
    static const auto& table =
        *new FieldTable<ChannelLevel>(FieldTable<ChannelLevel>("channelLevel", "In decibels.")
                                          .required("minimum", &ChannelLevel::minimum, DecibelsCodec())
                                          .required("maximum", &ChannelLevel::maximum, DecibelsCodec())
                                          .required("step", &ChannelLevel::step, DecibelsCodec::distance())
                                          .required("level", &ChannelLevel::level, DecibelsCodec()));
    return table;
}

template<>
const FieldTable<MuteControl>& fieldsOf<MuteControl>()
{
    static const auto& table = *new FieldTable<MuteControl>(
        FieldTable<MuteControl>("muteControl", "IAudioMute.").required("muted", &MuteControl::muted, BooleanCodec()));
    return table;
}

template<>
const FieldTable<SelectorControl>& fieldsOf<SelectorControl>()
{
    static const auto& table =
        *new FieldTable<SelectorControl>(FieldTable<SelectorControl>("selectorControl", "IAudioInputSelector.")
                                             .required("selection", &SelectorControl::selection, NumberCodec(),
                                                       "Local id of an incoming part; 0: none."));
    return table;
}

template<>
const FieldTable<FurtherControl>& fieldsOf<FurtherControl>()
{
    static const auto& table = *new FieldTable<FurtherControl>(
        FieldTable<FurtherControl>("furtherControl", "A control of which only interface and name are known.")
            .required("interface", &FurtherControl::interfaceId, ControlInterfaceCodec())
            .optional("name", &FurtherControl::name, NullableStringCodec(), "null or missing: GetName stores null."));
    return table;
}

template<>
const FieldTable<SignalPath>& fieldsOf<SignalPath>()
{
    static const auto& table = *new FieldTable<SignalPath>(
        FieldTable<SignalPath>("signalPath", "A path inside one topology, in one direction only.")
            .required("from", &SignalPath::from, StringCodec())
            .required("to", &SignalPath::to, StringCodec())
            .optional("through", &SignalPath::through, PartIdsCodec())
            .optional("mixed", &SignalPath::mixed, BooleanCodec(),
                      "true: it passes a sum, so a caller that rejects mixed paths does not find it."));
    return table;
}
}
