/// @file
/// A position in a machine file: a value, the file and line that it comes from and the JSON pointer that leads to it.
#pragma once

#include "simulator/machine/file/json.h"
#include "simulator/machine/file/objectrule.h"
#include "simulator/machine/namedvalues.h"
#include "simulator/machine/property.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sim
{
/// Each reading operation returns the value as one type, and throws MachineFileError if it is of another kind or out of
/// range. The tree and the file's name must outlive the cursor.
class JsonCursor
{
public:
    JsonCursor(const JsonValue& value, const std::string& file, std::string pointer = {});

    /// Requires an object with all required keys of @p rule and without keys that it does not have.
    void requireKeys(const ObjectRule& rule) const;
    /// A member of an object.
    std::optional<JsonCursor> find(const std::string& key) const;
    /// The members of an object, with their keys.
    std::vector<std::pair<std::string, JsonCursor>> members() const;
    /// The elements of an array.
    std::vector<JsonCursor> elements() const;

    bool isObject() const;
    bool isNull() const;
    bool isString() const;
    bool isNumber() const;

    std::string string() const;
    OptionalString stringOrNull() const;
    bool boolean() const;
    std::uint32_t number() const;
    std::uint64_t largeNumber() const;
    float real() const;
    GUID guid() const;
    float decibels() const;
    GUID nodeType() const;
    /// Pairs of hexadecimal digits.
    std::vector<std::uint8_t> bytes() const;

    /// One of the names in the table.
    template<class Value, std::size_t Size>
    Value named(const Names<Value, Size>& names) const
    {
        const std::optional<Value> value = isString() ? valueOf(names, m_value->text) : std::nullopt;
        if (!value)
            fail(oneOf(names));
        return *value;
    }

    /// Throws MachineFileError for this position.
    [[noreturn]] void fail(const std::string& expected) const;
    [[noreturn]] void fail(const std::string& expected, const std::string& found) const;

private:
    const JsonValue* m_value;
    const std::string* m_file;
    std::string m_pointer;
};

/// @p value as messages show it: on one line and not too long.
std::string shown(const JsonValue& value);
}
