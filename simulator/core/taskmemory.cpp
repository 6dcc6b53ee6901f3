#include "simulator/core/taskmemory.h"

#include "simulator/core/systemmemory.h"
#include "simulator/core/utf16.h"
#include "simulator/mutex.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace sim
{
struct TaskMemory::Ledger
{
    /// In the list of its owner's blocks: a machine is asked for its own ones again and again, and those of all earlier
    /// machines that were not freed are there, too.
    struct Entry
    {
        Block block;
        std::uint64_t owner = 0;
        Entry* previous = nullptr;
        Entry* next = nullptr;
    };

    mutable Mutex mutex;
    std::unordered_map<void*, Entry> entries;
    std::unordered_map<std::uint64_t, Entry*> firsts; ///< of each owner that has blocks

    void add(void* memory, Block block, std::uint64_t owner)
    {
        const std::lock_guard<Mutex> lock(mutex);
        Entry*& first = firsts[owner];
        const auto [found, isNew] = entries.try_emplace(memory);
        Entry& entry = found->second;
        if (!isNew)
            unlink(entry); // freed behind the machine's back, and its address given out again
        entry = {std::move(block), owner, nullptr, first};
        if (first != nullptr)
            first->previous = &entry;
        first = &entry;
    }

    /// Removes @p memory and stores its origin; false if it is not listed.
    bool remove(void* memory, Origin& origin)
    {
        const std::lock_guard<Mutex> lock(mutex);
        const auto found = entries.find(memory);
        if (found == entries.end())
            return false;
        origin = std::move(found->second.block.origin);
        unlink(found->second);
        const auto first = firsts.find(found->second.owner);
        if (first->second == nullptr)
            firsts.erase(first);
        entries.erase(found);
        return true;
    }

private:
    void unlink(const Entry& entry)
    {
        if (entry.next != nullptr)
            entry.next->previous = entry.previous;
        if (entry.previous != nullptr)
            entry.previous->next = entry.next;
        else
            firsts[entry.owner] = entry.next; // which there is
    }
};

TaskMemory::TaskMemory() : m_ledger(new Ledger)
{
    // On Windows users call the system's own CoTaskMemFree.
    systemmemory::watchFrees(
        [ledger = m_ledger](void* memory)
        {
            Origin origin;
            ledger->remove(memory, origin);
        });
}

TaskMemory& TaskMemory::instance()
{
    static TaskMemory* const memory = new TaskMemory;
    return *memory;
}

void* TaskMemory::allocate(std::size_t bytes, std::uint64_t owner, Origin origin)
{
    // The unique pointer frees the block if there is no memory for its entry.
    std::unique_ptr<void, decltype(&systemmemory::free)> memory(systemmemory::allocate(bytes), &systemmemory::free);
    if (memory == nullptr)
        return nullptr;
    m_ledger->add(memory.get(), {bytes, std::move(origin)}, owner);
    return memory.release();
}

TaskMemory::Origin TaskMemory::free(void* memory)
{
    Origin origin;
    if (!m_ledger->remove(memory, origin))
        return {"unknown block", std::nullopt};
    systemmemory::free(memory);
    return origin;
}

std::vector<TaskMemory::Block> TaskMemory::outstanding(std::uint64_t owner) const
{
    std::vector<Block> result;
    const std::lock_guard<Mutex> lock(m_ledger->mutex);
    const auto first = m_ledger->firsts.find(owner);
    for (const Ledger::Entry* entry = first == m_ledger->firsts.end() ? nullptr : first->second; entry != nullptr;
         entry = entry->next)
        result.push_back(entry->block);
    return result;
}

WCHAR* TaskMemory::allocateText(const std::string& text, std::uint64_t owner, Origin origin)
{
    // Nearly all strings of the platform are ASCII, and the units of ASCII are its bytes.
    const auto isAscii = [](char byte) { return static_cast<unsigned char>(byte) < 0x80; };
    const bool isPlain = std::all_of(text.begin(), text.end(), isAscii);
    const std::vector<WCHAR> units = isPlain ? std::vector<WCHAR>() : utf16(text);
    const std::size_t count = isPlain ? text.size() + 1 : units.size();
    auto* const copy = static_cast<WCHAR*>(allocate(count * sizeof(WCHAR), owner, std::move(origin)));
    if (copy == nullptr)
        return nullptr;
    if (isPlain)
        std::copy_n(text.c_str(), count, copy);
    else
        std::copy(units.begin(), units.end(), copy);
    return copy;
}
}
