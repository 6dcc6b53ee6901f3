/// The kinds of objects in a machine file: the table of fields for each type of the data.
#pragma once

#include "simulator/machine/file/kind.h"
#include "simulator/machine/machine.h"

#include <vector>

namespace sim
{
/// The kinds that describe an @p Object: usually one, but for PropertyValue one for each form of value and for
/// ScriptEvent one for each group of events. Device and Part have a table too, though no file contains one alone.
template<class Object>
const std::vector<Kind<Object>>& kindsOf();

template<>
const std::vector<Kind<PropertyValue>>& kindsOf<PropertyValue>();
template<>
const std::vector<Kind<ChannelLevel>>& kindsOf<ChannelLevel>();
template<>
const std::vector<Kind<VolumeControl>>& kindsOf<VolumeControl>();
template<>
const std::vector<Kind<MuteControl>>& kindsOf<MuteControl>();
template<>
const std::vector<Kind<SelectorControl>>& kindsOf<SelectorControl>();
template<>
const std::vector<Kind<Part>>& kindsOf<Part>();
template<>
const std::vector<Kind<Connector>>& kindsOf<Connector>();
template<>
const std::vector<Kind<Subunit>>& kindsOf<Subunit>();
template<>
const std::vector<Kind<SignalPath>>& kindsOf<SignalPath>();
template<>
const std::vector<Kind<Topology>>& kindsOf<Topology>();
template<>
const std::vector<Kind<EndpointVolume>>& kindsOf<EndpointVolume>();
template<>
const std::vector<Kind<Device>>& kindsOf<Device>();
template<>
const std::vector<Kind<Endpoint>>& kindsOf<Endpoint>();
template<>
const std::vector<Kind<Adapter>>& kindsOf<Adapter>();
template<>
const std::vector<Kind<Join>>& kindsOf<Join>();
template<>
const std::vector<Kind<DeviceInstance>>& kindsOf<DeviceInstance>();
template<>
const std::vector<Kind<WaveDevice>>& kindsOf<WaveDevice>();
template<>
const std::vector<Kind<ScriptEvent>>& kindsOf<ScriptEvent>();
template<>
const std::vector<Kind<FaultRule>>& kindsOf<FaultRule>();
template<>
const std::vector<Kind<LatencyRule>>& kindsOf<LatencyRule>();
template<>
const std::vector<Kind<Machine>>& kindsOf<Machine>();

/// The kind of a type that has one.
template<class Object>
const Kind<Object>& kindOf()
{
    return kindsOf<Object>().front();
}

/// The kind that describes an event of that kind.
const Kind<ScriptEvent>& eventKind(ScriptEvent::Kind kind);

/// Whether all fields of both objects are equal, whatever kind describes them.
template<class Object>
bool haveEqualFields(const Object& left, const Object& right)
{
    for (const Kind<Object>& kind : kindsOf<Object>())
    {
        if (!kind.haveEqualFields(left, right))
            return false;
    }
    return true;
}
}
