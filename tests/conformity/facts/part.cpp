// Parts of a hardware graph and their controls.
#include "tests/conformity/fact.h"
#include "tests/conformity/results.h"
#include "tests/conformity/system.h"

#include <algorithm>
#include <cmath>

namespace conformity
{
namespace
{
using PartAction = std::function<void(IPart& part, const std::string& id, bool isConnector)>;

/// Calls @p action with each part of each adapter that an endpoint leads to.
void eachPart(System& system, const PartAction& action)
{
    system.eachAdapter(
        [&](const std::string&, IMMDevice&, IDeviceTopology& topology)
        {
            UINT connectors = 0;
            UINT subunits = 0;
            topology.GetConnectorCount(&connectors);
            topology.GetSubunitCount(&subunits);
            for (UINT index = 0; index < connectors; ++index)
            {
                Held<IConnector> connector;
                topology.GetConnector(index, connector.put());
                if (const Held<IPart> part = connector.as<IPart>())
                    action(*part.get(), textOf(*part.get(), &IPart::GetGlobalId), true);
            }
            for (UINT index = 0; index < subunits; ++index)
            {
                Held<ISubunit> subunit;
                topology.GetSubunit(index, subunit.put());
                if (const Held<IPart> part = subunit.as<IPart>())
                    action(*part.get(), textOf(*part.get(), &IPart::GetGlobalId), false);
            }
        });
}

template<class I>
Held<I> controlOf(IPart& part)
{
    Held<I> control;
    part.Activate(CLSCTX_ALL, sim::InterfaceTraits<I>::iid(), control.putVoid());
    return control;
}

Finding localIdsHaveClasses(System& system)
{
    Observation observation;
    eachPart(system,
             [&](IPart& part, const std::string& id, bool isConnector)
             {
                 UINT localId = 0;
                 part.GetLocalId(&localId);
                 const bool isRight = localId >> 16 == (isConnector ? 1u : 2u);
                 observation.see(isRight, isRight ? "0x1xxxx, 0x2xxxx" : std::to_string(localId), id);
             });
    return observation.finding("no adapter");
}

Finding neighboursOfNobody(System& system)
{
    Observation observation;
    eachPart(system,
             [&](IPart& part, const std::string& id, bool)
             {
                 IPartsList* list = poison<IPartsList>();
                 const HRESULT result = part.EnumPartsIncoming(&list);
                 UINT count = 0;
                 if (SUCCEEDED(result))
                     list->GetCount(&count);
                 if (count == 0)
                     observation.see(result == E_NOTFOUND && list == nullptr, resultName(result), id);
                 if (SUCCEEDED(result))
                     list->Release();
             });
    return observation.finding("no part without neighbours");
}

/// Tries the control I of @p part, if it has one.
template<class I>
void activateOutOfProcess(Observation& observation, IPart& part, const std::string& id)
{
    if (!controlOf<I>(part))
        return;
    Held<I> control;
    const HRESULT result = part.Activate(CLSCTX_LOCAL_SERVER, sim::InterfaceTraits<I>::iid(), control.putVoid());
    observation.see(result == E_INVALIDARG, resultName(result), id);
}

Finding contextMustBeInProcess(System& system)
{
    Observation observation;
    eachPart(system,
             [&](IPart& part, const std::string& id, bool)
             {
                 activateOutOfProcess<IAudioVolumeLevel>(observation, part, id);
                 activateOutOfProcess<IAudioMute>(observation, part, id);
                 activateOutOfProcess<IAudioInputSelector>(observation, part, id);
             });
    return observation.finding("no part with a control");
}

Finding absentControl(System& system)
{
    Observation observation;
    eachPart(system,
             [&](IPart& part, const std::string& id, bool)
             {
                 void* object = poison<IUnknown>();
                 const HRESULT result = part.Activate(CLSCTX_ALL, sim::InterfaceTraits<IMMDevice>::iid(), &object);
                 const bool isRight = result == E_NOINTERFACE && object == nullptr;
                 observation.see(isRight, resultName(result) + (object == nullptr ? ", null" : ""), id);
             });
    return observation.finding("no part");
}

Finding partLevelsSnap(System& system)
{
    if (!system.mayChange())
        return {Verdict::notTried, "needs --change"};
    Observation observation;
    eachPart(system,
             [&](IPart& part, const std::string& id, bool)
             {
                 const Held<IAudioVolumeLevel> volume = controlOf<IAudioVolumeLevel>(part);
                 float minimum = 0;
                 float maximum = 0;
                 float step = 0;
                 float before = 0;
                 if (!volume || FAILED(volume->GetLevelRange(0, &minimum, &maximum, &step)) || step <= 0 ||
                     maximum - minimum < step || FAILED(volume->GetLevel(0, &before)))
                     return;
                 float found = 0;
                 volume->SetLevel(0, minimum + 0.4f * step, nullptr);
                 volume->GetLevel(0, &found);
                 volume->SetLevel(0, before, nullptr);
                 const float steps = (found - minimum) / step;
                 const bool isOnStep = std::fabs(steps - std::round(steps)) < 0.01f;
                 observation.see(isOnStep, isOnStep ? "on a step" : std::to_string(found), id);
             });
    return observation.finding("no hardware volume");
}

Finding jacksAreDescribed(System& system)
{
    Observation observation;
    eachPart(system,
             [&](IPart& part, const std::string& id, bool)
             {
                 const Held<IKsJackDescription> jacks = controlOf<IKsJackDescription>(part);
                 UINT count = 0;
                 KSJACK_DESCRIPTION description = {};
                 if (!jacks)
                     return;
                 const bool isRight = SUCCEEDED(jacks->GetJackCount(&count)) && count > 0 &&
                                      SUCCEEDED(jacks->GetJackDescription(0, &description)) &&
                                      jacks->GetJackDescription(count, &description) == E_INVALIDARG;
                 observation.see(isRight, isRight ? "described" : "not described", id);
             });
    return observation.finding("no jack with a description");
}
}

Facts partFacts()
{
    return {
        {"Local ids of connectors and of subunits", "0x1xxxx, 0x2xxxx", "published listings of hardware graphs",
         localIdsHaveClasses},
        {"The neighbours of a part that has none", "E_NOTFOUND",
         "Microsoft's documentation of IPart::EnumPartsIncoming", neighboursOfNobody},
        {"A control activated without an in-process context", "E_INVALIDARG",
         "Microsoft's documentation of IPart::Activate", contextMustBeInProcess},
        {"A control that a part does not have", "E_NOINTERFACE, null", "Microsoft's documentation of IPart::Activate",
         absentControl},
        {"The level of a hardware volume snaps to a step", "on a step",
         "Microsoft's documentation of IPerChannelDbLevel::SetLevel", partLevelsSnap},
        {"A jack describes itself, and no further jack", "described", "Microsoft's documentation of IKsJackDescription",
         jacksAreDescribed},
    };
}
}
