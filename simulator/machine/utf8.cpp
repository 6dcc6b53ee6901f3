#include "simulator/machine/utf8.h"

namespace sim
{
namespace
{
/// How many bytes follow the leading byte @p lead; -1 if no character begins with it.
int followers(unsigned char lead)
{
    if (lead < 0x80)
        return 0;
    if (lead >= 0xC2 && lead <= 0xDF)
        return 1;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 2;
    return lead >= 0xF0 && lead <= 0xF4 ? 3 : -1;
}
}

Utf8Character characterAt(std::string_view text, std::size_t position)
{
    const auto byteAt = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const Utf8Character broken = {byteAt(position), 1, true};
    const int count = followers(byteAt(position));
    if (count < 0 || static_cast<std::size_t>(count) >= text.size() - position)
        return broken;

    static constexpr std::uint32_t leadMasks[] = {0x7F, 0x1F, 0x0F, 0x07};
    static constexpr std::uint32_t smallest[] = {0, 0x80, 0x800, 0x10000};
    std::uint32_t code = byteAt(position) & leadMasks[count];
    for (std::size_t index = position + 1; index <= position + static_cast<std::size_t>(count); ++index)
    {
        if ((byteAt(index) & 0xC0) != 0x80)
            return broken;
        code = (code << 6) | (byteAt(index) & 0x3Fu);
    }
    if (code < smallest[count] || code > 0x10FFFF)
        return broken;
    return {code, static_cast<std::size_t>(count) + 1, false};
}
}
