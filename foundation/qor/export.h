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
