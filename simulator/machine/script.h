/// @file
/// Plans for a machine: events that happen to it, calls that fail, and how long calls take.
#pragma once

#include "platform/coreaudio.h"
#include "simulator/machine/equality.h"
#include "simulator/machine/property.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sim
{
/// The states of a device, as IMMDevice::GetState stores them and EnumAudioEndpoints accepts them.
inline constexpr std::uint32_t stateActive = 0x1;
inline constexpr std::uint32_t stateDisabled = 0x2;
inline constexpr std::uint32_t stateNotPresent = 0x4;
inline constexpr std::uint32_t stateUnplugged = 0x8;

/// Something that happens to the machine while it runs.
struct ScriptEvent
{
    enum class Kind
    {
        added,           ///< collections contain the endpoint; OnDeviceAdded
        removed,         ///< collections no longer contain it; OnDeviceRemoved
        plugged,         ///< the endpoint becomes active; OnDeviceStateChanged
        unplugged,       ///< the endpoint becomes unplugged; OnDeviceStateChanged
        stateChanged,    ///< the endpoint's state becomes `state`; OnDeviceStateChanged
        defaultChanged,  ///< the endpoint becomes the default of its flow for `role`; OnDefaultDeviceChanged
        volumeChanged,   ///< all channels become `level`, mute becomes `muted`, if they have a value; OnNotify
        propertyChanged, ///< the property becomes `value`; OnPropertyValueChanged
        // What happens to a computer; see the operations of Events with these names.
        plugUsb,      ///< the USB device of the endpoint arrives
        unplugUsb,    ///< the USB device of the endpoint goes
        plugJack,     ///< a plug enters the endpoint's jack
        unplugJack,   ///< the plug leaves the endpoint's jack
        wake,         ///< the computer wakes up
        driverUpdate, ///< the driver of the endpoint's device is replaced
        serviceStop,  ///< the Windows audio service stops
        serviceStart, ///< the Windows audio service starts
        remoteLogon,  ///< a user logs on from another computer
    };

    std::uint32_t afterMilliseconds = 0; ///< counted from the event before, or from the start of the script
    Kind kind = Kind::plugged;
    std::string endpoint; ///< id; with defaultChanged it may be empty: the flow has no default any more; not used with
                          ///< wake, serviceStop, serviceStart and remoteLogon
    std::uint32_t state = stateActive;
    EDataFlow flow = eRender; ///< defaultChanged without an endpoint
    ERole role = eConsole;
    std::optional<float> level; ///< decibels
    std::optional<bool> muted;
    PROPERTYKEY key = {};
    PropertyValue value;
};

/// One planned failure of the platform.
struct FaultRule
{
    enum class Outcome
    {
        result,      ///< the operation returns `result`, out-parameters are null
        nullSuccess, ///< the operation returns S_OK, out-parameters are null
        thrown,      ///< an exception leaves the operation; meant for Release
    };

    std::string operation;    ///< "IMMDevice::Activate", "CoCreateInstance"; bare "Release": that of every interface
    std::string object = "*"; ///< a device id (its store, topology and volume too) or a part's global id; "*":
                              ///< any; PlannedFault::on() says which names are finer
    std::string argument;     ///< the first argument as the journal writes it; empty: any
    std::uint32_t call = 0;   ///< the n-th matching call, counted from 1; 0: every call
    Outcome outcome = Outcome::result;
    HRESULT result = E_FAIL;
    std::uint32_t forMilliseconds = 0;           ///< how long the rule holds, from `after` on; 0: to the end
    std::optional<ScriptEvent::Kind> after = {}; ///< holds after each event of this kind; no value: from the start
    std::vector<std::string> arguments = {}; ///< the first arguments as the journal writes them, in place of `argument`
};

/// How long a call of an operation takes.
struct LatencyRule
{
    std::string operation; ///< as in FaultRule; "*": every call that no other rule names
    std::uint32_t microseconds = 0;
    std::string argument = {}; ///< the first argument as the journal writes it; empty: any
};

/// Sets of latencies; LatencyPlan::usePreset() says what they contain.
enum class LatencyPreset
{
    none,
    windows, ///< what users have measured on Windows
};
}
