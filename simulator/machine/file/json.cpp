#include "simulator/machine/file/json.h"

#include <algorithm>
#include <utility>

namespace sim
{
namespace
{
/// Appends the steps from @p value to @p part; returns whether there are any.
bool appendSteps(const JsonValue& value, const JsonValue& part, std::string& pointer)
{
    if (&value == &part)
        return true;
    const std::size_t length = pointer.size();
    for (std::size_t index = 0; index < value.elements.size(); ++index)
    {
        pointer += value.stepTo(index);
        if (appendSteps(value.elements[index], part, pointer))
            return true;
        pointer.resize(length);
    }
    return false;
}
}

JsonValue JsonValue::ofBoolean(bool value)
{
    JsonValue result;
    result.kind = Kind::boolean;
    result.boolean = value;
    return result;
}

JsonValue JsonValue::ofNumber(std::string written)
{
    JsonValue result;
    result.kind = Kind::number;
    result.text = std::move(written);
    return result;
}

JsonValue JsonValue::ofString(std::string value)
{
    JsonValue result;
    result.kind = Kind::string;
    result.text = std::move(value);
    return result;
}

JsonValue JsonValue::array(std::vector<JsonValue> elements)
{
    JsonValue result;
    result.kind = Kind::array;
    result.elements = std::move(elements);
    return result;
}

JsonValue JsonValue::object()
{
    JsonValue result;
    result.kind = Kind::object;
    return result;
}

JsonValue& JsonValue::add(std::string key, JsonValue value)
{
    keys.push_back(std::move(key));
    elements.push_back(std::move(value));
    return *this;
}

const JsonValue* JsonValue::member(std::string_view key) const
{
    const auto found = std::find(keys.begin(), keys.end(), key);
    return found == keys.end() ? nullptr : &elements[static_cast<std::size_t>(found - keys.begin())];
}

const JsonValue& JsonValue::nearest(const std::string& pointer) const
{
    for (std::size_t index = 0; index < elements.size(); ++index)
    {
        const std::string step = stepTo(index);
        const bool isPrefix = pointer.compare(0, step.size(), step) == 0;
        if (isPrefix && (pointer.size() == step.size() || pointer[step.size()] == '/'))
            return elements[index].nearest(pointer.substr(step.size()));
    }
    return *this;
}

std::string JsonValue::pointerTo(const JsonValue& part) const
{
    std::string pointer;
    appendSteps(*this, part, pointer);
    return pointer;
}

std::string JsonValue::stepTo(std::size_t index) const
{
    return kind == Kind::object ? pointerStep(keys[index]) : "/" + std::to_string(index);
}

std::string pointerStep(const std::string& key)
{
    std::string step = "/";
    for (const char character : key)
    {
        if (character == '~')
            step += "~0";
        else if (character == '/')
            step += "~1";
        else
            step += character;
    }
    return step;
}
}
