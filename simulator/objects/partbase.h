/// @file
/// IPart of connectors and subunits.
#pragma once

#include "simulator/core/simulatedobject.h"
#include "simulator/core/unregistration.h"
#include "simulator/objects/lookup.h"
#include "simulator/objects/objects.h"

#include <algorithm>

namespace sim
{
/// A control of a part.
struct ControlOfPart
{
    IID iid;
    OptionalString name;
    bool isKnown = true; ///< false: the machine only lists it
};

/// The controls of @p part in the order in which it lists them.
std::vector<ControlOfPart> controlsOf(const Part& part);

/// As makeConnector() and makeSubunit().
IPart* makeConnectorAsPart(const std::shared_ptr<State>& state, const std::string& partId);
IPart* makeSubunitAsPart(const std::shared_ptr<State>& state, const std::string& partId);

/// IPart beside Own, which is IConnector or ISubunit. The object's name is the part's global id.
template<class Own>
class PartBase : public ComObject<Own, IPart>
{
public:
    using ComObject<Own, IPart>::ComObject;

    HRESULT STDMETHODCALLTYPE GetName(LPWSTR* name) override
    {
        return this->call(
            "IPart::GetName", outputs(name),
            [&] { return read([&](const Part& part) { return this->storeText("IPart::GetName", part.name, name); }); });
    }

    HRESULT STDMETHODCALLTYPE GetLocalId(UINT* id) override
    {
        return this->call("IPart::GetLocalId", outputs(id),
                          [&]
                          {
                              return read(
                                  [&](const Part& part)
                                  {
                                      *id = part.localId;
                                      return S_OK;
                                  });
                          });
    }

    HRESULT STDMETHODCALLTYPE GetGlobalId(LPWSTR* globalId) override
    {
        return this->call("IPart::GetGlobalId", outputs(globalId),
                          [&]
                          {
                              return read(
                                  [&](const Part& part) {
                                      return part.reportsId ? this->storeText("IPart::GetGlobalId", part.id, globalId)
                                                            : S_OK;
                                  });
                          });
    }

    HRESULT STDMETHODCALLTYPE GetPartType(PartType* type) override
    {
        return this->call("IPart::GetPartType", outputs(type),
                          [&]() -> HRESULT
                          {
                              *type = std::is_same_v<Own, IConnector> ? ::Connector : ::Subunit;
                              return S_OK;
                          });
    }

    HRESULT STDMETHODCALLTYPE GetSubType(GUID* subType) override
    {
        return this->call("IPart::GetSubType", outputs(subType),
                          [&]
                          {
                              return read(
                                  [&](const Part& part)
                                  {
                                      *subType = part.subType;
                                      return S_OK;
                                  });
                          });
    }

    HRESULT STDMETHODCALLTYPE GetControlInterfaceCount(UINT* count) override
    {
        return this->call("IPart::GetControlInterfaceCount", outputs(count),
                          [&]
                          {
                              return readControls(
                                  [&](const std::vector<ControlOfPart>& controls)
                                  {
                                      *count = static_cast<UINT>(controls.size());
                                      return S_OK;
                                  });
                          });
    }

    HRESULT STDMETHODCALLTYPE GetControlInterface(UINT index, IControlInterface** description) override
    {
        const auto answer = [&]
        {
            return readControls(
                [&](const std::vector<ControlOfPart>& controls)
                {
                    if (index >= controls.size())
                        return E_INVALIDARG;
                    const ControlOfPart& control = controls[index];
                    *description = makeControlInterface(this->state(), this->name(), index, control.iid, control.name);
                    return S_OK;
                });
        };
        return this->call("IPart::GetControlInterface", outputs(description), answer, index);
    }

    HRESULT STDMETHODCALLTYPE EnumPartsIncoming(IPartsList** parts) override
    {
        return this->call("IPart::EnumPartsIncoming", outputs(parts),
                          [&] { return list(ListedParts::incoming, parts); });
    }

    HRESULT STDMETHODCALLTYPE EnumPartsOutgoing(IPartsList** parts) override
    {
        return this->call("IPart::EnumPartsOutgoing", outputs(parts),
                          [&] { return list(ListedParts::outgoing, parts); });
    }

    HRESULT STDMETHODCALLTYPE GetTopologyObject(IDeviceTopology** topology) override
    {
        return this->call("IPart::GetTopologyObject", outputs(topology),
                          [&]() -> HRESULT
                          {
                              std::string deviceId;
                              const HRESULT result = onPart(*this->state(), this->name(),
                                                            [&](const ChangeablePartPlace& place)
                                                            {
                                                                deviceId = place.device->id;
                                                                return S_OK;
                                                            });
                              if (SUCCEEDED(result))
                                  *topology = makeTopology(this->state(), deviceId);
                              return result;
                          });
    }

