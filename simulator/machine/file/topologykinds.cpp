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
        std::vector<AnyPart> result;
        for (const JsonCursor& element : cursor.elements())
            result.push_back(kindOf<AnyPart>().read(element, start(result.size())));
        return result;
    }

    JsonValue write(const std::vector<AnyPart>& parts) const
    {
        JsonValue result = JsonValue::array();
        for (const AnyPart& part : parts)
            result.elements.push_back(kindOf<AnyPart>().write(part, start(result.elements.size())));
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
void addIdentity(Kind<AnyPart>& kind)
{
    kind.required("id", &Part::id, StringCodec{"partId"})
        .positional("localId", &Part::localId, NumberCodec(),
                    "If it is missing: the position plus 65536 for a connector, plus 131072 for a subunit.")
        .optional("reportsId", &Part::reportsId, BooleanCodec(), "false: GetGlobalId stores null.")
        .optional("name", &Part::name, NullableStringCodec(), "null or missing: GetName stores null.")
        .optional("type", &Part::subType, NodeTypeCodec());
}

/// The last fields of each part.
template<class AnyPart>
void addNeighboursAndControls(Kind<AnyPart>& kind)
{
    kind.optional("incoming", &Part::incoming, PartIdsCodec())
        .optional("outgoing", &Part::outgoing, PartIdsCodec())
        .optional("volume", &Part::volume, optionalCodec(ObjectCodec<VolumeControl>()))
        .optional("mute", &Part::mute, optionalCodec(ObjectCodec<MuteControl>()))
        .optional("selector", &Part::selector, optionalCodec(ObjectCodec<SelectorControl>()));
}

template<class AnyPart>
Kind<AnyPart> plainPartKind(const std::string& name)
{
    Kind<AnyPart> kind(name);
    addIdentity(kind);
    addNeighboursAndControls(kind);
    return kind;
}

Kind<Connector> connectorKind()
{
    Kind<Connector> kind("connector");
    addIdentity(kind);
    kind.optional("kind", &Connector::type, nameCodec(connectorTypeNames, "connectorType"))
        .optional("direction", &Connector::direction, nameCodec(directionNames, "direction"));
    addNeighboursAndControls(kind);
    return kind;
}
}

template<>
const std::vector<Kind<Topology>>& kindsOf<Topology>()
{
    static const std::vector<Kind<Topology>> kinds = {
        Kind<Topology>("topology")
            .positional("deviceId", &Topology::deviceId, NullableStringCodec(),
                        "What GetDeviceId returns. If it is missing: the device's id.")
            .optional("connectors", &Topology::connectors, PartsCodec<Connector>{&usualConnectorLocalId})
            .optional("subunits", &Topology::subunits, PartsCodec<Subunit>{&usualSubunitLocalId})
            .optional("signalPaths", &Topology::signalPaths, listCodec(ObjectCodec<SignalPath>()))};
    return kinds;
}

template<>
const std::vector<Kind<Part>>& kindsOf<Part>()
{
    static const std::vector<Kind<Part>> kinds = {plainPartKind<Part>("part")};
    return kinds;
}

template<>
const std::vector<Kind<Connector>>& kindsOf<Connector>()
{
    static const std::vector<Kind<Connector>> kinds = {connectorKind()};
    return kinds;
}

template<>
const std::vector<Kind<Subunit>>& kindsOf<Subunit>()
{
    static const std::vector<Kind<Subunit>> kinds = {plainPartKind<Subunit>("subunit")};
    return kinds;
}

template<>
const std::vector<Kind<VolumeControl>>& kindsOf<VolumeControl>()
{
    static const std::vector<Kind<VolumeControl>> kinds = {
        Kind<VolumeControl>("volumeControl", "IAudioVolumeLevel.")
            .required("channels", &VolumeControl::channels,
                      listCodec(ObjectCodec<ChannelLevel>(), 1, maximumChannels))};
    return kinds;
}

template<>
const std::vector<Kind<ChannelLevel>>& kindsOf<ChannelLevel>()
{
    static const std::vector<Kind<ChannelLevel>> kinds = {
        Kind<ChannelLevel>("channelLevel", "In decibels.")
            .required("minimum", &ChannelLevel::minimum, DecibelsCodec())
            .required("maximum", &ChannelLevel::maximum, DecibelsCodec())
            .required("step", &ChannelLevel::step, DecibelsCodec{true})
            .required("level", &ChannelLevel::level, DecibelsCodec())};
    return kinds;
}

template<>
const std::vector<Kind<MuteControl>>& kindsOf<MuteControl>()
{
    static const std::vector<Kind<MuteControl>> kinds = {
        Kind<MuteControl>("muteControl", "IAudioMute.").required("muted", &MuteControl::muted, BooleanCodec())};
    return kinds;
}

template<>
const std::vector<Kind<SelectorControl>>& kindsOf<SelectorControl>()
{
    static const std::vector<Kind<SelectorControl>> kinds = {
        Kind<SelectorControl>("selectorControl", "IAudioInputSelector.")
            .required("selection", &SelectorControl::selection, NumberCodec(),
                      "Local id of an incoming part; 0: none.")};
    return kinds;
}

template<>
const std::vector<Kind<SignalPath>>& kindsOf<SignalPath>()
{
    static const std::vector<Kind<SignalPath>> kinds = {
        Kind<SignalPath>("signalPath", "A path inside one topology, in one direction only.")
            .required("from", &SignalPath::from, StringCodec())
            .required("to", &SignalPath::to, StringCodec())
            .optional("through", &SignalPath::through, PartIdsCodec())
            .optional("mixed", &SignalPath::mixed, BooleanCodec(),
                      "true: it passes a sum, so a caller that rejects mixed paths does not find it.")};
    return kinds;
}
}
