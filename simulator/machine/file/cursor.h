/// @file
/// A position in a machine file: a value and the document that contains it.
#pragma once

#include "simulator/machine/file/json.h"
#include "simulator/machine/file/objectrule.h"
#include "simulator/machine/namedvalues.h"
#include "simulator/machine/property.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sim
{
/// Each reading operation returns the value as one type, and throws MachineFileError if it is of another kind or out of
/// range. The tree and the file's name must outlive the cursor.
///
/// A cursor is cheap to make and to copy: it looks for the way to its value only when there is an error to report.
class JsonCursor
{
public:
    struct Member;
    /// Members of an object in the order of the keys of its rule; null for a key that the object does not have.
    using RuledMembers = std::array<const JsonValue*, ObjectRule::mostKeys>;

    /// The position of the whole document.
    JsonCursor(const JsonValue& document, const std::string& file);

    /// The position of @p value in the same document.
    JsonCursor at(const JsonValue& value) const;

    /// Requires an object with all required keys of @p rule and without keys that it does not have.
    void requireKeys(const ObjectRule& rule) const;
    /// The members of an object. Requires its keys as requireKeys() does.
    RuledMembers members(const ObjectRule& rule) const;
    /// A member of an object.
    std::optional<JsonCursor> find(std::string_view key) const;
    std::vector<Member> members() const;
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
    /// Whether it is a number with a minus; the value of such a whole number, at least @p least.
    bool isNegative() const;
    std::int64_t negativeNumber(std::int64_t least) const;
    float real() const;
    double longReal() const;
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
    const JsonValue* m_document;
    const std::string* m_file;
};

/// A member of an object. The key is that of the tree.
struct JsonCursor::Member
{
    const std::string& key;
    JsonCursor value;
};

/// @p value as messages show it: on one line and not too long.
std::string shown(const JsonValue& value);
}
