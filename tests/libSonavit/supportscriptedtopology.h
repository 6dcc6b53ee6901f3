/// A topology that a test writes itself.
#pragma once

#include "tests/libSonavit/supportstackobject.h"

namespace support
{
/// A topology without an id, parts and paths; a test overrides what it needs.
class ScriptedTopology : public StackObject<IDeviceTopology>
{
public:
    HRESULT STDMETHODCALLTYPE GetConnectorCount(UINT* count) override { return none(count); }
    HRESULT STDMETHODCALLTYPE GetConnector(UINT, IConnector** connector) override { return none(connector); }
    HRESULT STDMETHODCALLTYPE GetSubunitCount(UINT* count) override { return none(count); }
    HRESULT STDMETHODCALLTYPE GetSubunit(UINT, ISubunit** subunit) override { return none(subunit); }
    HRESULT STDMETHODCALLTYPE GetPartById(UINT, IPart** part) override { return none(part); }
    HRESULT STDMETHODCALLTYPE GetDeviceId(LPWSTR* id) override { return none(id); }
    HRESULT STDMETHODCALLTYPE GetSignalPath(IPart*, IPart*, BOOL, IPartsList** parts) override { return none(parts); }

private:
    template<class Value>
    static HRESULT none(Value* value)
    {
        *value = Value();
        return S_OK;
    }
};
}
