#include "simulator/machine/machine.h"

#include <tuple>

namespace sim
{
bool operator==(const PropertyValue& left, const PropertyValue& right)
{
    const auto fields = [](const PropertyValue& value)
    { return std::tie(value.tag, value.text, value.number, value.bytes); };
    return fields(left) == fields(right);
}

bool operator==(const Property& left, const Property& right)
{
    return sameKey(left.key, right.key) && left.value == right.value;
}

bool operator==(const ChannelLevel& left, const ChannelLevel& right)
{
    const auto fields = [](const ChannelLevel& value)
    { return std::tie(value.minimum, value.maximum, value.step, value.level); };
    return fields(left) == fields(right);
}

bool operator==(const VolumeControl& left, const VolumeControl& right)
{
    return left.channels == right.channels;
}

bool operator==(const MuteControl& left, const MuteControl& right)
{
    return left.muted == right.muted;
}

bool operator==(const SelectorControl& left, const SelectorControl& right)
{
    return left.selection == right.selection;
}

bool operator==(const Part& left, const Part& right)
{
    const auto fields = [](const Part& value)
    {
        return std::tie(value.id, value.localId, value.reportsId, value.name, value.incoming, value.outgoing,
                        value.volume, value.mute, value.selector);
    };
    return left.subType == right.subType && fields(left) == fields(right);
}

bool operator==(const Connector& left, const Connector& right)
{
    return static_cast<const Part&>(left) == static_cast<const Part&>(right) && left.type == right.type &&
           left.direction == right.direction;
}

bool operator==(const Subunit& left, const Subunit& right)
{
    return static_cast<const Part&>(left) == static_cast<const Part&>(right);
}

bool operator==(const SignalPath& left, const SignalPath& right)
{
    const auto fields = [](const SignalPath& value)
    { return std::tie(value.from, value.to, value.through, value.mixed); };
    return fields(left) == fields(right);
}

bool operator==(const Topology& left, const Topology& right)
{
    const auto fields = [](const Topology& value)
    { return std::tie(value.deviceId, value.connectors, value.subunits, value.signalPaths); };
    return fields(left) == fields(right);
}

bool operator==(const Device& left, const Device& right)
{
    const auto fields = [](const Device& value)
    {
        return std::tie(value.id, value.openable, value.state, value.properties, value.topology, value.hasAudioClient,
                        value.hasBaseFilter);
    };
    return fields(left) == fields(right);
}

bool operator==(const EndpointVolume& left, const EndpointVolume& right)
{
    const auto fields = [](const EndpointVolume& value)
    {
        return std::tie(value.minimum, value.maximum, value.step, value.channels, value.muted, value.hardwareSupport,
                        value.refused);
    };
    return fields(left) == fields(right);
}

bool operator==(const Endpoint& left, const Endpoint& right)
{
    const auto fields = [](const Endpoint& value)
    { return std::tie(value.flow, value.installed, value.volume, value.defaultFor); };
    return static_cast<const Device&>(left) == static_cast<const Device&>(right) && fields(left) == fields(right);
}

bool operator==(const Adapter& left, const Adapter& right)
{
    return static_cast<const Device&>(left) == static_cast<const Device&>(right);
}

bool operator==(const Join& left, const Join& right)
{
    const auto fields = [](const Join& value)
    { return std::tie(value.from, value.to, value.toDevice, value.bothWays); };
    return fields(left) == fields(right);
}

bool operator==(const DeviceInstance& left, const DeviceInstance& right)
{
    const auto fields = [](const DeviceInstance& value) { return std::tie(value.id, value.parent); };
    return fields(left) == fields(right);
}

bool operator==(const WaveDevice& left, const WaveDevice& right)
{
    const auto fields = [](const WaveDevice& value)
    { return std::tie(value.endpointId, value.sizeResult, value.idResult); };
    return fields(left) == fields(right);
}

bool operator==(const ScriptEvent& left, const ScriptEvent& right)
{
    const auto fields = [](const ScriptEvent& value)
    {
        return std::tie(value.afterMilliseconds, value.kind, value.endpoint, value.state, value.flow, value.role,
                        value.level, value.muted, value.value);
    };
    return sameKey(left.key, right.key) && fields(left) == fields(right);
}

bool operator==(const FaultRule& left, const FaultRule& right)
{
    const auto fields = [](const FaultRule& value)
    { return std::tie(value.operation, value.object, value.argument, value.call, value.outcome, value.result); };
    return fields(left) == fields(right);
}

bool operator==(const LatencyRule& left, const LatencyRule& right)
{
    const auto fields = [](const LatencyRule& value) { return std::tie(value.operation, value.microseconds); };
    return fields(left) == fields(right);
}

bool operator==(const Machine& left, const Machine& right)
{
    const auto fields = [](const Machine& value)
    {
        return std::tie(value.name, value.description, value.endpoints, value.adapters, value.joins,
                        value.deviceInstances, value.waveOut, value.waveIn, value.script, value.faults, value.latency);
    };
    return fields(left) == fields(right);
}
}
