#include "tests/foundation/supportallocations.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace
{
constexpr unsigned int never = 0xFFFFFFFFu;

struct Watch
{
    bool active;
    unsigned int count;
    std::size_t largestSize;
    int balance;
    unsigned int nothrowLeft; // successful ones of that form before all fail
    unsigned int left;        // successful ones of either form before one fails
    bool exhausted;           // all of either form fail
};

thread_local Watch watch = {false, 0, 0, 0, never, never, false};

bool hasToFail(bool nothrow)
{
    if (watch.exhausted)
        return true;
    if (nothrow && watch.nothrowLeft != never && watch.nothrowLeft-- == 0)
    {
        watch.nothrowLeft = 0;
        return true;
    }
    return watch.left != never && watch.left-- == 0; // after the one failure it is `never`
}

/// Memory that is not zero: what is read before it is written shows.
void* usedMemory(std::size_t size)
{
    void* const memory = std::malloc(size == 0 ? 1 : size);
    if (memory != nullptr)
        std::memset(memory, 0xA5, std::min<std::size_t>(size, 4096));
    return memory;
}

void* allocate(std::size_t size, bool nothrow)
{
    if (!watch.active)
        return usedMemory(size);
    ++watch.count;
    watch.largestSize = size > watch.largestSize ? size : watch.largestSize;
    void* const memory = hasToFail(nothrow) ? nullptr : usedMemory(size);
    watch.balance += memory == nullptr ? 0 : 1;
    return memory;
}

void* allocateOrThrow(std::size_t size)
{
    void* const memory = allocate(size, false);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

void deallocate(void* memory)
{
    if (watch.active && memory != nullptr)
        --watch.balance;
    std::free(memory);
}
}

void* operator new(std::size_t size)
{
    return allocateOrThrow(size);
}
void* operator new[](std::size_t size)
{
    return allocateOrThrow(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return allocate(size, true);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    return allocate(size, true);
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

namespace support
{
AllocationProbe::AllocationProbe()
{
    watch = {true, 0, 0, 0, never, never, false};
}

AllocationProbe::~AllocationProbe()
{
    watch = {false, 0, 0, 0, never, never, false};
}

unsigned int AllocationProbe::count() const
{
    return watch.count;
}

std::size_t AllocationProbe::largestSize() const
{
    return watch.largestSize;
}

int AllocationProbe::balance() const
{
    return watch.balance;
}

void AllocationProbe::failNothrow(unsigned int more)
{
    watch.nothrowLeft = more;
}

void AllocationProbe::failOnce(unsigned int more)
{
    watch.left = more;
}

void AllocationProbe::failAll()
{
    watch.exhausted = true;
}

void AllocationProbe::succeed()
{
    watch.exhausted = false;
    watch.nothrowLeft = never;
    watch.left = never;
}
}
