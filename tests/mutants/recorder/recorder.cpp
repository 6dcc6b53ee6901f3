#include "tests/mutants/recorder/recorder.h"

#include <link.h>
#include <sys/mman.h>

#include <cstdlib>

namespace
{
// Constructors of other sources use these before the variables of this one would be made, so none needs to be made.
unsigned char* flags;
std::size_t blockCount;
const std::uintptr_t* placesBegin;
const std::uintptr_t* placesEnd;

/// Shared with child processes; null if there is no memory for it.
unsigned char* sharedFlags(std::size_t count)
{
    void* const memory = mmap(nullptr, count, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    return memory == MAP_FAILED ? nullptr : static_cast<unsigned char*>(memory);
}

/// The program comes first; the walk ends there.
int storeLoadAddress(dl_phdr_info* info, std::size_t, void* address)
{
    *static_cast<std::uintptr_t*>(address) = info->dlpi_addr;
    return 1;
}
}

// The compiler's calls. Each source of the program makes the first two, always with the tables of the whole program.

extern "C" void __sanitizer_cov_trace_pc_guard_init(std::uint32_t* begin, std::uint32_t* end)
{
    if (flags != nullptr || reached::file() == nullptr)
        return;
    blockCount = static_cast<std::size_t>(end - begin);
    flags = sharedFlags(blockCount + 1);
    for (std::uint32_t number = 1; begin != end; ++begin, ++number)
        *begin = number; // 0 is a block that is not recorded
}

extern "C" void __sanitizer_cov_pcs_init(const std::uintptr_t* begin, const std::uintptr_t* end)
{
    placesBegin = begin;
    placesEnd = end;
}

extern "C" void __sanitizer_cov_trace_pc_guard(const std::uint32_t* guard)
{
    if (flags != nullptr)
        flags[*guard] = 1;
}

namespace reached
{
const char* file()
{
    return std::getenv("SONAVIT_REACHED");
}

std::vector<std::uint64_t> places()
{
    std::uintptr_t loaded = 0;
    dl_iterate_phdr(storeLoadAddress, &loaded);
    std::vector<std::uint64_t> result;
    for (const std::uintptr_t* place = placesBegin; place != placesEnd; place += 2) // address, properties
        result.push_back(*place - loaded);
    return result;
}

std::vector<std::uint32_t> take()
{
    std::vector<std::uint32_t> result;
    if (flags == nullptr)
        return result;
    for (std::size_t block = 0; block < blockCount; ++block)
    {
        unsigned char& flag = flags[block + 1];
        if (flag != 0)
            result.push_back(static_cast<std::uint32_t>(block));
        flag = 0;
    }
    return result;
}
}
