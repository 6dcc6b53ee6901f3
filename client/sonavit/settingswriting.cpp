#include "sonavit/jsontree.h"
#include "sonavit/settingsfile.h"
#include "sonavit/text.h"

#include <cmath>

namespace sonavit::settingsfile
{
namespace
{
/// An object on one line, member by member.
class Line
{
public:
    void add(const char* name, const std::string& json)
    {
        m_text += (m_text.empty() ? "\"" : ", \"") + std::string(name) + "\": " + json;
    }
    bool isEmpty() const noexcept { return m_text.empty(); }
    std::string text() const { return "{" + m_text + "}"; }

private:
    std::string m_text;
};

std::string jsonOf(const std::optional<Decibels>& level)
{
    return level && std::isfinite(level->value()) ? text::shortest(level->value()) : "null";
}

void addMute(Line& line, const std::optional<bool>& isMuted)
{
    if (isMuted)
        line.add("muted", *isMuted ? "true" : "false");
}

void addChannels(Line& line, const std::vector<std::optional<Decibels>>& channels)
{
    if (channels.empty())
        return;
    std::string list;
    for (const std::optional<Decibels>& channel : channels)
        list += (list.empty() ? "" : ", ") + jsonOf(channel);
    line.add("channels", "[" + list + "]");
}

std::string lineOf(const Settings::ControlSetting& control)
{
    Line line;
    line.add("name", json::quoted(control.name));
    addMute(line, control.isMuted);
    addChannels(line, control.channels);
    line.add("id", json::quoted(control.id));
    return line.text();
}

std::string lineOf(const Settings::SelectorSetting& selector)
{
    Line line;
    line.add("name", json::quoted(selector.name));
    if (!selector.inputName.empty())
        line.add("inputName", json::quoted(selector.inputName));
    if (selector.input)
        line.add("input", std::to_string(*selector.input));
    line.add("id", json::quoted(selector.id));
    return line.text();
}

/// A list with an item on each line; nothing if it is empty.
template<class Setting>
std::string linesOf(const char* name, const std::vector<Setting>& settings)
{
    std::string lines;
    for (const Setting& setting : settings)
        lines += (lines.empty() ? "\n        " : ",\n        ") + lineOf(setting);
    return lines.empty() ? lines : ",\n      \"" + std::string(name) + "\": [" + lines + "\n      ]";
}

std::string textOf(const Settings::EndpointSetting& endpoint)
{
    std::string text = "    {\n      \"name\": " + json::quoted(endpoint.name);
    if (endpoint.flow)
        text += ",\n      \"flow\": " + json::quoted(keyOf(*endpoint.flow));
    Line volume;
    addMute(volume, endpoint.isMuted);
    if (endpoint.master)
        volume.add("master", jsonOf(endpoint.master));
    addChannels(volume, endpoint.channels);
    if (!volume.isEmpty())
        text += ",\n      \"volume\": " + volume.text();
    return text + linesOf("controls", endpoint.controls) + linesOf("selectors", endpoint.selectors) +
           ",\n      \"reference\": " + json::quoted(endpoint.reference) + "\n    }";
}
}

std::string write(const Settings& settings)
{
    std::string endpoints;
    for (const Settings::EndpointSetting& endpoint : settings.endpoints)
        endpoints += (endpoints.empty() ? "\n" : ",\n") + textOf(endpoint);
    if (!endpoints.empty())
        endpoints += "\n  ";
    return "{\n  \"settingsVersion\": " + std::to_string(version) + ",\n  \"comment\": " + json::quoted(comment) +
           ",\n  \"unit\": \"" + unit + "\",\n  \"endpoints\": [" + endpoints + "]\n}\n";
}
}
