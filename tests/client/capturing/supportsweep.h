/// @file
/// Which calls fail in tests that let calls of a survey fail, one after the other.
#pragma once

#include "simulator/journal.h"

#include <cstdint>
#include <map>
#include <string>

namespace support
{
/// Chooses calls: SONAVIT_CAPTURE_SWEEP lets each call fail, which takes minutes; otherwise a few of each kind do.
///
/// Calls of one operation are of one kind if their first arguments are the same, ids apart.
class CallSample
{
public:
    enum class Extent
    {
        first,  ///< the first call of each kind
        several ///< and the second, the fourth, the eighth and so on
    };

    explicit CallSample(Extent extent) : m_extent(extent) {}

    /// @param entry each call has to be asked for once, in the order of the journal
    bool contains(const sim::JournalEntry& entry);

private:
    const Extent m_extent;
    std::map<std::string, std::uint32_t> m_counts; ///< by kind
};
}
