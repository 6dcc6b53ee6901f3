/// A value of a machine file together with where it stands, for reading it into one type or saying what is wrong.
#pragma once

#include "simulator/machine/file/json.h"
#include "simulator/machine/machine.h"
#include "simulator/machine/namedvalues.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sim
{
/// Each reading operation throws MachineFileError where the value is of another kind or out of range. The file's text
/// and its tree must outlive the place.
class FilePlace
{
public:
    FilePlace(const JsonValue& value, const std::string& file, std::string pointer = {});

    /// Requires an object with the keys of that kind (simulator/machine/file/objectkeys.h), all required ones and no
    /// other.
    const FilePlace& object(std::string_view kind) const;
    /// A member of an object.
    std::optional<FilePlace> find(const std::string& key) const;
    FilePlace at(const std::string& key) const;
    /// The members of an object, with their keys.
    std::vector<std::pair<std::string, FilePlace>> members() const;
    /// The elements of an array.
    std::vector<FilePlace> elements() const;

    bool isObject() const;
    bool isNull() const;
    bool isText() const;
    bool isNumber() const;

    std::string text() const;
    Text textOrNull() const;
    bool boolean() const;
    std::uint32_t number() const;
    float decibels() const;
    GUID nodeType() const;
    std::uint32_t state() const;
    /// Pairs of hexadecimal digits.
    std::vector<std::uint8_t> bytes() const;
    std::vector<std::string> texts() const;

    /// One of the names in the table.
    template<class Value, std::size_t Size>
    Value named(const Names<Value, Size>& names) const
    {
        const std::optional<Value> value = isText() ? valueOf(names, m_value->text) : std::nullopt;
        if (!value)
            fail(oneOf(names));
        return *value;
    }

    /// Throws MachineFileError for this place.
    [[noreturn]] void fail(const std::string& expected) const;
    [[noreturn]] void fail(const std::string& expected, const std::string& found) const;

private:
    template<class Value, std::size_t Size>
    static std::string oneOf(const Names<Value, Size>& names)
    {
        std::string result;
        for (std::size_t index = 0; index < Size; ++index)
        {
            if (index > 0)
                result += index + 1 == Size ? " or " : ", ";
            result += "\"" + std::string(names[index].name) + "\"";
        }
        return result;
    }

    FilePlace inner(std::size_t index) const;

    const JsonValue* m_value;
    const std::string* m_file;
    std::string m_pointer;
};

/// @p value as messages show it: on one line and not too long.
std::string shown(const JsonValue& value);
}
