/// @file
/// Integer, text and handle types under their SDK names and with their SDK sizes.
///
/// ULONG, DWORD, LONG and HRESULT have 32 bits on every host; `long` would have 64 on most of them.
#pragma once

#include <cstddef>
#include <cstdint>

/// Calling conventions have no meaning off Windows; the names stay so that declarations read the same.
#define STDMETHODCALLTYPE
#define WINAPI

/// A function that the provider of the platform defines, visible even in a build that hides symbols by default.
#define SONAVIT_PLATFORM_FUNCTION extern "C" __attribute__((visibility("default")))

#ifndef __int64
#define __int64 long long
#endif

#ifndef FALSE
#define FALSE 0
#endif
#ifndef TRUE
#define TRUE 1
#endif

using BYTE = unsigned char;
using CHAR = char;
using UCHAR = unsigned char;
using SHORT = std::int16_t;
using USHORT = std::uint16_t;
using WORD = std::uint16_t;
using INT = int;
using UINT = unsigned int;
using UINT32 = std::uint32_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using DWORD = std::uint32_t;
using LONGLONG = long long;
using ULONGLONG = unsigned long long;
using UINT64 = unsigned long long;
using BOOL = int;
using FLOAT = float;
using DOUBLE = double;
using HRESULT = std::int32_t;
using SIZE_T = std::size_t;
using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using LONG_PTR = std::intptr_t;
using ULONG_PTR = std::uintptr_t;
using DWORD_PTR = std::uintptr_t;

using WCHAR = unsigned short;
using OLECHAR = WCHAR;
using LPSTR = CHAR*;
using LPCSTR = const CHAR*;
using LPWSTR = WCHAR*;
using LPCWSTR = const WCHAR*;
using LPOLESTR = OLECHAR*;
using LPCOLESTR = const OLECHAR*;
using LPVOID = void*;
using HANDLE = void*;

/// 64-bit numbers that the SDK wraps in a union; only the whole number is offered here.
union LARGE_INTEGER
{
    LONGLONG QuadPart;
};

union ULARGE_INTEGER
{
    ULONGLONG QuadPart;
};

struct FILETIME
{
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

/// Time in units of 100 nanoseconds.
using REFERENCE_TIME = LONGLONG;

static_assert(sizeof(WCHAR) == 2, "text units have 16 bits");
static_assert(sizeof(BOOL) == 4 && sizeof(UINT) == 4, "BOOL and UINT have 32 bits");
static_assert(sizeof(LONG) == 4 && sizeof(ULONG) == 4 && sizeof(DWORD) == 4, "long types have 32 bits");
static_assert(sizeof(HRESULT) == 4, "results have 32 bits");
static_assert(sizeof(DWORD_PTR) == sizeof(void*), "DWORD_PTR holds a pointer");
static_assert(sizeof(FILETIME) == 8 && sizeof(LARGE_INTEGER) == 8, "64-bit values");
