/// @file
/// The keys that an object in a machine file may have.
#pragma once

#include "simulator/machine/file/json.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace sim
{
/// One key of an object.
struct KeyRule
{
    std::string name;
    bool isRequired = false;
    std::function<JsonValue()> schema; ///< what the schema says about the key's value
    bool isAlwaysWritten = false;      ///< though it is optional and has its usual value
};

/// One form of object. The keys are those of a table of fields and valid as long as the table.
struct ObjectRule
{
    static constexpr std::size_t mostKeys = 32;

    std::string name;        ///< of its definition in the schema
    std::string description; ///< empty: the names of its keys suffice
    std::vector<const KeyRule*> keys;
};

/// @p schema with a description, unless it is empty, and a default value, unless it is null or an empty string.
JsonValue annotated(const JsonValue& schema, const std::string& description, const JsonValue& usual);
}
