/// @file
/// JSON for machine files: a tree that keeps the order of keys, the spelling of numbers and the lines.
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
    std::size_t line = 0;            ///< in the file, counted from 1; 0: it was not read from a file

    static JsonValue ofBoolean(bool value);
    static JsonValue ofNumber(std::string written);
    static JsonValue ofString(std::string value);
    static JsonValue array(std::vector<JsonValue> elements = {});
    static JsonValue object();

    /// Appends a member; for building objects.
    JsonValue& add(std::string key, JsonValue value);

    /// The member called @p key, or null.
    const JsonValue* member(std::string_view key) const;

    /// The value at a JSON pointer, or the last existing value on the way to it.
    const JsonValue& nearest(const std::string& pointer) const;

    /// The JSON pointer to @p part, which is this value or is somewhere inside of it. Searches all that comes before
    /// it.
    std::string pointerTo(const JsonValue& part) const;

    /// The step of a JSON pointer from this list or object to an element of it.
    std::string stepTo(std::size_t index) const;
};

/// The most lists and objects around a value that can be read, more than any machine needs.
inline constexpr std::size_t deepestNesting = 32;

/// Reads @p text. Throws MachineFileError if it is not JSON, contains a key twice in one object or a zero character in
/// a string, or is nested more deeply than deepestNesting.
JsonValue parseJson(const std::string& text, const std::string& file);

/// As parseJson(), which calls it for a string that the fast reader does not understand (plainjson.h).
JsonValue parseAnyJson(const std::string& text, const std::string& file);

/// @p value as JSON. An object or a list that does not fit into a line is printed with one line for each element. Bytes
/// that are not UTF-8 become the replacement character.
std::string printJson(const JsonValue& value);

/// @p key as a step of a JSON pointer.
std::string pointerStep(const std::string& key);
}
