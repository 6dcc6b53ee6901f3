#include "tools/sonavit/commandlinevalues.h"

#include "simulator/machine/namedvalues.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

namespace sonavit::program
{
namespace
{
constexpr double longestSeconds = 1e6;
constexpr double wholeVolume = 100.0;
constexpr const char* volumeForms = "write 50%, -12.5dB, 5%+ or 5%-";
constexpr std::uint32_t bitsOfAByte = 8;
constexpr std::uint32_t mostBits = 32;
constexpr std::uint32_t lowestRate = 1000;
constexpr std::uint32_t highestRate = 768000;
constexpr std::uint32_t mostChannels = 8; // for which there are usual speakers

struct LogLevel
{
    const char* name;
    std::optional<qor::LOGGER_PRIORITY> priority;
};

const std::array<LogLevel, 6> logLevels = {{{"debug", qor::LoggerPriority::LOG_DEBUG},
                                            {"info", qor::LoggerPriority::LOG_INFO},
                                            {"warning", qor::LoggerPriority::LOG_WARNING},
                                            {"error", qor::LoggerPriority::LOG_ERROR},
                                            {"fatal", qor::LoggerPriority::LOG_FATAL},
                                            {"off", std::nullopt}}};

struct MuteWord
{
    const char* name;
    MuteChange change;
};

struct ViaWord
{
    const char* name;
    Via via;
};

constexpr std::array<ViaWord, 2> vias = {{{"layer", Via::layer}, {"model", Via::model}}};

struct EventKindWord
{
    const char* name;
    EventKind kind;
};

constexpr std::array<EventKindWord, 10> eventKinds = {{{"added", EventKind::added},
                                                       {"removed", EventKind::removed},
                                                       {"state", EventKind::state},
                                                       {"volume", EventKind::volume},
                                                       {"default", EventKind::defaults},
                                                       {"name", EventKind::name},
                                                       {"format", EventKind::format},
                                                       {"hardware", EventKind::hardware},
                                                       {"service", EventKind::service},
                                                       {"other", EventKind::other}}};

constexpr std::array<MuteWord, 7> muteChanges = {{{"on", MuteChange::on},
                                                  {"off", MuteChange::off},
                                                  {"toggle", MuteChange::toggle},
                                                  {"yes", MuteChange::on},
                                                  {"no", MuteChange::off},
                                                  {"1", MuteChange::on},
                                                  {"0", MuteChange::off}}};

/// The entry of @p table that @p word names. Throws UsageError, which ends in @p expected.
template<class Table>
const auto& named(const Table& table, const std::string& word, const char* expected)
{
    const auto found =
        std::find_if(table.begin(), table.end(), [&](const auto& entry) { return equalNoCase(entry.name, word); });
    if (found == table.end())
        throw UsageError(inQuotes(word) + " is not " + expected);
    return *found;
}

/// Whether @p text is a decimal number: digits and at most one point, without a sign or an exponent.
bool isNumber(const std::string& text)
{
    const std::size_t points = static_cast<std::size_t>(std::count(text.begin(), text.end(), '.'));
    return text.size() > points && points <= 1 && text.find_first_not_of("0123456789.") == std::string::npos;
}

std::optional<std::uint32_t> wholeNumber(const std::string& text)
{
    constexpr std::size_t mostDigits = 7;
    const bool isWhole =
        !text.empty() && text.size() <= mostDigits && text.find_first_not_of("0123456789") == std::string::npos;
    if (!isWhole)
        return std::nullopt;
    return static_cast<std::uint32_t>(std::strtoul(text.c_str(), nullptr, 10));
}

/// The numbers between slashes; none if there is anything else.
std::vector<std::uint32_t> wholeNumbers(const std::string& text)
{
    std::vector<std::uint32_t> result;
    std::size_t start = 0;
    while (start <= text.size())
    {
        const std::size_t end = std::min(text.find('/', start), text.size());
        const std::optional<std::uint32_t> value = wholeNumber(text.substr(start, end - start));
        if (!value)
            return {};
        result.push_back(*value);
        start = end + 1;
    }
    return result;
}

/// Whether @p first and @p second are a rate and bits, in this order. A number that is too small for the bits or too
/// large for them is not taken for the other of the two.
bool isRateBeforeBits(std::uint32_t first, std::uint32_t second)
{
    constexpr std::uint32_t largestMistake = 64; // "64/48000/2" means 64 bits
    return first > largestMistake && second <= largestMistake;
}

[[noreturn]] void refuseVolume(const std::string& text, const std::string& reason)
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

/// @param forms what the user may write, for the sentence that refuses @p text
LevelChange levelChange(const std::string& text, const std::string& forms)
{
    constexpr std::size_t mostCharacters = 12;
    std::string rest = text;
    const int signAtEnd = takeSign(rest, false);
    const bool isPercent = takeEnd(rest, "%");
    const bool isDecibels = !isPercent && takeEnd(rest, "dB");
    const int signAtFront = takeSign(rest, true);
    if (!isNumber(rest) || rest.size() > mostCharacters || (signAtEnd != 0 && signAtFront != 0))
        refuseVolume(text, forms);
    if (signAtFront != 0 && !isPercent && !isDecibels)
        refuseVolume(text, "add the unit, as in " + text + "dB or " + text + "%");

    const double amount = std::strtod(rest.c_str(), nullptr);
    const int sign = signAtEnd + signAtFront; // one of them is 0
    const bool isStep = signAtEnd != 0 || (signAtFront != 0 && isPercent);
    if (!isDecibels && amount > wholeVolume)
        refuseVolume(text, "percentages range from 0 to 100");
    if (isDecibels && isStep)
        return sign < 0 ? LevelChange::down(Decibels(amount)) : LevelChange::up(Decibels(amount));
    if (isDecibels)
        return Decibels(sign < 0 ? -amount : amount);
    if (isStep)
        return sign < 0 ? LevelChange::down(Percent(amount)) : LevelChange::up(Percent(amount));
    return Percent(amount);
}
}

sim::Account readAccount(const std::string& word)
{
    return named(sim::accountNames, word, "an account: administrator or ordinary").value;
}

sim::LatencyPreset readLatency(const std::string& word)
{
    return named(sim::latencyPresetNames, word, "a latency: none or windows").value;
}

Via readVia(const std::string& word)
{
    return named(vias, word, "a way to read: layer or model").via;
}

std::set<EventKind> readEventKinds(const std::string& word)
{
    std::set<EventKind> kinds;
    std::size_t start = 0;
    while (start <= word.size())
    {
        const std::size_t end = std::min(word.find(',', start), word.size());
        kinds.insert(named(eventKinds, word.substr(start, end - start),
                           "a kind of event: added, removed, state, volume, default, name, format, hardware, service "
                           "or other")
                         .kind);
        start = end + 1;
    }
    return kinds;
}

unsigned readChannel(const std::string& word)
{
    const std::optional<std::uint32_t> number = wholeNumber(word);
    if (!number || *number == 0)
        throw UsageError("--channel takes the number of a channel from 1 on, not " + inQuotes(word));
    return *number - 1;
}

std::optional<qor::LOGGER_PRIORITY> readLogLevel(const std::string& word)
{
    return named(logLevels, word, "a log level: debug, info, warning, error, fatal or off").priority;
}

MuteChange readMuteChange(const std::string& word)
{
    return named(muteChanges, word, "a mute state: on, off or toggle").change;
}

std::chrono::milliseconds readSeconds(const std::string& word, const std::string& option)
{
    const double seconds = isNumber(word) ? std::strtod(word.c_str(), nullptr) : -1.0;
    if (!(seconds >= 0.0 && seconds <= longestSeconds))
        throw UsageError(option + " takes a number of seconds from 0 to 1000000, not " + inQuotes(word));
    return std::chrono::milliseconds(std::llround(seconds * 1000.0));
}

sim::DeviceFormat readFormatRequest(const std::string& text)
{
    const auto refuse = [&](const char* reason)
    { throw UsageError(inQuotes(text) + " is not a device format: " + reason); };
    std::vector<std::uint32_t> parts = wholeNumbers(text);
    if (parts.size() != 3)
        refuse("write bits/rate/channels, such as 16/44100/2");
    if (isRateBeforeBits(parts[0], parts[1]))
        std::swap(parts[0], parts[1]);
    const sim::DeviceFormat request{parts[0], parts[1], parts[2]};
    if (request.bits % bitsOfAByte != 0 || request.bits == 0 || request.bits > mostBits)
        refuse("a sample has 8, 16, 24 or 32 bits");
    if (request.rate < lowestRate || request.rate > highestRate)
        refuse("the rate ranges from 1000 to 768000 Hz");
    if (request.channels == 0 || request.channels > mostChannels)
        refuse("the number of channels ranges from 1 to 8");
    return request;
}

LevelChange readLevelChange(const std::string& text)
{
    return levelChange(text, volumeForms);
}

std::variant<LevelChange, MuteChange> readControlChange(const std::string& text)
{
    const auto* const mute = std::find_if(muteChanges.begin(), muteChanges.end(),
                                          [&](const MuteWord& word) { return equalNoCase(word.name, text); });
    const bool isNumber = text == "0" || text == "1"; // a level
    if (mute != muteChanges.end() && !isNumber && mute->change != MuteChange::toggle)
        return mute->change;
    return levelChange(text, std::string(volumeForms) + ", or on or off");
}
}
