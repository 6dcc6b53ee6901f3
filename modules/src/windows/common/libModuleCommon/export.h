/// Export macro of the library.
///
/// On Windows the shared build defines SONAVIT_SHARED for all targets and SONAVIT_BUILDING for the library itself.
/// Without SONAVIT_SHARED the macro is empty, as a static build requires. On other systems it always makes the symbol
/// visible.
#pragma once

#if defined(_WIN32)
#if !defined(SONAVIT_SHARED)
#define SONAVIT_API
#elif defined(SONAVIT_BUILDING)
#define SONAVIT_API __declspec(dllexport)
#else
#define SONAVIT_API __declspec(dllimport)
#endif
#else
#define SONAVIT_API __attribute__((visibility("default")))
#endif
