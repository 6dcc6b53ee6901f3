/// Export marks of the library.
///
/// Off Windows every use makes the symbol visible, whatever is defined. On Windows the shared build defines
/// SONAVIT_SHARED for everybody and SONAVIT_BUILDING for the library itself; without SONAVIT_SHARED the marks are
/// empty, as a static build needs.
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
