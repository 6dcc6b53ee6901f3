#include "tools/sonavit/commandline.h"

#include "simulator/machine/namedvalues.h"
#include "tools/sonavit/commandlineparser.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace sonavit::program
{
namespace
{
constexpr double longestSeconds = 1e6;

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

constexpr std::array<MuteWord, 7> muteWords = {{{"on", MuteChange::on},
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

/// Decimal digits with at most one point, and nothing else.
std::chrono::milliseconds milliseconds(const std::string& word, const std::string& option)
{
    const bool isNumber = std::count(word.begin(), word.end(), '.') <= 1 &&
                          word.find_first_of("0123456789") != std::string::npos &&
                          word.find_first_not_of("0123456789.") == std::string::npos;
    const double seconds = isNumber ? std::strtod(word.c_str(), nullptr) : -1.0;
    if (!(seconds >= 0.0 && seconds <= longestSeconds))
        throw UsageError(option + " takes a number of seconds from 0 to 1000000, not " + inQuotes(word));
    return std::chrono::milliseconds(std::llround(seconds * 1000.0));
}

/// The word, or an empty one if the user wrote none. An empty word that the user wrote names nothing.
std::string notEmpty(const std::optional<std::string>& word, const std::string& what)
{
    if (word && word->empty())
        throw UsageError("the " + what + " is empty");
    return word.value_or("");
}

Arguments argumentsOf(const CommandWords& words)
{
    Arguments result;
    result.verb = words.verb;
    result.machine = words.machine;
    if (words.account)
        result.account = named(sim::accountNames, *words.account, "an account: administrator or ordinary").value;
    if (words.latency)
        result.latency = named(sim::latencyPresetNames, *words.latency, "a latency: none or windows").value;
    result.isJson = words.isJson;
    if (words.log)
        result.log = named(logLevels, *words.log, "a log level: debug, info, warning, error, fatal or off").priority;
    result.endpoint = notEmpty(words.endpoint, "name of the endpoint");
    result.card = notEmpty(words.card, "name of the card");
    result.instanceId = notEmpty(words.instanceId, "instance id");
    result.outputFile = notEmpty(words.outputFile, "name of the file");
    if (words.level)
        result.level = readLevelChange(*words.level);
    if (words.mute)
        result.mute = named(muteWords, *words.mute, "a mute state: on, off or toggle").change;
    if (words.duration)
        result.duration = milliseconds(*words.duration, "--for");
    if (words.format)
        result.format = readFormatRequest(*words.format);
    if (words.hold && !words.format)
        throw UsageError("--hold needs --set");
    if (words.hold)
        result.hold = milliseconds(*words.hold, "--hold");
    return result;
}
}

CommandLine readCommandLine(const std::vector<std::string>& words)
{
    CommandLineParser parser;
    const CommandWords read = parser.read(words);
    if (!read.answer.empty())
        return {{}, read.answer};
    return {argumentsOf(read), {}};
}

bool asksForJson(const std::vector<std::string>& words)
{
    return std::find(words.begin(), words.end(), "--json") != words.end();
}
}
