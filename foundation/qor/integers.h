/// The 64-bit integer spelling of Windows compilers, for compilers that lack it.
#pragma once

#if !defined(_MSC_VER) && !defined(__int64)
#define __int64 long long
#endif
