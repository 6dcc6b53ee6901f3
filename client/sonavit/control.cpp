#include "sonavit/control.h"

#include "sonavit/text.h"

#include <ostream>

namespace sonavit
{
inline namespace v1
{
namespace
{
std::string textOf(const std::optional<std::string>& name)
{
    return text::printable(name.value_or(""));
}

/// The words of a kind that has some.
std::string kindText(const std::optional<Guid>& type)
{
    const NodeKind kind = type ? kindOf(*type) : NodeKind::other;
    return kind == NodeKind::other ? std::string() : wordsOf(kind);
}

std::string firstOf(const std::string& one, const std::string& other)
{
    return one.empty() ? other : one;
}
}

std::string Control::title() const
{
    const std::string owner = firstOf(textOf(ownerName), kindText(ownerType));
    const std::string node = textOf(name);
    if (owner.empty())
        return firstOf(node, "Volume");
    const bool saysNothing = node.empty() || text::equalNoCase(node, "volume") || text::equalNoCase(node, owner);
    return saysNothing ? owner : owner + ": " + node;
}

std::string SelectorInput::title() const
{
    const std::string known = firstOf(firstOf(textOf(connectorName), textOf(name)), kindText(connectorType));
    if (!known.empty())
        return known;
    return number ? "Input " + std::to_string(*number) : "Input";
}

const SelectorInput* Selector::selected() const noexcept
{
    for (const SelectorInput& input : inputs)
    {
        if (selection && input.number == selection)
            return &input;
    }
    return nullptr;
}

std::string Selector::title() const
{
    return firstOf(textOf(name), "Selector");
}

bool operator==(const ControlChannel& left, const ControlChannel& right) noexcept
{
    return left.level == right.level && left.range == right.range;
}

bool operator==(const Control& left, const Control& right)
{
    return left.id == right.id && left.name == right.name && left.ownerName == right.ownerName &&
           left.ownerType == right.ownerType && left.channels == right.channels && left.hasMute == right.hasMute &&
           left.isMuted == right.isMuted && left.problems == right.problems;
}

bool operator==(const SelectorInput& left, const SelectorInput& right)
{
    return left.number == right.number && left.name == right.name && left.connectorName == right.connectorName &&
           left.connectorType == right.connectorType;
}

bool operator==(const Selector& left, const Selector& right)
{
    return left.id == right.id && left.name == right.name && left.deviceId == right.deviceId &&
           left.deviceName == right.deviceName && left.inputs == right.inputs && left.selection == right.selection &&
           left.problems == right.problems;
}

std::ostream& operator<<(std::ostream& out, const ControlChannel& channel)
{
    out << channel.level;
    return channel.range ? out << " of " << *channel.range : out;
}

std::ostream& operator<<(std::ostream& out, const Control& control)
{
    text::Fields(out, "Control")
        .add("id", control.id.text())
        .add("name", control.name)
        .add("ownerName", control.ownerName)
        .add("ownerType", control.ownerType)
        .add("channels", control.channels)
        .add("hasMute", control.hasMute)
        .add("isMuted", control.isMuted)
        .add("problems", control.problems);
    return out;
}

std::ostream& operator<<(std::ostream& out, const SelectorInput& input)
{
    text::Fields(out, "SelectorInput")
        .add("number", input.number)
        .add("name", input.name)
        .add("connectorName", input.connectorName)
        .add("connectorType", input.connectorType);
    return out;
}

std::ostream& operator<<(std::ostream& out, const Selector& selector)
{
    text::Fields(out, "Selector")
        .add("id", selector.id.text())
        .add("name", selector.name)
        .add("deviceId", selector.deviceId)
        .add("deviceName", selector.deviceName)
        .add("inputs", selector.inputs)
        .add("selection", selector.selection)
        .add("problems", selector.problems);
    return out;
}
}
}
