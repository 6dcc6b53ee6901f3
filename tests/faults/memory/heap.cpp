#include "tests/faults/memory/heap.h"

#include "simulator/answering.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <mutex>
#include <new>

namespace faults::memory
{
namespace
{
/// In front of each block. It keeps the alignment of malloc.
struct alignas(std::max_align_t) Header
{
    Header* previous;
    Header* next;
    std::uint32_t epoch; ///< of the HeapCount; 0: not counted
    std::uint32_t number;
};

/// Never destroyed: static objects free their blocks at the end of the process.
struct Ledger
{
    std::mutex mutex;
    std::atomic<bool> isCounting{false};
    std::uint32_t epoch = 0;
    std::uint32_t last = 0; ///< number given
    Header* first = nullptr;

    void add(Header& block)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        block.epoch = epoch;
        block.number = ++last;
        block.previous = nullptr;
        block.next = first;
        if (first != nullptr)
            first->previous = &block;
        first = &block;
    }

    void remove(const Header& block)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (block.epoch != epoch)
            return; // of an earlier count, whose list is gone
        if (block.next != nullptr)
            block.next->previous = block.previous;
        (block.previous == nullptr ? first : block.previous->next) = block.next;
    }
};

constexpr long endless = LONG_MAX;

struct Plan
{
    std::atomic<bool> isActive{false};
    std::atomic<Side> side{Side::caller};
    std::atomic<Extent> extent{Extent::once};
    std::atomic<long> left{endless};
    std::atomic<unsigned> asked{0};
    std::atomic<bool> hasStruck{false};
};

// Constants at the beginning of the process, when the first allocations come.
alignas(Ledger) unsigned char ledgerPlace[sizeof(Ledger)];
Plan plan;
Asked askedFor[100'000];
thread_local bool isCaller = false;
thread_local unsigned uncounted = 0;

Ledger& ledger()
{
    static Ledger* const instance = new (ledgerPlace) Ledger;
    return *instance;
}

bool isCounted()
{
    return ledger().isCounting.load(std::memory_order_relaxed) && uncounted == 0 && !sim::isAnswering();
}

bool hasToFail(std::size_t bytes, bool isNothrow)
{
    if (!plan.isActive.load() || isCaller != (plan.side.load() == Side::caller))
        return false;
    const unsigned place = plan.asked++;
    if (place < std::size(askedFor))
        askedFor[place] = {bytes, isNothrow};
    const long before = plan.left.fetch_sub(1);
    if (before > 0 || (before < 0 && plan.extent.load() == Extent::once))
        return false;
    plan.hasStruck = true;
    return true;
}

void* allocate(std::size_t bytes, bool isNothrow)
{
    const bool counts = isCounted();
    if (counts && hasToFail(bytes, isNothrow))
        return nullptr;
    auto* const header = static_cast<Header*>(std::malloc(sizeof(Header) + bytes));
    if (header == nullptr)
        return nullptr;
    header->epoch = 0;
    if (counts)
        ledger().add(*header);
    return header + 1;
}

void* allocateOrThrow(std::size_t bytes)
{
    void* const memory = allocate(bytes, false);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

void deallocate(void* memory) noexcept
{
    if (memory == nullptr)
        return;
    Header* const header = static_cast<Header*>(memory) - 1;
    if (header->epoch != 0)
        ledger().remove(*header);
    std::free(header);
}
}

HeapCount::HeapCount()
{
    Ledger& all = ledger();
    const std::lock_guard<std::mutex> lock(all.mutex);
    ++all.epoch;
    all.last = 0;
    all.first = nullptr;
    all.isCounting = true;
}

HeapCount::~HeapCount()
{
    Ledger& all = ledger();
    const std::lock_guard<std::mutex> lock(all.mutex);
    all.isCounting = false;
    ++all.epoch;
    all.first = nullptr;
}

std::vector<unsigned> HeapCount::live() const
{
    const Uncounted ours;
    std::vector<unsigned> numbers;
    numbers.reserve(64); // beyond that the list alone would wait for itself
    Ledger& all = ledger();
    const std::lock_guard<std::mutex> lock(all.mutex);
    for (const Header* block = all.first; block != nullptr && numbers.size() < numbers.capacity(); block = block->next)
        numbers.push_back(block->number);
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

Shortage::Shortage(Side side, Extent extent, unsigned more)
{
    isCaller = true;
    plan.side = side;
    plan.extent = extent;
    plan.left = static_cast<long>(more);
    plan.asked = 0;
    plan.hasStruck = false;
    plan.isActive = true;
}

Shortage::~Shortage()
{
    plan.isActive = false;
    isCaller = false;
}

unsigned Shortage::count() const
{
    return plan.asked;
}

std::vector<Asked> Shortage::asked() const
{
    const Uncounted ours;
    return std::vector<Asked>(askedFor, askedFor + std::min<std::size_t>(plan.asked, std::size(askedFor)));
}

bool Shortage::hasStruck() const
{
    return plan.hasStruck;
}

Uncounted::Uncounted() noexcept
{
    ++uncounted;
}

Uncounted::~Uncounted()
{
    --uncounted;
}
}

using namespace faults::memory;

void* operator new(std::size_t bytes)
{
    return allocateOrThrow(bytes);
}
void* operator new[](std::size_t bytes)
{
    return allocateOrThrow(bytes);
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept
{
    return allocate(bytes, true);
}
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept
{
    return allocate(bytes, true);
}
void operator delete(void* memory) noexcept
{
    deallocate(memory);
}
void operator delete[](void* memory) noexcept
{
    deallocate(memory);
}
void operator delete(void* memory, std::size_t) noexcept
{
    deallocate(memory);
}
void operator delete[](void* memory, std::size_t) noexcept
{
    deallocate(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept
{
    deallocate(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept
{
    deallocate(memory);
}
