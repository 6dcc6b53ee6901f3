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

/// The levels to set, on the channel that the user names.
void readLevels(const CommandWords& words, Arguments& result)
{
    std::optional<unsigned> channel;
    if (words.channel)
        channel = readChannel(*words.channel);
    const auto onChannel = [&](const LevelChange& change) { return channel ? change.onChannel(*channel) : change; };
    if (words.level)
        result.level = onChannel(readLevelChange(*words.level));
    if (!words.controlChange)
        return;
    result.controlChange = readControlChange(*words.controlChange);
    if (LevelChange* const change = std::get_if<LevelChange>(&result.controlChange))
        *change = onChannel(*change);
    else if (channel)
        throw UsageError("--channel does not go with on and off, which concern all channels");
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
    if (words.via)
        result.via = readVia(*words.via);
    result.isOnlyActive = words.isOnlyActive;
    result.isOnlyOutputs = words.isOnlyOutputs;
    result.isOnlyInputs = words.isOnlyInputs;
    result.isShort = words.isShort;
    result.isOnlyPath = words.isOnlyPath;
    result.isAnonymous = words.isAnonymous;
    if (result.isOnlyOutputs && result.isOnlyInputs)
        throw UsageError("--outputs and --inputs exclude each other");
    if (result.isOnlyPath && result.endpoint.empty())
        throw UsageError("--only needs --endpoint");
    result.control = notEmpty(words.control, "name of the control");
    result.selector = notEmpty(words.selector, "name of the selector");
    result.input = notEmpty(words.input, "name of the input");
    result.file = notEmpty(words.file, "name of the file");
    result.id = notEmpty(words.id, "id");
    result.reference = notEmpty(words.reference, "reference");
    for (const std::string& endpoint : words.endpoints)
        result.endpoints.push_back(notEmpty(endpoint, "name of the endpoint"));
    if (words.eventKinds)
        result.eventKinds = readEventKinds(*words.eventKinds);
    readLevels(words, result);
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
    {
        Arguments arguments;
        arguments.isJson = asksForJson(words);
        return {arguments, read.answer, read.isVersion};
    }
    return {argumentsOf(read), {}, false};
}

bool asksForJson(const std::vector<std::string>& words)
{
    try
    {
        const CommandWords read = parseCommandLine(words);
        if (read.answer.empty())
            return read.isJson; // "--machine --json" names a machine
    }
    catch (const UsageError&)
    {
        // What was meant is not known: the word is taken for the option.
    }
    return std::find(words.begin(), words.end(), "--json") != words.end();
}
}
