#include "simulator/machine/file/cursor.h"

#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/file/objectkeys.h"
#include "simulator/machine/nodetypes.h"
#include "simulator/machine/valuetext.h"

#include <algorithm>
#include <utility>

namespace sim
{
namespace
{
std::string keyList(const FileObject& object)
{
    std::string result;
    for (const FileKey& key : object.keys)
        result += (result.empty() ? "" : ", ") + std::string(key.name);
    return result;
}

bool isKey(const FileObject& object, const std::string& name)
{
    return std::any_of(object.keys.begin(), object.keys.end(), [&](const FileKey& key) { return key.name == name; });
}
}

FilePlace::FilePlace(const JsonValue& value, const std::string& file, std::string pointer)
    : m_value(&value),
      m_file(&file),
      m_pointer(std::move(pointer))
{
}

const FilePlace& FilePlace::object(std::string_view kind) const
{
    const FileObject& object = fileObject(kind);
    if (!isObject())
        fail("an object");
    for (std::size_t index = 0; index < m_value->keys.size(); ++index)
    {
        const std::string& key = m_value->keys[index];
        if (!isKey(object, key))
            throw MachineFileError(*m_file, m_value->elements[index].line, 0, m_pointer + pointerStep(key),
                                   "one of the keys " + keyList(object), "the key " + inQuotes(key));
    }
    for (const FileKey& key : object.keys)
    {
        if (key.required && m_value->member(key.name) == nullptr)
            throw MachineFileError(*m_file, m_value->line, 0, m_pointer, "the key " + inQuotes(std::string(key.name)),
                                   "an object without it");
    }
    return *this;
}

std::optional<FilePlace> FilePlace::find(const std::string& key) const
{
    const JsonValue* member = m_value->member(key);
    if (member == nullptr)
        return std::nullopt;
    return FilePlace(*member, *m_file, m_pointer + pointerStep(key));
}

FilePlace FilePlace::at(const std::string& key) const
{
    return find(key).value();
}

std::vector<std::pair<std::string, FilePlace>> FilePlace::members() const
{
    if (!isObject())
        fail("an object");
    std::vector<std::pair<std::string, FilePlace>> result;
    for (const std::string& key : m_value->keys)
        result.emplace_back(key, at(key));
    return result;
}

std::vector<FilePlace> FilePlace::elements() const
{
    if (m_value->kind != JsonValue::Kind::array)
        fail("a list");
    std::vector<FilePlace> result;
    for (std::size_t index = 0; index < m_value->elements.size(); ++index)
        result.emplace_back(m_value->elements[index], *m_file, m_pointer + "/" + std::to_string(index));
    return result;
}

bool FilePlace::isObject() const
{
    return m_value->kind == JsonValue::Kind::object;
}

bool FilePlace::isNull() const
{
    return m_value->kind == JsonValue::Kind::null;
}

bool FilePlace::isText() const
{
    return m_value->kind == JsonValue::Kind::text;
}

bool FilePlace::isNumber() const
{
    return m_value->kind == JsonValue::Kind::number;
}

std::string FilePlace::text() const
{
    if (!isText())
        fail("a text");
    return m_value->text;
}

Text FilePlace::textOrNull() const
{
    if (!isText() && !isNull())
        fail("a text or null");
    return isText() ? Text(m_value->text) : Text();
}

bool FilePlace::boolean() const
{
    if (m_value->kind != JsonValue::Kind::boolean)
        fail("true or false");
    return m_value->boolean;
}

std::uint32_t FilePlace::number() const
{
    const std::optional<std::uint32_t> value = isNumber() ? numberFromText(m_value->text) : std::nullopt;
    if (!value)
        fail("a whole number from 0 to 4294967295");
    return *value;
}

float FilePlace::decibels() const
{
    const std::optional<float> value = isNumber() ? fromDecimal(m_value->text) : std::nullopt;
    if (!value)
        fail("a number of decibels");
    return *value;
}

GUID FilePlace::nodeType() const
{
    const std::optional<GUID> type = isText() ? nodeTypeFromText(m_value->text) : std::nullopt;
    if (!type)
        fail("the name of a jack or node type, or a GUID like \"{01234567-89AB-CDEF-0123-456789ABCDEF}\"");
    return *type;
}

std::uint32_t FilePlace::state() const
{
    return isNumber() ? number() : named(stateNames);
}

std::vector<std::uint8_t> FilePlace::bytes() const
{
    const std::string digits = isText() ? m_value->text : "?";
    const auto isHex = [](char character) { return hexDigit(character) >= 0; };
    if (digits.size() % 2 != 0 || !std::all_of(digits.begin(), digits.end(), isHex))
        fail("pairs of hexadecimal digits");
    std::vector<std::uint8_t> result;
    for (std::size_t index = 0; index < digits.size(); index += 2)
        result.push_back(static_cast<std::uint8_t>(hexDigit(digits[index]) << 4 | hexDigit(digits[index + 1])));
    return result;
}

std::vector<std::string> FilePlace::texts() const
{
    std::vector<std::string> result;
    for (const FilePlace& element : elements())
        result.push_back(element.text());
    return result;
}

void FilePlace::fail(const std::string& expected) const
{
    fail(expected, shown(*m_value));
}

void FilePlace::fail(const std::string& expected, const std::string& found) const
{
    throw MachineFileError(*m_file, m_value->line, 0, m_pointer, expected, found);
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
    case JsonValue::Kind::text:
        return inQuotes(value.text);
    case JsonValue::Kind::array:
        return "a list";
    case JsonValue::Kind::object:
        return "an object";
    }
    return {};
}
}
