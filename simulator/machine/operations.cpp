#include "simulator/machine/operations.h"

#include <array>
#include <string>

namespace sim
{
namespace
{
struct InterfaceOperations
{
    std::string_view interfaceName;
    std::string_view operations; ///< each between two blanks
};

constexpr std::string_view countingOperations = " QueryInterface AddRef Release ";

constexpr std::array<InterfaceOperations, 18> interfaces = {{
    {"IUnknown", " "},
    {"IClassFactory", " CreateInstance LockServer "},
    {"IMMDeviceEnumerator",
     " EnumAudioEndpoints GetDefaultAudioEndpoint GetDevice RegisterEndpointNotificationCallback "
     "UnregisterEndpointNotificationCallback "},
    {"IMMDeviceCollection", " GetCount Item "},
    {"IMMDevice", " Activate OpenPropertyStore GetId GetState "},
    {"IMMEndpoint", " GetDataFlow "},
    {"IPropertyStore", " GetCount GetAt GetValue SetValue Commit "},
    {"IDeviceTopology",
     " GetConnectorCount GetConnector GetSubunitCount GetSubunit GetPartById GetDeviceId GetSignalPath "},
    {"IPart", " GetName GetLocalId GetGlobalId GetPartType GetSubType GetControlInterfaceCount GetControlInterface "
              "EnumPartsIncoming EnumPartsOutgoing GetTopologyObject Activate RegisterControlChangeCallback "
              "UnregisterControlChangeCallback "},
    {"IConnector", " GetType GetDataFlow ConnectTo Disconnect IsConnected GetConnectedTo GetConnectorIdConnectedTo "
                   "GetDeviceIdConnectedTo "},
    {"ISubunit", " "},
    {"IPartsList", " GetCount GetPart "},
    {"IAudioVolumeLevel", " GetChannelCount GetLevelRange GetLevel SetLevel SetLevelUniform SetLevelAllChannels "},
    {"IAudioMute", " SetMute GetMute "},
    {"IAudioInputSelector", " GetSelection SetSelection "},
    {"IAudioEndpointVolume",
     " RegisterControlChangeNotify UnregisterControlChangeNotify GetChannelCount SetMasterVolumeLevel "
     "SetMasterVolumeLevelScalar GetMasterVolumeLevel GetMasterVolumeLevelScalar SetChannelVolumeLevel "
     "SetChannelVolumeLevelScalar GetChannelVolumeLevel GetChannelVolumeLevelScalar SetMute GetMute GetVolumeStepInfo "
     "VolumeStepUp VolumeStepDown QueryHardwareSupport GetVolumeRange "},
    {"IAudioClient", " Initialize GetBufferSize GetStreamLatency GetCurrentPadding IsFormatSupported GetMixFormat "
                     "GetDevicePeriod Start Stop Reset SetEventHandle GetService "},
    {"IBaseFilter", " GetClassID Stop Pause Run GetState SetSyncSource GetSyncSource EnumPins FindPin QueryFilterInfo "
                    "JoinFilterGraph QueryVendorInfo "},
}};

constexpr std::string_view functions =
    " CoInitialize CoInitializeEx CoUninitialize CoCreateInstance CoTaskMemAlloc "
    "CoTaskMemFree PropVariantClear CLSIDFromString waveOutGetNumDevs waveOutMessage "
    "waveInGetNumDevs waveInMessage PostMessageW getParentDeviceInstanceId ";

bool hasWord(std::string_view words, std::string_view word)
{
    const bool isOneWord = !word.empty() && word.find(' ') == std::string_view::npos;
    return isOneWord && words.find(" " + std::string(word) + " ") != std::string_view::npos;
}
}

bool isOperation(std::string_view name)
{
    const std::size_t colons = name.find("::");
    const bool isBare = colons == std::string_view::npos;
    const std::string_view operation = isBare ? name : name.substr(colons + 2);
    if (isBare && hasWord(functions, operation))
        return true;
    for (const InterfaceOperations& candidate : interfaces)
    {
        const bool isMeant = isBare || candidate.interfaceName == name.substr(0, colons);
        if (isMeant && (hasWord(candidate.operations, operation) || hasWord(countingOperations, operation)))
            return true;
    }
    return false;
}

bool isEndpointVolumeOperation(std::string_view name)
{
    return !hasWord(countingOperations, name) && isOperation("IAudioEndpointVolume::" + std::string(name));
}
}
