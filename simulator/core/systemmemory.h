/// @file
/// The allocator behind task memory: the C library, on Windows the COM runtime.
#pragma once

#include <cstddef>
#include <functional>

namespace sim::systemmemory
{
void* allocate(std::size_t bytes);
void free(void* memory);

/// @p onFree is called with each block that users free by the system's own function. Off Windows there is none: all
/// blocks are freed by the simulated CoTaskMemFree.
void watchFrees(const std::function<void(void*)>& onFree);
}
