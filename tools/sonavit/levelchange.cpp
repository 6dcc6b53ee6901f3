#include "tools/sonavit/levelchange.h"

#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/text.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace sonavit::program
{
namespace
{
constexpr float wholeVolume = 100.0f;

[[noreturn]] void refuse(const std::string& text, const std::string& reason)
{
    throw UsageError(inQuotes(text) + " is not a volume: " + reason);
}

bool takeEnd(std::string& text, const std::string& end)
{
    if (text.size() < end.size() || !equalNoCase(text.substr(text.size() - end.size()), end))
        return false;
    text.resize(text.size() - end.size());
    return true;
}

/// Takes a sign off the front or the end of @p text. @return 1, -1, or 0 if there is no sign
int takeSign(std::string& text, bool isAtFront)
{
    const char sign = text.empty() ? '\0' : (isAtFront ? text.front() : text.back());
    if (sign != '+' && sign != '-')
        return 0;
    text.erase(isAtFront ? 0 : text.size() - 1, 1);
    return sign == '+' ? 1 : -1;
}

/// A decimal number of digits and at most one point, without a sign or an exponent.
bool isNumber(const std::string& text)
{
    const std::size_t points = static_cast<std::size_t>(std::count(text.begin(), text.end(), '.'));
    return text.size() > points && points <= 1 && text.size() <= 12 &&
           text.find_first_not_of("0123456789.") == std::string::npos;
}
}

bool LevelChange::canStartAt(const Level& level) const
{
    return !isStep || (unit == Unit::percent ? level.percent.has_value() : level.decibels.has_value());
}

bool LevelChange::apply(EndpointVolume& volume, const Level& level) const
{
    if (unit == Unit::decibels)
        return volume.setDecibels(isStep ? *level.decibels + amount : amount);
    const float percent = isStep ? static_cast<float>(*level.percent) + amount : amount;
    return volume.setPercent(std::clamp(percent, 0.0f, wholeVolume));
}

LevelChange readLevelChange(const std::string& text)
{
    constexpr const char* forms = "write 50%, -12.5dB, 5%+ or 5%-";
    std::string rest = text;
    const int signAtEnd = takeSign(rest, false);
    LevelChange change;
    const bool isPercent = takeEnd(rest, "%");
    const bool isDecibels = !isPercent && takeEnd(rest, "dB");
    const int signAtFront = takeSign(rest, true);
    if (!isNumber(rest) || (signAtEnd != 0 && signAtFront != 0))
        refuse(text, forms);
    if (signAtFront != 0 && !isPercent && !isDecibels)
        refuse(text, "add the unit, as in " + text + "dB or " + text + "%");

    const int sign = signAtEnd + signAtFront; // one of them is 0
    change.unit = isDecibels ? LevelChange::Unit::decibels : LevelChange::Unit::percent;
    change.isStep = signAtEnd != 0 || (signAtFront != 0 && isPercent);
    change.amount = std::strtof(rest.c_str(), nullptr) * (sign < 0 ? -1.0f : 1.0f);
    if (!isDecibels && std::fabs(change.amount) > wholeVolume)
        refuse(text, "percentages range from 0 to 100");
    return change;
}
}
