#pragma once

#include "tests/COM/supportcountedobject.h"

namespace support
{
/// A notification client that counts its references and records the calls of its reference counting and of
/// OnDeviceAdded. The last Release does not destroy it, so a test holds it by value.
class CountedClient final : public IMMNotificationClient
{
public:
    CountedClient(CallList& calls, std::string name) : m_calls(calls), m_name(std::move(name)) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override
    {
        *object = nullptr;
        return E_NOINTERFACE;
    }

    ULONG STDMETHODCALLTYPE AddRef() override
    {
        m_calls.push_back(m_name + " AddRef");
        return ++count;
    }

    ULONG STDMETHODCALLTYPE Release() override
    {
        m_calls.push_back(m_name + " Release");
        return --count;
    }

    HRESULT STDMETHODCALLTYPE OnDeviceStateChanged(LPCWSTR, DWORD) override { return S_OK; }

    HRESULT STDMETHODCALLTYPE OnDeviceAdded(LPCWSTR) override
    {
        m_calls.push_back(m_name + " OnDeviceAdded");
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE OnDeviceRemoved(LPCWSTR) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnDefaultDeviceChanged(EDataFlow, ERole, LPCWSTR) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnPropertyValueChanged(LPCWSTR, const PROPERTYKEY) override { return S_OK; }

    /// A handle with a new reference.
    COMPtr<IMMNotificationClient>::pointer handle()
    {
        ++count; // not recorded, because the test takes it
        return this;
    }

    ULONG count = 0;

private:
    CallList& m_calls;
    const std::string m_name;
};
}
