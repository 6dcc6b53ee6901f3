#pragma once

#include <cstddef>

namespace support
{
/// Counts the allocations of this thread with `operator new` while this object exists, and can make them fail.
///
/// The test executable replaces the global operators for this; they give memory that is not zero. On Windows a DLL has
/// its own operators, so only templates and inline functions are counted there. At most one probe per thread exists at
/// a time.
class AllocationProbe
{
public:
    AllocationProbe();
    ~AllocationProbe();
    AllocationProbe(const AllocationProbe&) = delete;
    AllocationProbe& operator=(const AllocationProbe&) = delete;

    /// Number of requested allocations, including those that failed.
    unsigned int count() const;

    /// Bytes of the largest requested allocation.
    std::size_t largestSize() const;

    /// Number of successful allocations minus number of deallocations.
    int balance() const;

    /// After @p more successful ones, every allocation of the std::nothrow form returns null.
    void failNothrow(unsigned int more = 0);

    /// After @p more successful ones of either form, one allocation fails.
    void failOnce(unsigned int more = 0);

    /// From now on every allocation of either form fails.
    void failAll();

    /// From now on no allocation fails.
    void succeed();
};
}
