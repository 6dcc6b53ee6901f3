/// Export marks of the foundation module.
///
/// Off Windows every use makes the symbol visible, whatever is defined. On Windows the shared build defines
/// SONAVIT_SHARED for everybody and QOR_BUILDING for the module itself; without SONAVIT_SHARED the marks are empty, as
/// a static build needs.
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

/// Mark of a class template that crosses module boundaries. C++ runtimes that compare types by address, as libc++ does,
/// then see one type in all modules; the others compare by name and need no mark.
#if defined(__clang__) && !defined(_WIN32)
#define QOR_SHARED_TYPE __attribute__((type_visibility("default")))
#else
#define QOR_SHARED_TYPE
#endif
