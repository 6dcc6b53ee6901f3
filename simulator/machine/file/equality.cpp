#include "simulator/machine/equality.h"

#include "simulator/machine/file/fieldtables.h"

#include <algorithm>

namespace sim
{
namespace
{
template<class Object>
bool haveEqualFields(const Object& left, const Object& right)
{
    return fieldsOf<Object>().haveEqualFields(left, right);
}

/// Objects of several forms are equal if the fields of all forms are.
template<class Object>
bool haveEqualFields(const std::vector<const FieldTable<Object>*>& forms, const Object& left, const Object& right)
{
    return std::all_of(forms.begin(), forms.end(),
                       [&](const auto* form) { return form->haveEqualFields(left, right); });
}

bool haveEqualFields(const PropertyValue& left, const PropertyValue& right)
{
    return haveEqualFields(propertyValueForms(), left, right);
}

bool haveEqualFields(const ScriptEvent& left, const ScriptEvent& right)
{
    return haveEqualFields(eventForms(), left, right);
}

bool haveEqualFields(const Property& left, const Property& right)
{
    return sameKey(left.key, right.key) && left.value == right.value;
}
}

template<class Object, class>
bool operator==(const Object& left, const Object& right)
{
    return haveEqualFields(left, right);
}

template bool operator==(const PropertyValue& left, const PropertyValue& right);
template bool operator==(const Property& left, const Property& right);
template bool operator==(const ChannelLevel& left, const ChannelLevel& right);
template bool operator==(const VolumeControl& left, const VolumeControl& right);
template bool operator==(const MuteControl& left, const MuteControl& right);
template bool operator==(const SelectorControl& left, const SelectorControl& right);
template bool operator==(const FurtherControl& left, const FurtherControl& right);
template bool operator==(const Jack& left, const Jack& right);
template bool operator==(const Connector& left, const Connector& right);
template bool operator==(const Subunit& left, const Subunit& right);
template bool operator==(const SignalPath& left, const SignalPath& right);
template bool operator==(const Topology& left, const Topology& right);
template bool operator==(const HardwareControls& left, const HardwareControls& right);
template bool operator==(const TaperPoint& left, const TaperPoint& right);
template bool operator==(const EndpointVolume& left, const EndpointVolume& right);
template bool operator==(const DevicePeriods& left, const DevicePeriods& right);
template bool operator==(const Endpoint& left, const Endpoint& right);
template bool operator==(const Adapter& left, const Adapter& right);
template bool operator==(const Join& left, const Join& right);
template bool operator==(const DeviceInstance& left, const DeviceInstance& right);
template bool operator==(const WaveDevice& left, const WaveDevice& right);
template bool operator==(const ScriptEvent& left, const ScriptEvent& right);
template bool operator==(const FaultRule& left, const FaultRule& right);
template bool operator==(const LatencyRule& left, const LatencyRule& right);
template bool operator==(const Machine& left, const Machine& right);
}
