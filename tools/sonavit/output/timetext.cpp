#include "tools/sonavit/output/timetext.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace sonavit::program
{
namespace
{
std::string clockText(const std::tm& whole, std::chrono::system_clock::time_point time)
{
    const auto since = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%02d:%02d:%02d.%03d", whole.tm_hour, whole.tm_min, whole.tm_sec,
                  static_cast<int>(since % 1000));
    return text.data();
}
}

std::string localTimeText(std::chrono::system_clock::time_point time)
{
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    return clockText(*std::localtime(&seconds), time);
}

std::string universalTimeText(std::chrono::system_clock::time_point time)
{
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    const std::tm whole = *std::gmtime(&seconds);
    std::array<char, 64> date{};
    std::snprintf(date.data(), date.size(), "%04d-%02d-%02dT", whole.tm_year + 1900, whole.tm_mon + 1, whole.tm_mday);
    return date.data() + clockText(whole, time) + "Z";
}
}
