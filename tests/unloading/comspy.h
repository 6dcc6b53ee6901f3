/// @file
/// Hears when COM is uninitialized.
#pragma once

#include "tests/unloading/events.h"

#include <objbase.h>

namespace unloading
{
/// Calls a function when COM is uninitialized on its thread.
class ComSpy final : public IInitializeSpy
{
public:
    explicit ComSpy(void (*heard)()) : m_heard(heard) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override
    {
        const bool isKnown = IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, IID_IInitializeSpy);
        *object = isKnown ? this : nullptr;
        return isKnown ? S_OK : E_NOINTERFACE;
    }

    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE PreInitialize(DWORD, DWORD) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE PostInitialize(HRESULT result, DWORD, DWORD) override { return result; }

    HRESULT STDMETHODCALLTYPE PreUninitialize(DWORD) override
    {
        m_heard();
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE PostUninitialize(DWORD) override { return S_OK; }

private:
    void (*const m_heard)();
};

/// Calls @p heard at each CoUninitialize on the calling thread from now on, to the end of the process. The thread must
/// have called CoInitialize.
inline void watchCom(void (*heard)())
{
    auto* const spy = new ComSpy(heard); // lasts
    ULARGE_INTEGER cookie = {};
    if (FAILED(CoRegisterInitializeSpy(spy, &cookie)))
        printLine("COM cannot be watched");
}
}
