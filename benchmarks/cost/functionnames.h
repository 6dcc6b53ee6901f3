/// @file
/// The names of functions, by their addresses.
#pragma once

#include <cstdint>

namespace bench
{
/// Reads the table of symbols of the program. @exception std::runtime_error if it has none
void readFunctionNames();

/// The mangled name of the function that begins at @p start, in the program even if it is not exported; null for one
/// that is not known. It allocates nothing. Call readFunctionNames() first.
const char* functionName(std::uintptr_t start);
}
