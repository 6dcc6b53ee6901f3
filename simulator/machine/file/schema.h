/// @file
/// The JSON schema of machine files.
#pragma once

#include "simulator/machine/file/objectrule.h"

#include <string>
#include <vector>

namespace sim
{
/// All forms of objects in a machine file.
std::vector<ObjectRule> objectRules();

/// The content of machines/machine.schema.json, made from the tables of fields and names.
std::string machineSchema();
}
