/// The IUnknown of a platform object that a test writes itself.
#pragma once

#include "COM/comptr.h"

namespace support
{
/// Lives on the stack of a test, which owns the first reference. All other references must be released before the
/// object ends.
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

    /// A handle with a reference of its own.
    typename COMPtr<Interface>::pointer handle()
    {
        AddRef();
        return static_cast<Interface*>(this);
    }

    ULONG references = 1;
};
}
