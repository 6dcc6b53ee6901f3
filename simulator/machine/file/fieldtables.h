/// @file
/// The tables of fields of all types of a machine's data.
#pragma once

#include "simulator/machine/file/fieldtable.h"
#include "simulator/machine/machine.h"

#include <vector>

namespace sim
{
/// The fields of a type whose objects all have the same keys.
template<class Object>
const FieldTable<Object>& fieldsOf();

template<>
const FieldTable<ChannelLevel>& fieldsOf<ChannelLevel>();
template<>
const FieldTable<VolumeControl>& fieldsOf<VolumeControl>();
template<>
const FieldTable<MuteControl>& fieldsOf<MuteControl>();
template<>
const FieldTable<SelectorControl>& fieldsOf<SelectorControl>();
template<>
const FieldTable<FurtherControl>& fieldsOf<FurtherControl>();
template<>
const FieldTable<Jack>& fieldsOf<Jack>();
template<>
const FieldTable<Connector>& fieldsOf<Connector>();
template<>
const FieldTable<Subunit>& fieldsOf<Subunit>();
template<>
const FieldTable<SignalPath>& fieldsOf<SignalPath>();
template<>
const FieldTable<Topology>& fieldsOf<Topology>();
template<>
const FieldTable<HardwareControls>& fieldsOf<HardwareControls>();
template<>
const FieldTable<TaperPoint>& fieldsOf<TaperPoint>();
template<>
const FieldTable<EndpointVolume>& fieldsOf<EndpointVolume>();
template<>
const FieldTable<DevicePeriods>& fieldsOf<DevicePeriods>();
template<>
const FieldTable<Endpoint>& fieldsOf<Endpoint>();
template<>
const FieldTable<Adapter>& fieldsOf<Adapter>();
template<>
const FieldTable<Join>& fieldsOf<Join>();
template<>
const FieldTable<DeviceInstance>& fieldsOf<DeviceInstance>();
template<>
const FieldTable<WaveDevice>& fieldsOf<WaveDevice>();
template<>
const FieldTable<FaultRule>& fieldsOf<FaultRule>();
template<>
const FieldTable<LatencyRule>& fieldsOf<LatencyRule>();
template<>
const FieldTable<Machine>& fieldsOf<Machine>();

/// The forms of a property value that is written as an object; together they contain all fields.
std::vector<const FieldTable<PropertyValue>*> propertyValueForms();

/// The forms of an event, one for each group of events with the same keys; together they contain all fields.
std::vector<const FieldTable<ScriptEvent>*> eventForms();

/// The form of an event of that kind.
const FieldTable<ScriptEvent>& eventForm(ScriptEvent::Kind kind);
}
