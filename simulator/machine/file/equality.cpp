#include "simulator/machine/file/kinds.h"
#include "simulator/machine/machine.h"

namespace sim
{
bool operator==(const PropertyValue& left, const PropertyValue& right)
{
    return haveEqualFields(left, right);
}

bool operator==(const Property& left, const Property& right)
{
    return sameKey(left.key, right.key) && left.value == right.value;
}

bool operator==(const ChannelLevel& left, const ChannelLevel& right)
{
    return haveEqualFields(left, right);
}

bool operator==(const VolumeControl& left, const VolumeControl& right)
{
    return haveEqualFields(left, right);
}

bool operator==(const MuteControl& left, const MuteControl& right)
{
    return haveEqualFields(left, right);
}

bool operator==(const SelectorControl& left, const SelectorControl& right)
{
    return haveEqualFields(left, right);
}

bool operator==(const Part& left, const Part& right)
{
    return haveEqualFields(left, right);
}

bool operator==(const Connector& left, const Connector& right)
{
    return haveEqualFields(left, right);
}

bool operator==(const Subunit& left, const Subunit& right)
{
    return haveEqualFields(left, right);
}

bool operator==(const SignalPath& left, const SignalPath& right)
{
    return haveEqualFields(left, right);
}

bool operator==(const Topology& left, const Topology& right)
{
    return haveEqualFields(left, right);
}

bool operator==(const Device& left, const Device& right)
{
    return haveEqualFields(left, right);
}

bool operator==(const EndpointVolume& left, const EndpointVolume& right)
{
    return haveEqualFields(left, right);
}

bool operator==(const Endpoint& left, const Endpoint& right)
{
    return haveEqualFields(left, right);
}

bool operator==(const Adapter& left, const Adapter& right)
{
    return haveEqualFields(left, right);
}

bool operator==(const Join& left, const Join& right)
{
    return haveEqualFields(left, right);
}

bool operator==(const DeviceInstance& left, const DeviceInstance& right)
{
    return haveEqualFields(left, right);
}

bool operator==(const WaveDevice& left, const WaveDevice& right)
{
    return haveEqualFields(left, right);
}

bool operator==(const ScriptEvent& left, const ScriptEvent& right)
{
    return haveEqualFields(left, right);
}

bool operator==(const FaultRule& left, const FaultRule& right)
{
    return haveEqualFields(left, right);
}

bool operator==(const LatencyRule& left, const LatencyRule& right)
{
    return haveEqualFields(left, right);
}

bool operator==(const Machine& left, const Machine& right)
{
    return haveEqualFields(left, right);
}
}
