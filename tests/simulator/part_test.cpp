#include "tests/simulator/bench.h"

namespace
{
using bench::Held;
using bench::poison;
using bench::textOf;

template<class I>
const IID& idOf()
{
    return sim::InterfaceTraits<I>::iid();
}

class SimulatedPart : public bench::SimulationTest
{
protected:
    using Enumerate = HRESULT (STDMETHODCALLTYPE IPart::*)(IPartsList**);

    std::vector<std::string> neighbours(const std::string& id, Enumerate enumerate)
    {
        Held<IPartsList> list;
        EXPECT_EQ(S_OK, (part(id).get()->*enumerate)(list.put()));
        UINT count = 0;
        EXPECT_EQ(S_OK, list->GetCount(&count));
        std::vector<std::string> ids;
        for (UINT index = 0; index < count; ++index)
        {
            Held<IPart> neighbour;
            EXPECT_EQ(S_OK, list->GetPart(index, neighbour.put()));
            ids.push_back(textOf(neighbour, &IPart::GetGlobalId));
        }
        return ids;
    }
};

using SimulatedPartData = SimulatedPart;
using SimulatedPartGraph = SimulatedPart;
using SimulatedPartControls = SimulatedPart;

TEST_F(SimulatedPartData, IsWhatTheMachineSays)
{
    const Held<IPart> jack = part(speakerJack);
    const sim::Part model = *simulation.machine().part(speakerJack).part;

    UINT localId = 0;
    GUID subType = {};
    PartType type = ::Subunit;
    EXPECT_EQ(S_OK, jack->GetLocalId(&localId));
    EXPECT_EQ(S_OK, jack->GetSubType(&subType));
    EXPECT_EQ(S_OK, jack->GetPartType(&type));
    EXPECT_EQ(model.localId, localId);
    EXPECT_TRUE(IsEqualGUID(sim::nodetypes::speaker, subType));
    EXPECT_EQ(::Connector, type);
    EXPECT_EQ(model.name.value(), textOf(jack, &IPart::GetName));
    EXPECT_EQ(speakerJack, textOf(jack, &IPart::GetGlobalId));
}

TEST_F(SimulatedPartData, CanLackANameAndAnIdAndSucceedAllTheSame)
{
    simulation.change(
        [&](sim::Machine& machine)
        {
            machine.part(speakerJack)->name.reset();
            machine.part(speakerJack)->reportsId = false;
        });
    const Held<IPart> jack = part(speakerJack);

    auto* text = poison<WCHAR>();
    EXPECT_EQ(S_OK, jack->GetName(&text));
    EXPECT_EQ(nullptr, text);
    text = poison<WCHAR>();
    EXPECT_EQ(S_OK, jack->GetGlobalId(&text));
    EXPECT_EQ(nullptr, text);
    EXPECT_EQ(E_POINTER, jack->GetName(nullptr));
    EXPECT_EQ(E_POINTER, jack->GetSubType(nullptr));
}

TEST_F(SimulatedPartData, IsAConnectorOrASubunitButNotBoth)
{
    const Held<IPart> jack = part(speakerJack);
    const Held<IPart> node = part(volumeId);

    EXPECT_NE(nullptr, jack.as<IConnector>().get());
    EXPECT_NE(nullptr, node.as<ISubunit>().get());
    void* object = poison<void>();
    EXPECT_EQ(E_NOINTERFACE, jack->QueryInterface(idOf<ISubunit>(), &object));
    EXPECT_EQ(nullptr, object);
    object = poison<void>();
    EXPECT_EQ(E_NOINTERFACE, node->QueryInterface(idOf<IConnector>(), &object));
    EXPECT_EQ(nullptr, object);
    PartType type = ::Connector;
    EXPECT_EQ(S_OK, node->GetPartType(&type));
    EXPECT_EQ(::Subunit, type);
}

TEST_F(SimulatedPartGraph, ListsNeighboursInTheMachinesOrder)
{
    EXPECT_THAT(neighbours(speakerJack, &IPart::EnumPartsIncoming), testing::ElementsAre(volumeId));
    EXPECT_THAT(neighbours(volumeId, &IPart::EnumPartsOutgoing), testing::ElementsAre(speakerJack));
    EXPECT_THAT(neighbours(selectorId, &IPart::EnumPartsIncoming), testing::ElementsAre(microphoneJack, lineInJack));
}

TEST_F(SimulatedPartGraph, HasNoListWhereThereIsNoNeighbour)
{
    auto* list = poison<IPartsList>();
    EXPECT_EQ(E_NOTFOUND, part(speakerJack)->EnumPartsOutgoing(&list));
    EXPECT_EQ(nullptr, list);
    list = poison<IPartsList>();
    EXPECT_EQ(E_NOTFOUND, part(speakerStream)->EnumPartsIncoming(&list));
    EXPECT_EQ(nullptr, list);
    EXPECT_EQ(E_POINTER, part(speakerStream)->EnumPartsIncoming(nullptr));
}

TEST_F(SimulatedPartGraph, LeadsToTheTopologyOfItsDevice)
{
    Held<IDeviceTopology> found;
    ASSERT_EQ(S_OK, part(volumeId)->GetTopologyObject(found.put()));

    EXPECT_EQ(codecId, textOf(found, &IDeviceTopology::GetDeviceId));
    EXPECT_EQ(E_POINTER, part(volumeId)->GetTopologyObject(nullptr));
}

TEST_F(SimulatedPartGraph, LeadsToATopologyAlsoWhereTheDeviceCannotBeOpened)
{
    simulation.change([&](sim::Machine& machine) { machine.adapter(codecId)->openable = false; });

    Held<IDeviceTopology> found;
    EXPECT_EQ(S_OK, part(volumeId)->GetTopologyObject(found.put()));
}

TEST_F(SimulatedPartControls, AreActivatedWhereThePartHasThem)
{
    Held<IAudioVolumeLevel> volume;
    Held<IAudioMute> mute;
    Held<IAudioInputSelector> selector;
    EXPECT_EQ(S_OK, part(volumeId)->Activate(CLSCTX_ALL, idOf<IAudioVolumeLevel>(), volume.putVoid()));
    EXPECT_EQ(S_OK, part(muteId)->Activate(CLSCTX_ALL, idOf<IAudioMute>(), mute.putVoid()));
    EXPECT_EQ(S_OK, part(selectorId)->Activate(CLSCTX_ALL, idOf<IAudioInputSelector>(), selector.putVoid()));
}

TEST_F(SimulatedPartControls, StoreNullWhereThePartHasThemNot)
{
    for (const IID& iid : {idOf<IAudioMute>(), idOf<IAudioInputSelector>(), idOf<IAudioEndpointVolume>()})
    {
        void* object = poison<void>();
        EXPECT_EQ(E_NOINTERFACE, part(volumeId)->Activate(CLSCTX_ALL, iid, &object));
        EXPECT_EQ(nullptr, object);
    }
    EXPECT_EQ(E_POINTER, part(volumeId)->Activate(CLSCTX_ALL, idOf<IAudioVolumeLevel>(), nullptr));
}

// Microsoft's documentation of IPart::Activate.
TEST_F(SimulatedPartControls, AreActivatedInTheCallersProcessOnly)
{
    for (const DWORD context :
         {DWORD(0), DWORD(CLSCTX_LOCAL_SERVER), DWORD(CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER)})
    {
        void* object = poison<void>();
        EXPECT_EQ(E_INVALIDARG, part(volumeId)->Activate(context, idOf<IAudioVolumeLevel>(), &object)) << context;
        EXPECT_EQ(nullptr, object);
    }
    for (const DWORD context : {CLSCTX_INPROC_SERVER, CLSCTX_INPROC_HANDLER})
    {
        Held<IAudioVolumeLevel> volume;
        EXPECT_EQ(S_OK, part(volumeId)->Activate(context, idOf<IAudioVolumeLevel>(), volume.putVoid())) << context;
    }
}

TEST_F(SimulatedPartControls, AreDescribed)
{
    UINT count = 0;
    EXPECT_EQ(S_OK, part(speakerJack)->GetControlInterfaceCount(&count));
    EXPECT_EQ(0u, count);
    EXPECT_EQ(S_OK, part(volumeId)->GetControlInterfaceCount(&count));
    ASSERT_EQ(1u, count);

    Held<IControlInterface> control;
    ASSERT_EQ(S_OK, part(volumeId)->GetControlInterface(0, control.put()));
    GUID iid = {};
    EXPECT_EQ(S_OK, control->GetIID(&iid));
    EXPECT_TRUE(IsEqualGUID(idOf<IAudioVolumeLevel>(), iid));
    EXPECT_EQ("IAudioVolumeLevel", textOf(control, &IControlInterface::GetName));
    auto* past = poison<IControlInterface>();
    EXPECT_EQ(E_INVALIDARG, part(volumeId)->GetControlInterface(1, &past));
    EXPECT_EQ(nullptr, past);
}
}
