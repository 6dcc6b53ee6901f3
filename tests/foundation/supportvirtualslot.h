#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

// Pointers to members are read as gcc, clang and mingw encode them on this processor.
#if defined(__GNUC__) && defined(__x86_64__)
#define SUPPORT_HAS_VIRTUAL_SLOTS 1

namespace support
{
/// Place of a virtual operation in the table of its class. A virtual destructor takes up two places.
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
