/// @file
/// The heap under the code that is tested: lets its allocations fail, and counts its blocks.
///
/// The executable replaces the global operators `new` and `delete` for this. An allocation counts unless it is made by
/// a simulated machine, by the test itself (Uncounted), or while no HeapCount exists.
#pragma once

#include <cstddef>
#include <vector>

namespace faults::memory
{
/// On which threads allocations fail.
enum class Side
{
    caller, ///< the thread that has begun the shortage
    others  ///< all other threads
};

/// How many of them.
enum class Extent
{
    once,   ///< a single one
    lasting ///< it and all later ones, to the end of the shortage
};

/// An allocation that was asked for.
struct Asked
{
    std::size_t bytes = 0;
    bool isNothrow = false; ///< it returns null in place of an exception
};

/// Counts the blocks that are allocated while it lives, on all threads. At most one exists.
class HeapCount
{
public:
    HeapCount();
    ~HeapCount();
    HeapCount(const HeapCount&) = delete;
    HeapCount& operator=(const HeapCount&) = delete;

    /// Those of them that have not been freed: which ones, in the order of allocation, counted from 1.
    std::vector<unsigned> live() const;
};

/// Lets memory run out while it lives. At most one exists, inside of a HeapCount.
class Shortage
{
public:
    /// @param more allocations that succeed before
    Shortage(Side side, Extent extent, unsigned more);
    ~Shortage();
    Shortage(const Shortage&) = delete;
    Shortage& operator=(const Shortage&) = delete;

    /// Number of allocations that were asked for on that side.
    unsigned count() const;
    /// The first of them, at most a hundred thousand.
    std::vector<Asked> asked() const;
    bool hasStruck() const;
};

/// While it lives, what this thread allocates does not count and does not fail.
class Uncounted
{
public:
    Uncounted() noexcept;
    ~Uncounted();
    Uncounted(const Uncounted&) = delete;
    Uncounted& operator=(const Uncounted&) = delete;
};
}
