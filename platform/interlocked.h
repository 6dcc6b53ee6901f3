/// @file
/// Atomic counting.
#pragma once

#include "platform/coreaudio.h"

namespace platform
{

/// Adds one to @p counter, atomically and with full ordering.
/// @return the new value
inline LONG interlockedIncrement(volatile LONG* counter)
{
#if defined(_WIN32)
    return InterlockedIncrement(counter);
#else
    return __atomic_add_fetch(counter, 1, __ATOMIC_SEQ_CST);
#endif
}

/// Subtracts one from @p counter, atomically and with full ordering.
/// @return the new value; the caller that gets 0 is the last one
inline LONG interlockedDecrement(volatile LONG* counter)
{
#if defined(_WIN32)
    return InterlockedDecrement(counter);
#else
    return __atomic_sub_fetch(counter, 1, __ATOMIC_SEQ_CST);
#endif
}

}
