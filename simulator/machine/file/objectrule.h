/// The keys that an object in a machine file may have.
#pragma once

#include "simulator/machine/file/json.h"

#include <string>
#include <vector>

namespace sim
{
/// One key of an object.
struct KeyRule
{
    std::string name;
    bool isRequired = false;
    JsonValue schema;             ///< what the schema says about the key's value
    bool isAlwaysWritten = false; ///< though it is optional and has its usual value
};

/// One kind of object.
struct ObjectRule
{
    std::string name;        ///< of its definition in the schema
    std::string description; ///< empty: the names of its keys suffice
    std::vector<KeyRule> keys;
};
}
