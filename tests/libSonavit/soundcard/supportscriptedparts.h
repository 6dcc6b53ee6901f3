/// Parts of a platform that hands something out along with a failure code.
#pragma once

#include "COM/identifiers.h"
#include "tests/libSonavit/supportstackobject.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace support
{
/// A copy of @p text, which is ASCII, in memory that its reader frees.
inline LPWSTR taskText(const std::string& text)
{
    LPWSTR copy = static_cast<LPWSTR>(CoTaskMemAlloc((text.size() + 1) * sizeof(WCHAR)));
    for (std::size_t i = 0; i <= text.size(); ++i)
        copy[i] = static_cast<WCHAR>(text.c_str()[i]);
    return copy;
}

class ScriptedPartsList final : public StackObject<IPartsList>
{
public:
    explicit ScriptedPartsList(std::vector<IPart*> held) : parts(std::move(held)) {}

    HRESULT STDMETHODCALLTYPE GetCount(UINT* count) override
    {
        *count = static_cast<UINT>(parts.size());
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE GetPart(UINT index, IPart** part) override
    {
        *part = parts.at(index);
        (*part)->AddRef();
        return S_OK;
    }

    std::vector<IPart*> parts;
};

/// A part without a topology, whose control comes with any result.
class ScriptedPart final : public StackObject<IPart>
{
public:
    explicit ScriptedPart(std::string globalId, const GUID& type = {}) : id(std::move(globalId)), subType(type) {}

    HRESULT STDMETHODCALLTYPE GetLocalId(UINT* localId) override { return none(localId); }
    HRESULT STDMETHODCALLTYPE GetPartType(PartType*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetControlInterfaceCount(UINT* count) override { return none(count); }
    HRESULT STDMETHODCALLTYPE GetControlInterface(UINT, IControlInterface** face) override { return none(face); }
    HRESULT STDMETHODCALLTYPE EnumPartsOutgoing(IPartsList** parts) override { return none(parts); }
    HRESULT STDMETHODCALLTYPE GetTopologyObject(IDeviceTopology** topology) override { return none(topology); }
    HRESULT STDMETHODCALLTYPE RegisterControlChangeCallback(REFGUID, IControlChangeNotify*) override { return E_FAIL; }
    HRESULT STDMETHODCALLTYPE UnregisterControlChangeCallback(IControlChangeNotify*) override { return E_FAIL; }

    HRESULT STDMETHODCALLTYPE GetGlobalId(LPWSTR* globalId) override
    {
        *globalId = taskText(id);
        if (afterId)
            afterId();
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE GetName(LPWSTR* partName) override
    {
        if (name.empty())
            return none(partName);
        *partName = taskText(name);
        if (afterName)
            afterName();
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE GetSubType(GUID* type) override
    {
        *type = subType;
        return S_OK;
    }

    /// The list belongs to the test: a walk to the neighbours never releases the list that it receives.
    HRESULT STDMETHODCALLTYPE EnumPartsIncoming(IPartsList** parts) override
    {
        *parts = incoming;
        return incoming == nullptr ? E_NOTFOUND : S_OK;
    }

    HRESULT STDMETHODCALLTYPE Activate(DWORD, REFIID, void** object) override
    {
        *object = control;
        return activation;
    }

    std::string id;
    std::string name; ///< none if empty
    GUID subType;
    std::function<void()> afterId;   ///< called when the id is allocated
    std::function<void()> afterName; ///< called when the name is allocated
    IPartsList* incoming = nullptr;
    void* control = nullptr; ///< handed out with the reference that the test has put on it, if any
    HRESULT activation = S_OK;

private:
    template<class Value>
    static HRESULT none(Value* value)
    {
        *value = Value();
        return E_FAIL;
    }
};

/// A connector or subunit together with its part.
template<class Component>
class ScriptedComponent : public StackObject<Component>
{
public:
    explicit ScriptedComponent(std::string id) : part(std::move(id)) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override
    {
        if (iid != IID_IPart)
            return StackObject<Component>::QueryInterface(iid, object);
        part.AddRef();
        *object = static_cast<IPart*>(&part);
        return S_OK;
    }

    ScriptedPart part;
};

typedef ScriptedComponent<ISubunit> ScriptedSubunit;

/// A connector that hands out its far side along with a failure code.
class ScriptedConnector final : public ScriptedComponent<IConnector>
{
public:
    using ScriptedComponent::ScriptedComponent;

    HRESULT STDMETHODCALLTYPE GetType(ConnectorType*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetDataFlow(DataFlow*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ConnectTo(IConnector*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Disconnect() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE IsConnected(BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetConnectorIdConnectedTo(LPWSTR*) override { return E_NOTIMPL; }

    HRESULT STDMETHODCALLTYPE GetConnectedTo(IConnector** connector) override
    {
        *connector = peer.get();
        peer->AddRef();
        return E_FAIL;
    }

    HRESULT STDMETHODCALLTYPE GetDeviceIdConnectedTo(LPWSTR* deviceId) override
    {
        *deviceId = taskText(farDevice);
        return E_FAIL;
    }

    COMPtr<IConnector>::pointer peer;
    std::string farDevice;
};
}
