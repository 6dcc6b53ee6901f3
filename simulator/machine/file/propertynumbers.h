/// @file
/// The fields of property values that are numbers.
#pragma once

#include "simulator/machine/file/fieldtables.h"

namespace sim
{
/// "number", a whole number of up to 64 bits, negative ones for signed tags. Its reader needs the tag.
void addNumber(FieldTable<PropertyValue>& table);

/// "real" of VT_R4 and "longReal" of VT_R8; as bits, such as "0x7FC00000", if it is infinite or no number.
void addReal(FieldTable<PropertyValue>& table);
void addLongReal(FieldTable<PropertyValue>& table);

/// The schema of a number in @p digits hexadecimal digits after "0x".
JsonValue hexSchema(std::size_t digits);
}
