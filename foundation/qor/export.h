/// Export marks of the foundation module.
///
/// Off Windows the mark always makes the symbol visible. On Windows a shared build defines SONAVIT_SHARED for all
/// targets and QOR_BUILDING for the module itself; without SONAVIT_SHARED the mark is empty, as a static build needs.
#pragma once

#if defined(_WIN32)
#if !defined(SONAVIT_SHARED)
#define QOR_API
#elif defined(QOR_BUILDING)
#define QOR_API __declspec(dllexport)
#else
#define QOR_API __declspec(dllimport)
#endif
#else
#define QOR_API __attribute__((visibility("default")))
#endif

/// Mark of a function that hardly ever runs: compilers keep the way to it out of the code around its call.
#if defined(__GNUC__) // clang and mingw-w64 too
#define QOR_COLD __attribute__((cold))
#else
#define QOR_COLD
#endif

/// Mark of a class template whose instances cross module boundaries. A C++ runtime that compares types by address, such
/// as libc++, then sees the same type in all modules. Runtimes that compare by name need no mark.
#if defined(__clang__) && !defined(_WIN32)
#define QOR_SHARED_TYPE __attribute__((type_visibility("default")))
#else
#define QOR_SHARED_TYPE
#endif
