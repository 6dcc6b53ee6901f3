/// JSON as machine files use it: a tree that keeps order, spelling and lines, with reader and printer.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace sim
{
struct JsonValue
{
    enum class Kind
    {
        null,
        boolean,
        number,
        string,
        array,
        object,
    };

    Kind kind = Kind::null;
    bool boolean = false;
    std::string text;                ///< of a string; of a number, as it is written
    std::vector<JsonValue> elements; ///< of an array; the values of an object
    std::vector<std::string> keys;   ///< of an object, one for each element
    std::size_t line = 0;            ///< where it stands, counted from 1; 0: it was not read from a text

    static JsonValue ofBoolean(bool value);
    static JsonValue ofNumber(std::string written);
    static JsonValue ofString(std::string value);
    static JsonValue array(std::vector<JsonValue> elements = {});
    static JsonValue object();

    /// Appends a member; for building objects.
    JsonValue& add(std::string key, JsonValue value);

    /// The member called @p key, or null.
    const JsonValue* member(std::string_view key) const;

    /// What a JSON pointer leads to, or the last thing on its way that there is.
    const JsonValue& nearest(const std::string& pointer) const;
};

/// Reads @p text. Throws MachineFileError for what is not JSON, for a key that is given twice, for a zero character in
/// a text, and for deeper nesting than any machine has.
JsonValue parseJson(const std::string& text, const std::string& file);

/// The text of @p value, with a line of its own for whatever does not fit into one. What is not UTF-8 is replaced.
std::string printJson(const JsonValue& value);

/// @p key as a step of a JSON pointer.
std::string pointerStep(const std::string& key);
}
