#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

// Reads pointers to members as gcc, clang and mingw encode them on this processor.
#if defined(__GNUC__) && defined(__x86_64__)
#define SUPPORT_HAS_VIRTUAL_SLOTS 1

namespace support
{
/// Index of a virtual operation in the virtual table of its class. A virtual destructor takes two entries.
template<class Member>
std::size_t virtualSlot(Member member)
{
    std::uintptr_t encoded = 0;
    static_assert(sizeof(member) >= sizeof(encoded), "not a pointer to an operation");
    std::memcpy(&encoded, &member, sizeof(encoded));
    return (encoded - 1) / sizeof(void*);
}
}
#endif
