/// @file
/// Task memory and the ledger of what has not been freed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/coreaudio.h"

namespace sim
{
/// The process's task memory. It is never destroyed, so that static objects can free blocks while the process ends.
///
/// On Windows the blocks are those of the system, and the ledger knows only blocks that the machine handed out.
class TaskMemory
{
public:
    struct Block
    {
        std::size_t bytes = 0;
        std::string origin; ///< operation and object: "IMMDevice::GetId {0.0.0.00000000}.{…}"
    };

    static TaskMemory& instance();

    /// A block on the account of machine number @p owner; null when there is no memory.
    void* allocate(std::size_t bytes, std::uint64_t owner, std::string origin);

    /// Frees a block that allocate() gave and returns its origin. A pointer that is no such block is left alone: the
    /// answer is "unknown block" then.
    std::string free(void* memory);

    /// What machine number @p owner has handed out and nobody freed.
    std::vector<Block> outstanding(std::uint64_t owner) const;

    /// A zero-terminated copy of @p text; null when there is no memory.
    WCHAR* allocateText(const std::string& text, std::uint64_t owner, std::string origin);

private:
    TaskMemory();
    ~TaskMemory() = delete;

    struct Ledger;
    Ledger* m_ledger;
};
}
