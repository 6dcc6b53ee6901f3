#include "client/references/traits.h"

#include "client/references/deviceidentity.h"
#include "client/references/hash.h"

#include <cstdint>
#include <optional>
#include <type_traits>

namespace sonavit::references
{
namespace
{
template<class Number>
void appendBytes(std::string& bytes, Number number)
{
    static_assert(std::is_unsigned_v<Number>);
    for (std::size_t i = 0; i < sizeof(Number); ++i)
        bytes.push_back(static_cast<char>(static_cast<unsigned char>((std::uint64_t(number) >> (8 * i)) & 0xFFU)));
}

template<class Enum>
void appendEnum(std::string& bytes, const std::optional<Enum>& value)
{
    appendBytes(bytes, value ? static_cast<std::uint8_t>(*value) : std::uint8_t(0xFF));
}

std::string bytesOf(const Guid& guid)
{
    std::string bytes;
    appendBytes(bytes, guid.data1);
    appendBytes(bytes, guid.data2);
    appendBytes(bytes, guid.data3);
    for (const std::uint8_t byte : guid.data4)
        appendBytes(bytes, byte);
    return bytes;
}

/// "USB Audio" of "2- USB Audio": Windows numbers devices with equal names in the order in which it meets them.
std::string_view withoutNumber(std::string_view name) noexcept
{
    const std::size_t digits = name.find_first_not_of("0123456789");
    if (digits == 0 || digits == std::string_view::npos || name.substr(digits, 2) != "- ")
        return name;
    return name.substr(digits + 2);
}

/// No value if the driver describes nothing of it.
std::string placeOf(const Jack& jack)
{
    if (!jack.colour && !jack.place && !jack.geometry && !jack.connection)
        return {};
    std::string bytes;
    const Colour colour = jack.colour.value_or(Colour());
    appendBytes(bytes, colour.red);
    appendBytes(bytes, colour.green);
    appendBytes(bytes, colour.blue);
    appendEnum(bytes, jack.place);
    appendEnum(bytes, jack.geometry);
    appendEnum(bytes, jack.connection);
    return bytes;
}

void readDevice(const Card& card, const Endpoint& endpoint, Traits& traits)
{
    std::string instanceId = card.instanceId().value_or(std::string());
    if (instanceId.empty() && endpoint.instancePath())
        instanceId = std::string(instanceIdIn(*endpoint.instancePath()));
    const std::optional<std::string>& parent = card.parent();
    const DeviceIdentity identity =
        identityOf(instanceId, parent ? std::optional<std::string_view>(*parent) : std::nullopt);
    traits.instanceId = shortened(instanceId, idLimit);
    traits.vendor = shortened(identity.vendor, numberLimit);
    traits.product = shortened(identity.product, numberLimit);
    traits.function = identity.function.substr(0, functionLimit);
    traits.serial = shortened(identity.serial, nameLimit);
}

void readJack(const Endpoint& endpoint, Traits& traits)
{
    if (endpoint.jacks().empty())
        return;
    const Jack& jack = endpoint.jacks().front();
    if (jack.type)
        traits.jackType = bytesOf(*jack.type);
    if (jack.formFactor)
        traits.formFactor = formFactorBytes(*jack.formFactor);
    traits.jackPlace = placeOf(jack);
}
}

Traits traitsOf(const Card& card, const Endpoint& endpoint)
{
    Traits traits;
    traits.flow = endpoint.flow();
    traits.endpointId = shortened(endpoint.id().text(), idLimit);
    readDevice(card, endpoint, traits);
    readJack(endpoint, traits);
    const std::optional<Guid>& container = endpoint.container();
    if (container && !container->isNull() && !isInternalContainer(*container))
        traits.container = bytesOf(*container);
    traits.description = shortened(endpoint.description().value_or(std::string()), nameLimit);
    traits.interfaceName = shortened(withoutNumber(endpoint.interfaceName().value_or(std::string())), nameLimit);
    if (endpoint.driverNode() && !endpoint.driverNode()->empty())
        appendBytes(traits.driver, foldedHash64(*endpoint.driverNode()));
    return traits;
}

std::string formFactorBytes(FormFactor formFactor)
{
    std::string bytes;
    appendBytes(bytes, static_cast<std::uint16_t>(formFactor));
    return bytes;
}

std::string shortened(std::string_view text, std::size_t limit)
{
    if (text.size() <= limit)
        return std::string(text);
    constexpr const char* digits = "0123456789abcdef";
    constexpr std::size_t digitCount = 16;
    std::string result(text.substr(0, limit - digitCount - 1));
    result.push_back('~');
    const std::uint64_t hash = foldedHash64(text);
    for (std::size_t i = digitCount; i-- > 0;)
        result.push_back(digits[(hash >> (4 * i)) & 0xFU]);
    return result;
}
}
