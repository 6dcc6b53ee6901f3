#include "client/references/deviceidentity.h"

#include <cstddef>

namespace sonavit::references
{
namespace
{
std::string upperCase(std::string_view text)
{
    std::string upper(text);
    for (char& character : upper)
        if (character >= 'a' && character <= 'z')
            character = static_cast<char>(character - 'a' + 'A');
    return upper;
}

/// The three parts of an instance id; empty ones if it has not that many.
struct InstanceParts
{
    std::string bus;
    std::string device;
    std::string instance;
};

InstanceParts partsOf(std::string_view instanceId)
{
    const std::size_t first = instanceId.find('\\');
    const std::size_t last = instanceId.rfind('\\');
    if (first == std::string_view::npos || first == last)
        return {};
    return {upperCase(instanceId.substr(0, first)), upperCase(instanceId.substr(first + 1, last - first - 1)),
            std::string(instanceId.substr(last + 1))};
}

/// What follows @p key in a device's part, up to the next separator; the key begins the part or follows a separator.
std::string valueOf(const std::string& device, std::string_view key)
{
    for (std::size_t at = device.find(key); at != std::string::npos; at = device.find(key, at + 1))
    {
        if (at != 0 && device[at - 1] != '&' && device[at - 1] != '_')
            continue;
        const std::size_t begin = at + key.size();
        return device.substr(begin, device.find_first_of("&_", begin) - begin);
    }
    return {};
}

void readNumbers(const InstanceParts& parts, DeviceIdentity& identity)
{
    const std::string& device = parts.device;
    std::string vendor = valueOf(device, "VID_");
    if (vendor.empty())
        vendor = valueOf(device, "VEN_");
    if (vendor.empty())
        vendor = valueOf(device, "VID&");
    if (vendor.empty())
        return;
    identity.vendor = parts.bus + ":" + vendor;
    identity.product = valueOf(device, "PID_");
    if (identity.product.empty())
        identity.product = valueOf(device, "PID&");
    if (!identity.product.empty())
        return;
    identity.product = valueOf(device, "DEV_");
    const std::string subsystem = valueOf(device, "SUBSYS_");
    if (!identity.product.empty() && !subsystem.empty())
        identity.product += "&" + subsystem;
}

std::string serialIn(const InstanceParts& parts)
{
    const std::string& instance = parts.instance;
    return instance.size() > 1 && instance[1] == '&' ? std::string() : instance;
}
}

DeviceIdentity identityOf(std::string_view instanceId, std::optional<std::string_view> parent)
{
    const InstanceParts parts = partsOf(instanceId);
    DeviceIdentity identity;
    identity.bus = parts.bus;
    readNumbers(parts, identity);
    if (identity.vendor.empty() || identity.product.empty())
        return identity; // a number that Windows or a driver has counted is not a serial number
    identity.function = parts.bus == "USB" ? valueOf(parts.device, "MI_") : std::string();
    if (identity.function.empty())
    {
        identity.serial = serialIn(parts);
        return identity;
    }
    const InstanceParts above = partsOf(parent.value_or(std::string_view()));
    DeviceIdentity whole;
    readNumbers(above, whole);
    if (whole.vendor == identity.vendor && whole.product == identity.product)
        identity.serial = serialIn(above);
    return identity;
}

std::string_view instanceIdIn(std::string_view instancePath) noexcept
{
    const std::size_t end = instancePath.find("}.");
    return end == std::string_view::npos ? std::string_view() : instancePath.substr(end + 2);
}
}
