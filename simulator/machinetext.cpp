#include "simulator/machinetext.h"

#include <cstdio>
#include <cstdlib>

namespace sim
{
std::string decimal(float value)
{
    constexpr int alwaysEnough = 9;
    char text[32] = {};
    for (int digits = 1; digits <= alwaysEnough; ++digits)
    {
        std::snprintf(text, sizeof text, "%.*g", digits, static_cast<double>(value));
        if (std::strtof(text, nullptr) == value)
            break;
    }
    return text;
}

std::string quoted(const std::string& text)
{
    constexpr std::size_t longest = 100;
    if (text.size() <= longest)
        return "\"" + text + "\"";

    // A cut inside a character would not be UTF-8 any more.
    std::size_t end = longest;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return "\"" + text.substr(0, end) + "...\"";
}
}
