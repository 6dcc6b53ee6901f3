#include "tests/faults/program/verbs.h"

#include "tests/faults/client/stage.h"

#include <map>
#include <utility>

namespace faults::program
{
Names namesOn(const sim::Machine& machine)
{
    const client::Targets targets = client::targetsOf(machine);
    Names names;
    names.endpoint = targets.output.text();
    names.instanceId = targets.instanceId;
    names.controlled = targets.controlled.text();
    names.control = targets.control ? targets.control->id.text() : "";
    names.mutable_ = targets.mutable_.text();
    names.mute = targets.mute ? targets.mute->id.text() : "";
    names.selector = targets.selector ? targets.selector->id.text() : "";
    names.input = targets.input;
    names.formatted = targets.formatted.text();
    names.reference = targets.reference ? targets.reference->text() : "";
    names.settings = targets.settings.endpoints.empty() ? "" : targets.settings.text();
    return names;
}

std::optional<std::vector<std::string>> CommandLine::on(const Names& names) const
{
    const std::map<std::string, std::string> values = {
        {"ENDPOINT", names.endpoint},     {"INSTANCE-ID", names.instanceId},
        {"CONTROLLED", names.controlled}, {"CONTROL", names.control},
        {"MUTABLE", names.mutable_},      {"MUTE", names.mute},
        {"SELECTOR", names.selector},     {"INPUT", names.input},
        {"FORMATTED", names.formatted},   {"REFERENCE", names.reference},
    };
    std::vector<std::string> result = words;
    for (std::string& word : result)
    {
        const auto found = values.find(word);
        if (found == values.end())
            continue;
        if (found->second.empty())
            return std::nullopt;
        word = found->second;
    }
    if (words.front() == "restore" && names.settings.empty())
        return std::nullopt;
    return result;
}

namespace
{
std::vector<CommandLine> readingLines()
{
    return {{"", {"list"}, false, false, false, true},
            {"", {"list", "--short", "--active"}},
            {"", {"show", "ENDPOINT"}, false, false, false, true},
            {"", {"explain", "ENDPOINT"}},
            {"", {"controls", "CONTROLLED"}, false, false, false, true},
            {"", {"selectors"}, false, false, false, true},
            {"", {"graph"}, false, false, false, true},
            {"", {"graph", "--endpoint", "ENDPOINT", "--only"}, false, false, false, true},
            {"", {"get-volume", "ENDPOINT"}},
            {"", {"get-volume", "@DEFAULT_OUTPUT@"}},
            {"", {"format", "FORMATTED"}},
            {"", {"find", "ENDPOINT"}},
            {"", {"refer", "ENDPOINT"}},
            {"", {"resolve", "REFERENCE"}},
            {"", {"save"}},
            {"", {"capture"}},
            {"", {"capture", "--anonymous"}},
            {"", {"doctor"}},
            {"", {"doctor", "ENDPOINT"}}};
}

std::vector<CommandLine> modelLines()
{
    return {{"", {"ask", "INSTANCE-ID"}, false, false, true},
            {"", {"list", "--via", "model"}, false, false, true},
            {"", {"show", "ENDPOINT", "--via", "model"}, false, false, true},
            {"", {"controls", "CONTROLLED", "--via", "model"}, false, false, true},
            {"", {"selectors", "--via", "model"}, false, false, true},
            {"", {"graph", "--via", "model"}, false, false, true},
            {"", {"get-volume", "ENDPOINT", "--via", "model"}, false, false, true}};
}

std::vector<CommandLine> changingLines()
{
    return {{"", {"set-volume", "ENDPOINT", "37%"}, false, true},
            {"", {"set-volume", "ENDPOINT", "3dB-", "--channel", "1"}, false, true},
            {"", {"mute", "ENDPOINT", "toggle"}, false, true},
            {"", {"mute", "ENDPOINT", "on"}, false, true},
            {"", {"set-control", "CONTROLLED", "CONTROL", "-6dB"}, false, true},
            {"", {"set-control", "MUTABLE", "MUTE", "on"}, false, true},
            {"", {"select", "SELECTOR", "INPUT"}, false, true},
            {"", {"format", "FORMATTED", "--set", "16/44100/2", "--hold", "1"}, false, true},
            {"", {"restore"}, false, true},
            {"", {"monitor"}, false, true},
            {"", {"monitor", "--only", "hardware,volume"}, false, true}};
}

std::string nameOf(const std::vector<std::string>& words)
{
    std::string name;
    for (const std::string& word : words)
        name += (name.empty() ? "" : " ") + word;
    return name;
}
}

std::vector<CommandLine> commandLines()
{
    std::vector<CommandLine> all;
    for (const std::vector<CommandLine>& group : {readingLines(), modelLines(), changingLines()})
    {
        for (CommandLine line : group)
        {
            for (const bool isJson : {false, true})
            {
                if (isJson)
                    line.words.emplace_back("--json");
                line.isJson = isJson;
                line.name = nameOf(line.words);
                all.push_back(line);
            }
        }
    }
    return all;
}
}
