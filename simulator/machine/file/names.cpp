#include "simulator/machine/file/names.h"

#include "simulator/machine/nodetypes.h"
#include "simulator/machine/valuetext.h"

#include <algorithm>
#include <cstdio>

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

/// The number of @p digits hexadecimal digits of @p text from @p at on.
std::uint32_t hexNumber(const std::string& text, std::size_t at, std::size_t digits)
{
    std::uint32_t value = 0;
    for (std::size_t index = at; index < at + digits; ++index)
        value = value << 4 | static_cast<std::uint32_t>(hexDigit(text[index]));
    return value;
}
}

std::string guidText(const GUID& guid)
{
    char text[39] = {};
    std::snprintf(text, sizeof text, "{%08lX-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                  static_cast<unsigned long>(guid.Data1), guid.Data2, guid.Data3, guid.Data4[0], guid.Data4[1],
                  guid.Data4[2], guid.Data4[3], guid.Data4[4], guid.Data4[5], guid.Data4[6], guid.Data4[7]);
    return text;
}

std::optional<GUID> guidFromText(const std::string& text)
{
    constexpr std::string_view form = "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}";
    const auto fits = [](char wanted, char found) { return wanted == 'X' ? hexDigit(found) >= 0 : wanted == found; };
    if (!std::equal(form.begin(), form.end(), text.begin(), text.end(), fits))
        return std::nullopt;

    GUID guid = {};
    guid.Data1 = hexNumber(text, 1, 8);
    guid.Data2 = static_cast<unsigned short>(hexNumber(text, 10, 4));
    guid.Data3 = static_cast<unsigned short>(hexNumber(text, 15, 4));
    constexpr std::array<std::size_t, 8> lastBytes = {20, 22, 25, 27, 29, 31, 33, 35};
    for (std::size_t index = 0; index < lastBytes.size(); ++index)
        guid.Data4[index] = static_cast<unsigned char>(hexNumber(text, lastBytes[index], 2));
    return guid;
}

std::optional<std::uint32_t> numberFromText(const std::string& text)
{
    const bool isDecimal = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
    const bool isPlain = text.size() <= 10 && (text.size() == 1 || text.front() != '0');
    if (!isDecimal || !isPlain)
        return std::nullopt;
    const unsigned long long value = std::stoull(text);
    return value <= UINT32_MAX ? std::optional<std::uint32_t>(static_cast<std::uint32_t>(value)) : std::nullopt;
}

std::optional<HRESULT> resultFromText(const std::string& text)
{
    const bool hasForm = text.size() == 10 && text.compare(0, 2, "0x") == 0;
    if (!hasForm || !std::all_of(text.begin() + 2, text.end(), [](char unit) { return hexDigit(unit) >= 0; }))
        return std::nullopt;
    return static_cast<HRESULT>(hexNumber(text, 2, 8));
}

std::string resultText(HRESULT result)
{
    char text[11] = {};
    std::snprintf(text, sizeof text, "0x%08lX", static_cast<unsigned long>(static_cast<std::uint32_t>(result)));
    return text;
}

std::string nodeTypeText(const GUID& nodeType)
{
    for (const NamedNodeType& named : namedNodeTypes)
    {
        if (named.type == nodeType)
            return std::string(named.name);
    }
    return guidText(nodeType);
}

std::optional<GUID> nodeTypeFromText(const std::string& text)
{
    for (const NamedNodeType& named : namedNodeTypes)
    {
        if (named.name == text)
            return named.type;
    }
    return guidFromText(text);
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
