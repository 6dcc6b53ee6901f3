#include "simulator/machine/mixformat.h"

#include <string_view>

namespace sim
{
namespace
{
/// The subtype of floating-point samples. The SDK's name for it is a constant that each program must define.
constexpr GUID floatingPointSamples = {0x00000003, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
constexpr std::string_view floatingPoint = "32f/";
}

std::string MixFormat::text() const
{
    const std::string text = numbers.text();
    return isFloatingPoint ? std::string(floatingPoint) + text.substr(text.find('/') + 1) : text;
}

std::optional<MixFormat> MixFormat::fromText(const std::string& text)
{
    const bool isFloat = text.compare(0, floatingPoint.size(), floatingPoint) == 0;
    const std::optional<DeviceFormat> numbers =
        DeviceFormat::fromText(isFloat ? "32/" + text.substr(floatingPoint.size()) : text);
    return numbers ? std::optional<MixFormat>(MixFormat{*numbers, isFloat}) : std::nullopt;
}

std::string MixFormat::pattern()
{
    std::string result = DeviceFormat::pattern(); // "^(8|16|24|32)/..."
    return result.replace(result.find("32)"), 2, "32|32f");
}

WAVEFORMATEXTENSIBLE MixFormat::waveFormat() const
{
    WAVEFORMATEXTENSIBLE format = numbers.waveFormat();
    if (isFloatingPoint)
        format.SubFormat = floatingPointSamples;
    return format;
}
}
