#include "simulator/machine/operations.h"

#include "simulator/machine/nearestname.h"

#include <algorithm>
#include <vector>

namespace sim
{
namespace
{
using NameList = std::vector<std::string_view>;

// The lists are never destroyed: calls may be recorded while the process ends.

struct InterfaceOperations
{
    std::string_view interfaceName;
    NameList operations; ///< without those that count references
};

const NameList& countingOperations()
{
    static const auto& names = *new NameList{"QueryInterface", "AddRef", "Release"};
    return names;
}

/// The interfaces that the machine implements; the lists name what the journal writes.
const std::vector<InterfaceOperations>& interfaces()
{
    static const auto& all = *new std::vector<InterfaceOperations>{
        {"IUnknown", {}},
        {"IClassFactory", {"CreateInstance", "LockServer"}},
        {"IMMDeviceEnumerator",
         {"EnumAudioEndpoints", "GetDefaultAudioEndpoint", "GetDevice", "RegisterEndpointNotificationCallback",
          "UnregisterEndpointNotificationCallback"}},
        {"IMMDeviceCollection", {"GetCount", "Item"}},
        {"IMMDevice", {"Activate", "OpenPropertyStore", "GetId", "GetState"}},
        {"IMMEndpoint", {"GetDataFlow"}},
        {"IPropertyStore", {"GetCount", "GetAt", "GetValue", "SetValue", "Commit"}},
        {"IDeviceTopology",
         {"GetConnectorCount", "GetConnector", "GetSubunitCount", "GetSubunit", "GetPartById", "GetDeviceId",
          "GetSignalPath"}},
        {"IPart",
         {"GetName", "GetLocalId", "GetGlobalId", "GetPartType", "GetSubType", "GetControlInterfaceCount",
          "GetControlInterface", "EnumPartsIncoming", "EnumPartsOutgoing", "GetTopologyObject", "Activate",
          "RegisterControlChangeCallback", "UnregisterControlChangeCallback"}},
        {"IConnector",
         {"GetType", "GetDataFlow", "ConnectTo", "Disconnect", "IsConnected", "GetConnectedTo",
          "GetConnectorIdConnectedTo", "GetDeviceIdConnectedTo"}},
        {"ISubunit", {}},
        {"IPartsList", {"GetCount", "GetPart"}},
        {"IControlInterface", {"GetName", "GetIID"}},
        {"IAudioVolumeLevel",
         {"GetChannelCount", "GetLevelRange", "GetLevel", "SetLevel", "SetLevelUniform", "SetLevelAllChannels"}},
        {"IAudioMute", {"SetMute", "GetMute"}},
        {"IAudioInputSelector", {"GetSelection", "SetSelection"}},
        {"IKsJackDescription", {"GetJackCount", "GetJackDescription"}},
        {"IKsJackDescription2", {"GetJackCount", "GetJackDescription2"}},
        {"IAudioEndpointVolume",
         {"RegisterControlChangeNotify", "UnregisterControlChangeNotify", "GetChannelCount", "SetMasterVolumeLevel",
          "SetMasterVolumeLevelScalar", "GetMasterVolumeLevel", "GetMasterVolumeLevelScalar", "SetChannelVolumeLevel",
          "SetChannelVolumeLevelScalar", "GetChannelVolumeLevel", "GetChannelVolumeLevelScalar", "SetMute", "GetMute",
          "GetVolumeStepInfo", "VolumeStepUp", "VolumeStepDown", "QueryHardwareSupport", "GetVolumeRange"}},
        {"IAudioClient",
         {"Initialize", "GetBufferSize", "GetStreamLatency", "GetCurrentPadding", "IsFormatSupported", "GetMixFormat",
          "GetDevicePeriod", "Start", "Stop", "Reset", "SetEventHandle", "GetService"}},
        {"IAudioClient2", {"IsOffloadCapable", "SetClientProperties", "GetBufferSizeLimits"}},
        {"IAudioClient3",
         {"GetSharedModeEnginePeriod", "GetCurrentSharedModeEnginePeriod", "InitializeSharedAudioStream"}},
        {"IAudioRenderClient", {"GetBuffer", "ReleaseBuffer"}},
        {"IAudioCaptureClient", {"GetBuffer", "ReleaseBuffer", "GetNextPacketSize"}},
        {"IAudioClock", {"GetFrequency", "GetPosition", "GetCharacteristics"}},
        {"IAudioClock2", {"GetDevicePosition"}},
        {"ISimpleAudioVolume", {"SetMasterVolume", "GetMasterVolume", "SetMute", "GetMute"}},
        {"IAudioStreamVolume",
         {"GetChannelCount", "SetChannelVolume", "GetChannelVolume", "SetAllVolumes", "GetAllVolumes"}},
        {"IChannelAudioVolume",
         {"GetChannelCount", "SetChannelVolume", "GetChannelVolume", "SetAllVolumes", "GetAllVolumes"}},
        {"IAudioMeterInformation",
         {"GetPeakValue", "GetMeteringChannelCount", "GetChannelsPeakValues", "QueryHardwareSupport"}},
        {"IBaseFilter",
         {"GetClassID", "Stop", "Pause", "Run", "GetState", "SetSyncSource", "GetSyncSource", "EnumPins", "FindPin",
          "QueryFilterInfo", "JoinFilterGraph", "QueryVendorInfo"}},
    };
    return all;
}

const NameList& functions()
{
    static const auto& names = *new NameList{
        "CoInitialize",     "CoInitializeEx",   "CoUninitialize",  "CoCreateInstance",         "CoTaskMemAlloc",
        "CoTaskMemFree",    "PropVariantClear", "CLSIDFromString", "waveOutGetNumDevs",        "waveOutMessage",
        "waveInGetNumDevs", "waveInMessage",    "PostMessageW",    "getParentDeviceInstanceId"};
    return names;
}

bool contains(const NameList& names, std::string_view name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

void append(std::vector<std::string>& list, const NameList& names, const std::string& prefix = {})
{
    for (const std::string_view name : names)
        list.push_back(prefix + std::string(name));
}

/// The operations of one interface, with those that count references at the end.
std::vector<std::string> operationsOf(const InterfaceOperations& owner, const std::string& prefix = {})
{
    std::vector<std::string> names;
    append(names, owner.operations, prefix);
    append(names, countingOperations(), prefix);
    return names;
}

/// Every operation by its full name, and every function.
std::vector<std::string> allOperations()
{
    std::vector<std::string> names;
    append(names, functions());
    for (const InterfaceOperations& each : interfaces())
    {
        const std::vector<std::string> own = operationsOf(each, std::string(each.interfaceName) + "::");
        names.insert(names.end(), own.begin(), own.end());
    }
    return names;
}

std::vector<std::string> bareNames()
{
    std::vector<std::string> names;
    append(names, functions());
    for (const InterfaceOperations& each : interfaces())
        append(names, each.operations);
    append(names, countingOperations());
    return names;
}

std::string functionsAndInterfaces()
{
    std::string text = " (functions:";
    for (const std::string_view name : functions())
        text += " " + std::string(name);
    text += "; interfaces:";
    for (const InterfaceOperations& each : interfaces())
        text += " " + std::string(each.interfaceName);
    return text + ")";
}
}

bool isOperation(std::string_view name)
{
    const std::size_t colons = name.find("::");
    const bool isBare = colons == std::string_view::npos;
    const std::string_view operation = isBare ? name : name.substr(colons + 2);
    if (isBare && contains(functions(), operation))
        return true;
    for (const InterfaceOperations& candidate : interfaces())
    {
        const bool isMeant = isBare || candidate.interfaceName == name.substr(0, colons);
        if (isMeant && (contains(candidate.operations, operation) || contains(countingOperations(), operation)))
            return true;
    }
    return false;
}

bool isEndpointVolumeOperation(std::string_view name)
{
    return !contains(countingOperations(), name) && isOperation("IAudioEndpointVolume::" + std::string(name));
}

std::string operationSuggestion(const std::string& name)
{
    const std::size_t colons = name.find("::");
    const auto isNamed = [&](const InterfaceOperations& each) { return each.interfaceName == name.substr(0, colons); };
    const auto owner = std::find_if(interfaces().begin(), interfaces().end(), isNamed);
    if (colons != std::string::npos && owner != interfaces().end())
    {
        const std::string prefix = name.substr(0, colons + 2);
        const std::string nearest = nearestName(name.substr(colons + 2), operationsOf(*owner));
        return nearest.empty() ? suggestion("", operationsOf(*owner), "operations of " + name.substr(0, colons))
                               : " (did you mean \"" + prefix + nearest + "\"?)";
    }
    const bool isBare = colons == std::string::npos;
    const std::string nearest = nearestName(name, isBare ? bareNames() : allOperations());
    return nearest.empty() ? functionsAndInterfaces() : " (did you mean \"" + nearest + "\"?)";
}
}
