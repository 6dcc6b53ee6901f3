#include "tools/sonavit/commandline.h"

#include "tools/sonavit/commandlineparser.h"
#include "tools/sonavit/commandlinevalues.h"
#include "tools/sonavit/failure.h"

#include <algorithm>

namespace sonavit::program
{
namespace
{
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
        result.account = readAccount(*words.account);
    if (words.latency)
        result.latency = readLatency(*words.latency);
    result.isJson = words.isJson;
    if (words.log)
        result.log = readLogLevel(*words.log);
    result.endpoint = notEmpty(words.endpoint, "name of the endpoint");
    result.card = notEmpty(words.card, "name of the card");
    result.instanceId = notEmpty(words.instanceId, "instance id");
    result.outputFile = notEmpty(words.outputFile, "name of the file");
    if (words.level)
        result.level = readLevelChange(*words.level);
    if (words.mute)
        result.mute = readMuteChange(*words.mute);
    if (words.duration)
        result.duration = readSeconds(*words.duration, "--for");
    if (words.format)
        result.format = readFormatRequest(*words.format);
    if (words.hold && !words.format)
        throw UsageError("--hold needs --set");
    if (words.hold)
        result.hold = readSeconds(*words.hold, "--hold");
    return result;
}
}

CommandLine readCommandLine(const std::vector<std::string>& words)
{
    const CommandWords read = parseCommandLine(words);
    if (!read.answer.empty())
        return {{}, read.answer};
    return {argumentsOf(read), {}};
}

bool asksForJson(const std::vector<std::string>& words)
{
    return std::find(words.begin(), words.end(), "--json") != words.end();
}
}
