#include "sonavit/jsontree.h"
#include "sonavit/settingsfile.h"
#include "sonavit/text.h"

#include <cmath>
#include <initializer_list>
#include <limits>
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

const Value& require(const Value& value, Kind kind, const char* name)
{
    if (value.kind != kind)
        throw Unfit(value,
                    text::quoted(name) + " is " + json::wordsOf(value.kind) + ", expected " + json::wordsOf(kind));
    return value;
}

/// The member of that kind; null if there is none.
const Value* memberOf(const Value& object, Kind kind, const char* name)
{
    const Value* const member = object.member(name);
    if (member != nullptr)
        require(*member, kind, name);
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
            channels.emplace_back(Decibels(require(channel, Kind::number, "channels").number));
    return channels;
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
            result.push_back(read(require(item, Kind::object, name)));
    return result;
}

Settings::EndpointSetting endpointOf(const Value& object)
{
    Settings::EndpointSetting endpoint;
    endpoint.name = stringOf(object, "name");
    endpoint.reference = stringOf(object, "reference");
    requireAny(object, {"reference"}, "an endpoint without \"reference\"");
    if (const Value* const volume = memberOf(object, Kind::object, "volume"))
    {
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
