#include "tests/client/capturing/supportsweep.h"

#include <cstdlib>

namespace support
{
namespace
{
bool isWhole()
{
    static const bool isSet = std::getenv("SONAVIT_CAPTURE_SWEEP") != nullptr;
    return isSet;
}

/// Ids contain a point.
std::string kindOf(const sim::JournalEntry& entry)
{
    const bool isOfItsOwn = !entry.arguments.empty() && entry.arguments.front().find('.') == std::string::npos;
    return entry.operation + (isOfItsOwn ? " " + entry.arguments.front() : "");
}

bool isPowerOfTwo(std::uint32_t number)
{
    return (number & (number - 1)) == 0;
}
}

bool CallSample::contains(const sim::JournalEntry& entry)
{
    const std::uint32_t number = ++m_counts[kindOf(entry)];
    return isWhole() || number == 1 || (m_extent == Extent::several && isPowerOfTwo(number));
}
}
