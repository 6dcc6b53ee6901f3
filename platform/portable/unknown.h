/// @file
/// IUnknown, the root of every interface.
#pragma once

#include "platform/portable/guid.h"
#include "platform/portable/results.h"

/// Interfaces have virtual functions and no virtual destructor: objects end by Release, never by delete, and a
/// destructor would take a place among the functions. The pair of macros keeps compilers from warning about that in
/// users' builds.
///
/// They also make the interfaces visible in a build that hides symbols by default: a class template is exported only if
/// its arguments are visible, whatever it says of itself.
#define SONAVIT_INTERFACES_BEGIN                                           \
    _Pragma("GCC visibility push(default)") _Pragma("GCC diagnostic push") \
        _Pragma("GCC diagnostic ignored \"-Wnon-virtual-dtor\"")
#define SONAVIT_INTERFACES_END _Pragma("GCC diagnostic pop") _Pragma("GCC visibility pop")

SONAVIT_INTERFACES_BEGIN

struct IUnknown
{
    /// On success *object holds a counted reference; on failure it holds null.
    virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) = 0;
    /// Both return the new count, and it is a true one: this library reads it.
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;
};

SONAVIT_INTERFACES_END

using LPUNKNOWN = IUnknown*;

inline const IID IID_IUnknown = {0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
