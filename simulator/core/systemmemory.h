/// @file
/// Where task memory really comes from: the C library, on Windows the COM runtime.
#pragma once

#include <cstddef>
#include <functional>

namespace sim::systemmemory
{
void* allocate(std::size_t bytes);
void free(void* memory);

/// @p heard is called with each block that users free past free(). Off Windows nobody can: all frees go through the
/// simulated CoTaskMemFree.
void watchFrees(const std::function<void(void*)>& heard);
}
