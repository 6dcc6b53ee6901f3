#include "simulator/machine/file/cursor.h"

#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/nodetypes.h"
#include "simulator/machine/printable.h"
#include "simulator/machine/valuetext.h"

#include <algorithm>
#include <charconv>

namespace sim
{
namespace
{
std::string keyList(const ObjectRule& rule)
{
    std::string result;
    for (const KeyRule* key : rule.keys)
        result += (result.empty() ? "" : ", ") + key->name;
    return result;
}

/// The position of the key @p name in @p rule; the number of keys if there is none. Begins at @p start and goes around:
/// nearly all files have their keys in the order of the rules.
std::size_t positionOf(const std::string& name, const ObjectRule& rule, std::size_t start)
{
    const std::size_t count = rule.keys.size();
    for (std::size_t index = start; index < count; ++index)
    {
        if (rule.keys[index]->name == name)
            return index;
    }
    for (std::size_t index = 0; index < start; ++index)
    {
        if (rule.keys[index]->name == name)
            return index;
    }
    return count;
}
}

JsonCursor::JsonCursor(const JsonValue& document, const std::string& file)
    : m_value(&document),
      m_document(&document),
      m_file(&file)
{
}

JsonCursor JsonCursor::at(const JsonValue& value) const
{
    JsonCursor result = *this;
    result.m_value = &value;
    return result;
}

void JsonCursor::requireKeys(const ObjectRule& rule) const
{
    static_cast<void>(members(rule));
}

JsonCursor::RuledMembers JsonCursor::members(const ObjectRule& rule) const
{
    if (!isObject())
        fail("an object");
    RuledMembers result = {};
    std::size_t next = 0;
    for (std::size_t index = 0; index < m_value->keys.size(); ++index)
    {
        const std::string& key = m_value->keys[index];
        const std::size_t position = positionOf(key, rule, next);
        if (position == rule.keys.size())
            at(m_value->elements[index]).fail("one of the keys " + keyList(rule), "the key " + inQuotes(key));
        result[position] = &m_value->elements[index];
        next = position + 1;
    }
    for (std::size_t position = 0; position < rule.keys.size(); ++position)
    {
        const KeyRule& key = *rule.keys[position];
        if (key.isRequired && result[position] == nullptr)
            fail("the key " + inQuotes(key.name), "an object without it");
    }
    return result;
}

std::optional<JsonCursor> JsonCursor::find(std::string_view key) const
{
    const JsonValue* member = m_value->member(key);
    return member == nullptr ? std::nullopt : std::make_optional(at(*member));
}

std::vector<JsonCursor::Member> JsonCursor::members() const
{
    if (!isObject())
        fail("an object");
    std::vector<Member> result;
    result.reserve(m_value->keys.size());
    for (std::size_t index = 0; index < m_value->keys.size(); ++index)
        result.push_back({m_value->keys[index], at(m_value->elements[index])});
    return result;
}

std::vector<JsonCursor> JsonCursor::elements() const
{
    if (m_value->kind != JsonValue::Kind::array)
        fail("a list");
    std::vector<JsonCursor> result;
    result.reserve(m_value->elements.size());
    for (const JsonValue& element : m_value->elements)
        result.push_back(at(element));
    return result;
}

bool JsonCursor::isObject() const
{
    return m_value->kind == JsonValue::Kind::object;
}

bool JsonCursor::isNull() const
{
    return m_value->kind == JsonValue::Kind::null;
}

bool JsonCursor::isString() const
{
    return m_value->kind == JsonValue::Kind::string;
}

bool JsonCursor::isNumber() const
{
    return m_value->kind == JsonValue::Kind::number;
}

std::string JsonCursor::string() const
{
    if (!isString())
        fail("a string");
    return m_value->text;
}

OptionalString JsonCursor::stringOrNull() const
{
    if (!isString() && !isNull())
        fail("a string or null");
    return isString() ? OptionalString(m_value->text) : std::nullopt;
}

bool JsonCursor::boolean() const
{
    if (m_value->kind != JsonValue::Kind::boolean)
        fail("true or false");
    return m_value->boolean;
}

std::uint32_t JsonCursor::number() const
{
    const std::optional<std::uint32_t> value = isNumber() ? numberFromText(m_value->text) : std::nullopt;
    if (!value)
        fail("a whole number from 0 to 4294967295");
    return *value;
}

std::uint64_t JsonCursor::largeNumber() const
{
    const std::optional<std::uint64_t> value = isNumber() ? largeNumberFromText(m_value->text) : std::nullopt;
    if (!value)
        fail("a whole number from 0 to 18446744073709551615");
    return *value;
}

bool JsonCursor::isNegative() const
{
    return isNumber() && m_value->text.front() == '-';
}

std::int64_t JsonCursor::negativeNumber(std::int64_t least) const
{
    const std::string& text = m_value->text;
    std::int64_t value = 0;
    const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (!isNegative() || result.ec != std::errc() || result.ptr != text.data() + text.size() || value < least)
        fail("a whole number of at least " + std::to_string(least));
    return value;
}

float JsonCursor::real() const
{
    const std::optional<float> value = isNumber() ? fromDecimal(m_value->text) : std::nullopt;
    if (!value)
        fail("a number in the range of single precision");
    return *value;
}

double JsonCursor::longReal() const
{
    const std::optional<double> value = isNumber() ? doubleFromDecimal(m_value->text) : std::nullopt;
    if (!value)
        fail("a number in the range of double precision");
    return *value;
}

GUID JsonCursor::guid() const
{
    const std::optional<GUID> value = isString() ? guidFromText(m_value->text) : std::nullopt;
    if (!value)
        fail("a GUID like \"{01234567-89AB-CDEF-0123-456789ABCDEF}\"");
    return *value;
}

float JsonCursor::decibels() const
{
    const std::optional<float> value = isNumber() ? fromDecimal(m_value->text) : std::nullopt;
    if (!value)
        fail("a number of decibels");
    return *value;
}

GUID JsonCursor::nodeType() const
{
    const std::optional<GUID> type = isString() ? nodeTypeFromText(m_value->text) : std::nullopt;
    if (!type)
        fail("the name of a jack or node type, or a GUID like \"{01234567-89AB-CDEF-0123-456789ABCDEF}\"");
    return *type;
}

std::vector<std::uint8_t> JsonCursor::bytes() const
{
    const std::string digits = isString() ? m_value->text : "?";
    const auto isHex = [](char character) { return hexDigit(character) >= 0; };
    if (digits.size() % 2 != 0 || !std::all_of(digits.begin(), digits.end(), isHex))
        fail("pairs of hexadecimal digits");
    std::vector<std::uint8_t> result;
    for (std::size_t index = 0; index < digits.size(); index += 2)
        result.push_back(static_cast<std::uint8_t>(hexDigit(digits[index]) << 4 | hexDigit(digits[index + 1])));
    return result;
}

void JsonCursor::fail(const std::string& expected) const
{
    fail(expected, shown(*m_value));
}

void JsonCursor::fail(const std::string& expected, const std::string& found) const
{
    throw MachineFileError(*m_file, m_value->line, 0, m_document->pointerTo(*m_value), expected, found);
}

std::string shown(const JsonValue& value)
{
    switch (value.kind)
    {
    case JsonValue::Kind::null:
        return "null";
    case JsonValue::Kind::boolean:
        return value.boolean ? "true" : "false";
    case JsonValue::Kind::number:
        return value.text.size() <= 40 ? value.text : value.text.substr(0, 40) + "...";
    case JsonValue::Kind::string:
        return inQuotes(value.text);
    case JsonValue::Kind::array:
        return "a list";
    case JsonValue::Kind::object:
        return "an object";
    }
    return {};
}
}