    /// Controls exist in the caller's process only. The journal records the interface first, as for
    /// IMMDevice::Activate.
    HRESULT STDMETHODCALLTYPE Activate(DWORD context, REFIID iid, void** object) override
    {
        const auto answer = [&]() -> HRESULT
        {
            if ((context & (CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER)) == 0)
                return E_INVALIDARG;
            if (describesJacks(iid))
                return activateJackDescription(iid, object);
            const HRESULT result = findControl(iid);
            if (FAILED(result))
                return result;
            if (IsEqualGUID(iid, InterfaceTraits<IAudioVolumeLevel>::iid()))
                *object = makeVolumeLevel(this->state(), this->name());
            else if (IsEqualGUID(iid, InterfaceTraits<IAudioMute>::iid()))
                *object = makeMute(this->state(), this->name());
            else
                *object = makeInputSelector(this->state(), this->name());
            return S_OK;
        };
        return this->call("IPart::Activate", outputs(object), answer, iid, context);
    }

    HRESULT STDMETHODCALLTYPE RegisterControlChangeCallback(REFGUID iid, IControlChangeNotify* notify) override
    {
        const auto answer = [&]() -> HRESULT
        {
            if (notify == nullptr)
                return E_POINTER;
            const HRESULT result = findControl(iid);
            if (SUCCEEDED(result))
                this->state()->controlListeners(this->name(), argumentText(iid))->add(notify);
            return result;
        };
        return this->call("IPart::RegisterControlChangeCallback", outputs(), answer, iid, presenceText(notify));
    }

    HRESULT STDMETHODCALLTYPE UnregisterControlChangeCallback(IControlChangeNotify* notify) override
    {
        const auto answer = [&](const WatchedCall& watched) -> HRESULT
        {
            if (notify == nullptr)
                return E_POINTER;
            const auto isTakenOff = [&](const std::shared_ptr<State::ControlListeners>& listeners)
            { return unregister(*this->state(), *listeners, notify, watched); };
            const auto all = this->state()->controlListeners(this->name());
            return std::any_of(all.begin(), all.end(), isTakenOff) ? S_OK : E_NOTFOUND;
        };
        return this->call("IPart::UnregisterControlChangeCallback", outputs(), answer, presenceText(notify));
    }

protected:
    template<class Action>
    HRESULT read(const Action& action) const
    {
        return onPart(*this->state(), this->name(),
                      [&](const ChangeablePartPlace& place) { return action(*place.part); });
    }

private:
    static bool describesJacks(REFIID iid)
    {
        return IsEqualGUID(iid, InterfaceTraits<IKsJackDescription>::iid()) ||
               IsEqualGUID(iid, InterfaceTraits<IKsJackDescription2>::iid());
    }

    /// Descriptions are no controls: they are not listed, and no client can register for them.
    HRESULT activateJackDescription(REFIID iid, void** object) const
    {
        const HRESULT result = onPart(*this->state(), this->name(),
                                      [&](const ChangeablePartPlace& place)
                                      {
                                          const Connector* const connector = place.connector;
                                          const bool isPhysical =
                                              connector != nullptr && (connector->type == Physical_External ||
                                                                       connector->type == Physical_Internal);
                                          return isPhysical && !connector->jacks.empty() ? S_OK : E_NOINTERFACE;
                                      });
        if (FAILED(result))
            return result;
        if (IsEqualGUID(iid, InterfaceTraits<IKsJackDescription>::iid()))
            *object = makeJackDescription(this->state(), this->name());
        else
            *object = makeJackDescription2(this->state(), this->name());
        return S_OK;
    }

    /// Calls @p action with the part's controls, outside the machine's lock.
    template<class Action>
    HRESULT readControls(const Action& action) const
    {
        std::vector<ControlOfPart> controls;
        const HRESULT result = read(
            [&](const Part& part)
            {
                controls = controlsOf(part);
                return S_OK;
            });
        return SUCCEEDED(result) ? action(controls) : result;
    }

    /// E_NOINTERFACE if the part has no such control, or only lists it.
    HRESULT findControl(REFIID iid) const
    {
        return readControls(
            [&](const std::vector<ControlOfPart>& controls)
            {
                const auto isMeant = [&](const ControlOfPart& control)
                { return control.isKnown && IsEqualGUID(control.iid, iid); };
                return std::any_of(controls.begin(), controls.end(), isMeant) ? S_OK : E_NOINTERFACE;
            });
    }

    HRESULT list(ListedParts neighbours, IPartsList** parts) const
    {
        std::vector<std::string> ids;
        const HRESULT result = read(
            [&](const Part& part)
            {
                ids = neighbours == ListedParts::incoming ? part.incoming : part.outgoing;
                return ids.empty() ? E_NOTFOUND : S_OK;
            });
        if (SUCCEEDED(result))
            *parts = makePartsList(this->state(), this->name(), neighbours, std::move(ids));
        return result;
    }
};
}
