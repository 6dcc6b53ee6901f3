#include "simulator/machine/identity.h"

#include "simulator/machine/casefolding.h"
#include "simulator/machine/nodetypes.h"
#include "simulator/machine/valuetext.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <string_view>

namespace sim
{
namespace
{
/// FNV-1a, with its usual constants; @p value is the hash of what comes before @p text.
std::uint64_t hash(std::string_view text, std::uint64_t value = 0xCBF29CE484222325u)
{
    for (const char character : text)
    {
        value ^= static_cast<unsigned char>(character);
        value *= 0x100000001B3u;
    }
    return value;
}

/// The address of a Bluetooth device: the twelve hexadecimal digits in "...\\7&1A2B3C4&0&001122334455_C00000000".
std::optional<std::string> bluetoothAddress(const std::string& instanceId)
{
    const std::size_t element = instanceId.rfind('\\') + 1; // the whole id if it has no such character
    const std::string last = instanceId.substr(std::max(element, instanceId.rfind('&') + 1));
    const std::string address = last.substr(0, last.find('_'));
    const auto isHex = [](char character) { return hexDigit(character) >= 0; };
    if (address.size() != 12 || !std::all_of(address.begin(), address.end(), isHex))
        return std::nullopt;
    return address;
}

bool isHexDigit(char character)
{
    return std::isxdigit(static_cast<unsigned char>(character)) != 0;
}

/// "{0.0.0.00000000}.{guid}" and "{0.0.1.00000000}.{guid}", with any eight digits before the GUID.
bool isEndpointId(const std::string& id)
{
    constexpr std::string_view form = "{0.0.F.XXXXXXXX}.";
    const auto fits = [](char wanted, char found)
    {
        if (wanted == 'F')
            return found == '0' || found == '1';
        return wanted == 'X' ? isHexDigit(found) : wanted == found;
    };
    return id.size() > form.size() && std::equal(form.begin(), form.end(), id.begin(), fits) &&
           guidFromText(id.substr(form.size()));
}

bool isAdapterId(const std::string& id)
{
    constexpr std::string_view start = "{2}.\\\\?\\";
    return id.size() > start.size() && std::equal(start.begin(), start.end(), id.begin());
}
}

GUID derivedGuid(const std::string& seed)
{
    const std::uint64_t start = hash(seed);
    const std::uint64_t first = hash("\nfirst", start);
    const std::uint64_t last = hash("\nlast", start);

    GUID guid = {};
    guid.Data1 = static_cast<std::uint32_t>(first >> 32);
    guid.Data2 = static_cast<std::uint16_t>(first >> 16);
    guid.Data3 = static_cast<std::uint16_t>((first & 0x0FFF) | 0x4000); // the version of random GUIDs
    for (int index = 0; index < 8; ++index)
        guid.Data4[index] = static_cast<unsigned char>(last >> (8 * index));
    guid.Data4[0] = static_cast<unsigned char>((guid.Data4[0] & 0x3F) | 0x80); // and their variant
    return guid;
}

std::string derivedHex(const std::string& seed, int digits)
{
    char text[17] = {};
    std::snprintf(text, sizeof text, "%016llX", static_cast<unsigned long long>(hash(seed)));
    return std::string(text).substr(16 - static_cast<std::size_t>(std::clamp(digits, 0, 16)));
}

std::string endpointId(EDataFlow flow, const GUID& guid)
{
    const std::string family = flow == eRender ? "{0.0.0.00000000}" : "{0.0.1.00000000}";
    return family + "." + lowerCase(guidText(guid));
}

std::string boardInstance(const std::string& seed)
{
    return "HDAUDIO\\FUNC_01&VEN_" + derivedHex(seed + "/ven", 4) + "&DEV_" + derivedHex(seed + "/dev", 4) +
           "&SUBSYS_" + derivedHex(seed + "/subsys", 8) + "&REV_1000\\4&" + derivedHex(seed + "/bus", 7) + "&0&0001";
}

std::string boardParent(const std::string& seed)
{
    return "PCI\\VEN_" + derivedHex(seed + "/ven", 4) + "&DEV_" + derivedHex(seed + "/bridge", 4) + "&SUBSYS_" +
           derivedHex(seed + "/subsys", 8) + "&REV_03\\3&" + derivedHex(seed + "/slot", 7) + "&0&FB";
}

std::string usbInstance(const std::string& seed)
{
    return "USB\\VID_" + derivedHex(seed + "/vid", 4) + "&PID_" + derivedHex(seed + "/pid", 4) + "&MI_00\\7&" +
           derivedHex(seed + "/port", 7) + "&0&0000";
}

std::string usbParent(const std::string& seed)
{
    return "USB\\VID_" + derivedHex(seed + "/vid", 4) + "&PID_" + derivedHex(seed + "/pid", 4) + "\\" +
           derivedHex(seed + "/serial", 12);
}

std::string adapterId(const std::string& instanceId)
{
    std::string path = lowerCase(instanceId);
    std::replace(path.begin(), path.end(), '\\', '#');
    return "{2}.\\\\?\\" + path + "#" + lowerCase(guidText(nodetypes::stream)) + "\\topo";
}

std::optional<std::string> instanceOfAdapter(const std::string& adapterId)
{
    constexpr std::string_view prefix = "\\\\?\\";
    const std::size_t start = adapterId.find(prefix);
    const std::size_t end = adapterId.rfind("#{"); // the class comes last
    if (start == std::string::npos || end == std::string::npos || end < start + prefix.size())
        return std::nullopt;
    std::string id = upperCase(adapterId.substr(start + prefix.size(), end - start - prefix.size()));
    std::replace(id.begin(), id.end(), '#', '\\');
    return id;
}

std::string instanceOfPath(const std::string& instancePath)
{
    const std::size_t dot = instancePath.find('.');
    if (dot == std::string::npos)
        return {};
    const std::size_t end = instancePath.find('.', dot + 1);
    return instancePath.substr(dot + 1, end == std::string::npos ? end : end - dot - 1);
}

GUID containerOf(const std::string& instanceId, const std::optional<std::string>& parent)
{
    const std::string id = upperCase(instanceId);
    const std::string bus = id.substr(0, id.find('\\'));
    const bool isBluetooth = bus.compare(0, 3, "BTH") == 0;
    if (!isBluetooth && bus != "USB")
        return {0, 0, 0, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}};
    const std::string above = upperCase(parent.value_or(id));
    if (isBluetooth)
    {
        const std::string address = bluetoothAddress(id).value_or(bluetoothAddress(above).value_or(above));
        return derivedGuid("container/" + address);
    }
    const bool isFunction = id.find("&MI_") != std::string::npos;
    return derivedGuid("container/" + (isFunction ? above : id));
}

bool isDeviceId(const std::string& id)
{
    return isEndpointId(id) || isAdapterId(id);
}

std::string driverName(const std::string& instancePath)
{
    const std::size_t start = instancePath.find('.') + 1; // the whole string if it has no dot
    const std::string device = instancePath.substr(start, instancePath.rfind('\\') - start);
    return "oem7.inf:" + derivedHex(device, 16) + ":AudioModel:6.0.1.7:" + lowerCase(device);
}

std::uint32_t usualConnectorLocalId(std::size_t position)
{
    return 0x00010000 + static_cast<std::uint32_t>(position);
}

std::uint32_t usualSubunitLocalId(std::size_t position)
{
    return 0x00020000 + static_cast<std::uint32_t>(position);
}

std::string partId(const std::string& deviceId, std::uint32_t localId)
{
    char text[9] = {};
    std::snprintf(text, sizeof text, "%08lx", static_cast<unsigned long>(localId));
    return deviceId + "/" + text;
}
}
