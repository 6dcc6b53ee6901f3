/// @file
/// Equality of the values that make up a machine: they are equal if all their data are.
#pragma once

#include <type_traits>

namespace sim
{
struct PropertyValue;
struct Property;
struct ChannelLevel;
struct VolumeControl;
struct MuteControl;
struct SelectorControl;
struct FurtherControl;
struct Jack;
struct Connector;
struct Subunit;
struct SignalPath;
struct Topology;
struct HardwareControls;
struct TaperPoint;
struct EndpointVolume;
struct DevicePeriods;
struct Endpoint;
struct Adapter;
struct Join;
struct DeviceInstance;
struct WaveDevice;
struct ScriptEvent;
struct FaultRule;
struct LatencyRule;
struct Machine;

template<class Object, class... Types>
inline constexpr bool isOneOf = (std::is_same_v<Object, Types> || ...);

template<class Object>
inline constexpr bool isMachineData =
    isOneOf<Object, PropertyValue, Property, ChannelLevel, VolumeControl, MuteControl, SelectorControl, FurtherControl,
            Jack, Connector, Subunit, SignalPath, Topology, HardwareControls, TaperPoint, EndpointVolume, DevicePeriods,
            Endpoint, Adapter, Join, DeviceInstance, WaveDevice, ScriptEvent, FaultRule, LatencyRule, Machine>;

template<class Object, class = std::enable_if_t<isMachineData<Object>>>
bool operator==(const Object& left, const Object& right);
}
