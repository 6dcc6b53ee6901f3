/// The COM side of a platform object that a test writes itself.
#pragma once

#include "COM/comptr.h"

namespace support
{
/// Stands on the stack of a test, which holds the first reference; further ones are counted and must be gone before it
/// is.
template<class Interface>
class StackObject : public Interface
{
public:
    StackObject() = default;
    StackObject(const StackObject&) = delete;
    StackObject& operator=(const StackObject&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override
    {
        *object = nullptr;
        return E_NOINTERFACE;
    }

    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    /// With a reference of its own.
    typename COMPtr<Interface>::pointer handle()
    {
        AddRef();
        return static_cast<Interface*>(this);
    }

    ULONG references = 1;
};
} // namespace support
