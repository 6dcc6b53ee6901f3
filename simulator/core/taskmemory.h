/// @file
/// Task memory, and the list of blocks that have not been freed.
#pragma once

#include "platform/coreaudio.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sim
{
/// The process's task memory. It is never destroyed, so that static objects can free blocks while the process ends.
///
/// On Windows the blocks come from the system, and only those that the machine handed out are listed.
class TaskMemory
{
public:
    /// Operation and object that a block comes from. Callers keep the name of the operation alive.
    struct Origin
    {
        const char* operation = "";
        std::optional<std::string> object;

        /// "IMMDevice::GetId {0.0.0.00000000}.{…}".
        std::string text() const { return object ? std::string(operation) + " " + *object : operation; }
    };

    struct Block
    {
        std::size_t bytes = 0;
        Origin origin;
    };

    static TaskMemory& instance();

    /// A block that belongs to machine number @p owner; null if there is no memory.
    void* allocate(std::size_t bytes, std::uint64_t owner, Origin origin);

    /// Frees a block that allocate() returned, and returns its origin. For any other pointer it does nothing and
    /// returns "unknown block".
    Origin free(void* memory);

    /// The blocks of machine number @p owner that have not been freed.
    std::vector<Block> outstanding(std::uint64_t owner) const;

    /// A zero-terminated copy of @p text; null if there is no memory.
    WCHAR* allocateText(const std::string& text, std::uint64_t owner, Origin origin);

private:
    TaskMemory();
    ~TaskMemory() = delete;

    struct Ledger;
    Ledger* m_ledger;
};

inline std::string argumentText(const TaskMemory::Origin& origin)
{
    return origin.text();
}
}
