#include "tests/faults/program/documents.h"

#include <set>
#include <sstream>

using nlohmann::json;

namespace faults::program
{
using client::Facts;

std::vector<json> documentsIn(const std::string& text, bool isOneEachLine)
{
    if (!isOneEachLine)
        return {json::parse(text)};
    std::vector<json> all;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        all.push_back(json::parse(line));
    return all;
}

namespace
{
/// What is composed of other values, or found in another way if the first one fails.
bool isDerived(const std::string& key)
{
    static const std::set<std::string> all = {
        "name",      "title",  "card",      "cards",      "jack",      "jackType",  "jackKind",  "jacks",
        "parent",    "bus",    "container", "instanceId", "ownerName", "ownerJack", "ownerType", "connector",
        "reference", "reason", "evidence",  "conclusion", "facts",     "kind",      "edges",     "parts",
        "devices",   "result", "hasMute",   "waveId",     "selected",  "deviceName"};
    return all.count(key) != 0;
}

std::string idOf(const json& value)
{
    for (const char* const key : {"id", "question", "number"})
    {
        if (!value.is_object() || !value.contains(key))
            continue;
        return value[key].is_string() ? value[key].get<std::string>() : value[key].dump();
    }
    return {};
}

/// Collects the pieces below a value.
class Collector
{
public:
    Facts facts;

    void add(const std::string& path, const json& value, bool isLoose)
    {
        if (value.is_object())
        {
            for (const auto& [key, member] : value.items())
            {
                if (key != "problems")
                    add(path + "/" + key, member, isLoose || isDerived(key));
            }
        }
        else if (value.is_array())
            addList(path, value, isLoose);
        else if (value.is_null())
            facts.add(path, std::optional<std::string>());
        else if (isLoose)
            facts.addDerived(path, value.dump());
        else
            facts.add(path, value.dump());
    }

private:
    void addList(const std::string& path, const json& list, bool isLoose)
    {
        std::size_t index = 0;
        for (const json& value : list)
        {
            const std::string id = value.is_string() ? value.get<std::string>() : idOf(value);
            add(path + "/" + (id.empty() ? std::to_string(index) : id), value, isLoose);
            ++index;
        }
    }
};

/// Endpoints go by their ids wherever they are: a card may have another id, or be one of its own.
void addEndpoints(Collector& collector, const json& cards)
{
    for (const json& card : cards)
    {
        for (const json& endpoint : card.value("endpoints", json::array()))
            collector.add("endpoint/" + idOf(endpoint), endpoint, false);
        json own = card;
        own.erase("endpoints");
        collector.add("card/" + idOf(card), own, true);
    }
}
}

Facts factsOf(const json& document)
{
    Collector collector;
    json rest = document;
    if (document.contains("cards"))
    {
        addEndpoints(collector, document["cards"]);
        rest.erase("cards");
    }
    collector.add("", rest, false);
    return collector.facts;
}

bool namesCode(const json& document, const std::string& operation, const std::string& code)
{
    if (document.is_object() && document.contains("code") && document["code"] == code)
    {
        for (const char* const key : {"operation", "call"})
        {
            if (document.contains(key) && document[key].is_string() &&
                document[key].get<std::string>().rfind(operation, 0) == 0)
                return true;
        }
    }
    if (!document.is_structured())
        return false;
    for (const json& member : document)
    {
        if (namesCode(member, operation, code))
            return true;
    }
    return false;
}
}
