#pragma once

#include <cstddef>

namespace support
{
/// Watches the allocations that this thread makes with `operator new` while it lives, and lets some of them fail.
///
/// The test executable replaces the global operators for this. On Windows a library that is a DLL keeps the operators
/// of its own, so that only templates and inline operations are seen there. One probe per thread lives at a time.
class AllocationProbe
{
public:
    AllocationProbe();
    ~AllocationProbe();
    AllocationProbe(const AllocationProbe&) = delete;
    AllocationProbe& operator=(const AllocationProbe&) = delete;

    /// Number of allocations asked for, those that failed included.
    unsigned int count() const;

    /// Bytes of the largest allocation asked for.
    std::size_t largestSize() const;

    /// Allocations that were given, less those that were freed.
    int balance() const;

    /// After @p more successful ones, every allocation of the std::nothrow form gives null.
    void failNothrow(unsigned int more = 0);

    /// After @p more successful ones of either form, one allocation fails.
    void failOnce(unsigned int more = 0);

    /// From now on every allocation of either form fails.
    void failAll();

    /// From now on no allocation fails.
    void succeed();
};
}
