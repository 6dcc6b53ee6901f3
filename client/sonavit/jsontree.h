/// @file
/// JSON as a tree whose values know their lines. Not a public header.
#pragma once

#include "sonavit/result.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace sonavit::json
{
enum class Kind : int
{
    null,
    boolean,
    number,
    string,
    list,
    object
};

/// A value. Only the members of its kind are used.
struct Value
{
    Kind kind = Kind::null;
    std::size_t line = 1; ///< on which it begins, from 1
    bool boolean = false;
    double number = 0; ///< finite
    std::string string;
    std::vector<std::string> keys; ///< of an object, each once
    std::vector<Value> items;      ///< of a list, or of an object in the order of the keys

    /// The member of an object; null if there is none, or if it is null.
    const Value* member(std::string_view key) const noexcept;
};

/// What a text may have at most.
struct Limits
{
    std::size_t bytes;
    std::size_t values;
    std::size_t depth;
};

/// Reads @p text, which may begin with a byte order mark.
/// @param operation of the problem
/// @return Problem::Kind::unreadable with "line 3: " and the reason
Result<Value> treeOf(std::string_view text, const Limits& limits, const std::string& operation);

/// "a list": for messages.
const char* wordsOf(Kind kind) noexcept;

/// @p text between quotation marks, with the escape sequences that JSON needs; ill-formed UTF-8 becomes U+FFFD.
std::string quoted(std::string_view text);
}
