/// Export macro of the client layer.
///
/// On Windows the shared build defines SONAVIT_CLIENT_SHARED for all targets and SONAVIT_CLIENT_BUILDING for the layer
/// itself. Without SONAVIT_CLIENT_SHARED the macro is empty, as a static build requires. On other systems it always
/// makes the symbol visible.
#pragma once

#if defined(_WIN32)
#if !defined(SONAVIT_CLIENT_SHARED)
#define SONAVIT_CLIENT_API
#elif defined(SONAVIT_CLIENT_BUILDING)
#define SONAVIT_CLIENT_API __declspec(dllexport)
#else
#define SONAVIT_CLIENT_API __declspec(dllimport)
#endif
#else
#define SONAVIT_CLIENT_API __attribute__((visibility("default")))
#endif
