#include "sonavit/jsontree.h"
#include "sonavit/settingsfile.h"
#include "sonavit/text.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <utility>

namespace sonavit::settingsfile
{
namespace
{
using json::Kind;
using json::Value;

/// What makes a text none; its message begins with the line.
class Unfit : public std::runtime_error
{
public:
    Unfit(const Value& at, const std::string& reason)
        : std::runtime_error("line " + std::to_string(at.line) + ": " + reason)
    {
    }
};

/// @param what "muted", in quotation marks, or what it is of
const Value& require(const Value& value, Kind kind, const std::string& what)
{
    if (value.kind != kind)
        throw Unfit(value, what + " is " + json::wordsOf(value.kind) + ", expected " + json::wordsOf(kind));
    return value;
}

/// An item of the list of that name.
const Value& requireItem(const Value& item, Kind kind, const char* name)
{
    return require(item, kind, "an item of " + text::quoted(name));
}

/// The member of that kind; null if there is none.
const Value* memberOf(const Value& object, Kind kind, const char* name)
{
    const Value* const member = object.member(name);
    if (member != nullptr)
        require(*member, kind, text::quoted(name));
    return member;
}

std::string stringOf(const Value& object, const char* name)
{
    const Value* const member = memberOf(object, Kind::string, name);
    return member != nullptr ? member->string : std::string();
}

std::optional<bool> booleanOf(const Value& object, const char* name)
{
    const Value* const member = memberOf(object, Kind::boolean, name);
    return member != nullptr ? std::optional<bool>(member->boolean) : std::nullopt;
}

std::optional<Decibels> decibelsOf(const Value& object, const char* name)
{
    const Value* const member = memberOf(object, Kind::number, name);
    return member != nullptr ? std::optional<Decibels>(Decibels(member->number)) : std::nullopt;
}

std::optional<std::uint32_t> numberOf(const Value& object, const char* name)
{
    const Value* const member = memberOf(object, Kind::number, name);
    if (member == nullptr)
        return std::nullopt;
    constexpr double largest = std::numeric_limits<std::uint32_t>::max();
    if (!(member->number >= 0 && member->number <= largest) || std::trunc(member->number) != member->number)
        throw Unfit(*member, text::quoted(name) + " is " + text::shortest(member->number) +
                                 ", expected a whole number from 0 to 4294967295");
    return static_cast<std::uint32_t>(member->number);
}

std::vector<std::optional<Decibels>> channelsOf(const Value& object)
{
    std::vector<std::optional<Decibels>> channels;
    const Value* const list = memberOf(object, Kind::list, "channels");
    if (list == nullptr)
        return channels;
    for (const Value& channel : list->items)
        if (channel.kind == Kind::null)
            channels.emplace_back();
        else
            channels.emplace_back(Decibels(requireItem(channel, Kind::number, "channels").number));
    return channels;
}

/// In how many letters two words differ, if one may be replaced, left out or put in.
std::size_t distance(std::string_view left, std::string_view right)
{
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t(0));
    for (std::size_t i = 0; i < left.size(); ++i)
    {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < right.size(); ++j)
        {
            const std::size_t replaced = diagonal + (left[i] == right[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

/// Whether a person has meant @p known. In a short word, fewer letters may differ.
bool isMisspelt(const std::string& key, std::string_view known)
{
    constexpr std::size_t lettersForEach = 3;
    if (key.size() > 2 * known.size())
        return false;
    return distance(text::lowerCase(key), text::lowerCase(known)) * lettersForEach <= known.size();
}

/// Members that are not known are ignored, but the name of a known one that is misspelt is a mistake: what it sets
/// would be left as it is without a word.
void refuseMisspelt(const Value& object, std::initializer_list<const char*> known)
{
    for (std::size_t i = 0; i < object.keys.size(); ++i)
    {
        const std::string& key = object.keys[i];
        if (std::find(known.begin(), known.end(), key) != known.end())
            continue;
        for (const char* const name : known)
            if (isMisspelt(key, name))
                throw Unfit(object.items[i], text::quoted(key) + " is unknown, expected " + text::quoted(name));
    }
}

/// A setting without any of these could not be found; most likely the name of the member is misspelt.
void requireAny(const Value& object, std::initializer_list<const char*> names, const char* sentence)
{
    for (const char* const name : names)
        if (object.member(name) != nullptr)
            return;
    throw Unfit(object, sentence);
}

Settings::ControlSetting controlOf(const Value& object)
{
    refuseMisspelt(object, {"name", "id", "muted", "channels"});
    Settings::ControlSetting control;
    control.name = stringOf(object, "name");
    control.id = stringOf(object, "id");
    requireAny(object, {"name", "id"}, "a control without \"name\" and \"id\"");
    control.isMuted = booleanOf(object, "muted");
    control.channels = channelsOf(object);
    return control;
}

Settings::SelectorSetting selectorOf(const Value& object)
{
    refuseMisspelt(object, {"name", "id", "input", "inputName"});
    Settings::SelectorSetting selector;
    selector.name = stringOf(object, "name");
    selector.id = stringOf(object, "id");
    requireAny(object, {"name", "id"}, "a selector without \"name\" and \"id\"");
    selector.input = numberOf(object, "input");
    selector.inputName = stringOf(object, "inputName");
    return selector;
}

/// The objects of a list, each read by @p read.
template<class Read>
auto listOf(const Value& object, const char* name, Read read)
{
    std::vector<decltype(read(object))> result;
    if (const Value* const list = memberOf(object, Kind::list, name))
        for (const Value& item : list->items)
            result.push_back(read(requireItem(item, Kind::object, name)));
    return result;
}

std::optional<Flow> flowOf(const Value& object)
{
    const Value* const member = memberOf(object, Kind::string, "flow");
    if (member == nullptr)
        return std::nullopt;
    for (const Flow flow : {Flow::output, Flow::input})
        if (member->string == keyOf(flow))
            return flow;
    throw Unfit(*member, "\"flow\" is " + text::quoted(member->string) + ", expected \"render\" or \"capture\"");
}

std::string referenceOf(const Value& object)
{
    requireAny(object, {"reference"}, "an endpoint without \"reference\"");
    const Value& member = *memberOf(object, Kind::string, "reference");
    const Result<Reference> reference = Reference::parse(member.string);
    if (!reference)
        throw Unfit(member, "\"reference\" cannot be read: " + reference.problem().sentence());
    return member.string;
}

Settings::EndpointSetting endpointOf(const Value& object)
{
    refuseMisspelt(object, {"name", "flow", "volume", "controls", "selectors", "reference"});
    Settings::EndpointSetting endpoint;
    endpoint.name = stringOf(object, "name");
    endpoint.flow = flowOf(object);
    endpoint.reference = referenceOf(object);
    if (const Value* const volume = memberOf(object, Kind::object, "volume"))
    {
        refuseMisspelt(*volume, {"muted", "master", "channels"});
        endpoint.isMuted = booleanOf(*volume, "muted");
        endpoint.master = decibelsOf(*volume, "master");
        endpoint.channels = channelsOf(*volume);
    }
    endpoint.controls = listOf(object, "controls", controlOf);
    endpoint.selectors = listOf(object, "selectors", selectorOf);
    return endpoint;
}

Settings settingsOf(const Value& root)
{
    if (root.kind != Kind::object)
        throw Unfit(root, std::string("the settings are ") + json::wordsOf(root.kind) + ", expected an object");
    refuseMisspelt(root, {"settingsVersion", "comment", "unit", "endpoints"});
    const Value* const fileVersion = memberOf(root, Kind::number, "settingsVersion");
    if (fileVersion == nullptr)
        throw Unfit(root, "\"settingsVersion\" is missing: this is no file of settings");
    if (fileVersion->number != version)
        throw Unfit(*fileVersion, "\"settingsVersion\" is " + text::shortest(fileVersion->number) + ", expected 1");
    const Value* const fileUnit = memberOf(root, Kind::string, "unit");
    if (fileUnit != nullptr && fileUnit->string != unit)
        throw Unfit(*fileUnit, "\"unit\" is " + text::quoted(fileUnit->string) + ", expected \"dB\"");
    if (root.member("endpoints") == nullptr)
        throw Unfit(root, "\"endpoints\" is missing");
    Settings settings;
    settings.endpoints = listOf(root, "endpoints", endpointOf);
    return settings;
}
}

Result<Settings> read(std::string_view text)
{
    const std::string operation = "Settings::parse";
    const Result<Value> root = json::treeOf(text, {largestText, mostValues, deepestNesting}, operation);
    if (!root)
        return root.problem();
    try
    {
        return settingsOf(*root);
    }
    catch (const Unfit& unfit)
    {
        return Problem(Problem::Kind::unreadable, operation, std::string(), unfit.what());
    }
}
}
