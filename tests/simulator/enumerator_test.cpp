#include "tests/simulator/bench.h"

#include <memory>

namespace
{
using bench::Held;
using bench::poison;
using bench::textOf;
using bench::Wide;
using testing::ElementsAre;

class SimulatedEnumerator : public bench::SimulationTest
{
protected:
    std::vector<std::string> listed(EDataFlow flow, DWORD mask)
    {
        Held<IMMDeviceCollection> collection;
        EXPECT_EQ(S_OK, enumerator->EnumAudioEndpoints(flow, mask, collection.put()));
        return idsOf(collection);
    }

    static std::vector<std::string> idsOf(const Held<IMMDeviceCollection>& collection)
    {
        UINT count = 0;
        EXPECT_EQ(S_OK, collection->GetCount(&count));
        std::vector<std::string> ids;
        for (UINT index = 0; index < count; ++index)
        {
            Held<IMMDevice> item;
            EXPECT_EQ(S_OK, collection->Item(index, item.put()));
            ids.push_back(textOf(item, &IMMDevice::GetId));
        }
        return ids;
    }

    Held<IMMDeviceEnumerator> enumerator = createdEnumerator();
};

using SimulatedEnumeratorList = SimulatedEnumerator;
using SimulatedEnumeratorDefault = SimulatedEnumerator;
using SimulatedEnumeratorGetDevice = SimulatedEnumerator;
using SimulatedEnumeratorClients = SimulatedEnumerator;
using SimulatedEnumeratorObject = SimulatedEnumerator;

TEST_F(SimulatedEnumeratorList, ListsTheEndpointsOfAFlowInTheMachinesOrder)
{
    EXPECT_THAT(listed(eRender, DEVICE_STATEMASK_ALL), ElementsAre(speakerId, earphoneId));
    EXPECT_THAT(listed(eCapture, DEVICE_STATEMASK_ALL), ElementsAre(microphoneId, lineInId));
    EXPECT_THAT(listed(eAll, DEVICE_STATEMASK_ALL), ElementsAre(speakerId, microphoneId, lineInId, earphoneId));
}

TEST_F(SimulatedEnumeratorList, ListsOnlyTheStatesOfTheMask)
{
    EXPECT_THAT(listed(eCapture, DEVICE_STATE_UNPLUGGED), ElementsAre(microphoneId));
    EXPECT_THAT(listed(eCapture, DEVICE_STATE_ACTIVE | DEVICE_STATE_DISABLED), ElementsAre(lineInId));
    EXPECT_THAT(listed(eCapture, DEVICE_STATE_NOTPRESENT), ElementsAre());
}

TEST_F(SimulatedEnumeratorList, LeavesOutWhatIsNotInstalled)
{
    simulation.events().remove(speakerId);

    EXPECT_THAT(listed(eRender, DEVICE_STATEMASK_ALL), ElementsAre(earphoneId));
}

TEST_F(SimulatedEnumeratorList, GivesASnapshotThatLaterEventsDoNotTouch)
{
    Held<IMMDeviceCollection> collection;
    ASSERT_EQ(S_OK, enumerator->EnumAudioEndpoints(eRender, DEVICE_STATE_ACTIVE, collection.put()));

    simulation.events().unplug(speakerId);
    simulation.events().remove(earphoneId);

    EXPECT_THAT(idsOf(collection), ElementsAre(speakerId, earphoneId));
}

// Wine's tests of the enumerator, which were run on Windows: a flow or a mask that does not exist is E_INVALIDARG, and
// null is stored.
TEST_F(SimulatedEnumeratorList, RefusesMasksAndFlowsThatDoNotExist)
{
    for (const DWORD mask : {0x0u, 0x10u, 0xFFu})
    {
        auto* collection = poison<IMMDeviceCollection>();
        EXPECT_EQ(E_INVALIDARG, enumerator->EnumAudioEndpoints(eRender, mask, &collection));
        EXPECT_EQ(nullptr, collection);
    }
    auto* collection = poison<IMMDeviceCollection>();
    EXPECT_EQ(E_INVALIDARG, enumerator->EnumAudioEndpoints(EDataFlow_enum_count, 15, &collection));
    EXPECT_EQ(nullptr, collection);
    EXPECT_EQ(E_POINTER, enumerator->EnumAudioEndpoints(eRender, 15, nullptr));
}

// Wine's tests of the enumerator, which were run on Windows.
TEST_F(SimulatedEnumeratorList, RefusesAnItemPastTheEndAndStoresNull)
{
    Held<IMMDeviceCollection> collection;
    ASSERT_EQ(S_OK, enumerator->EnumAudioEndpoints(eRender, 15, collection.put()));

    auto* item = poison<IMMDevice>();
    EXPECT_EQ(E_INVALIDARG, collection->Item(2, &item));
    EXPECT_EQ(nullptr, item);
    EXPECT_EQ(E_POINTER, collection->Item(0, nullptr));
    EXPECT_EQ(E_POINTER, collection->GetCount(nullptr));
}

TEST_F(SimulatedEnumeratorDefault, GivesTheDefaultOfAFlowAndRole)
{
    Held<IMMDevice> found;
    ASSERT_EQ(S_OK, enumerator->GetDefaultAudioEndpoint(eRender, eConsole, found.put()));

    EXPECT_EQ(speakerId, textOf(found, &IMMDevice::GetId));
}

TEST_F(SimulatedEnumeratorDefault, IsNotFoundWhereThereIsNone)
{
    simulation.events().clearDefault(eRender, eConsole);

    auto* found = poison<IMMDevice>();
    EXPECT_EQ(E_NOTFOUND, enumerator->GetDefaultAudioEndpoint(eRender, eConsole, &found));
    EXPECT_EQ(nullptr, found);
    Held<IMMDevice> other;
    EXPECT_EQ(S_OK, enumerator->GetDefaultAudioEndpoint(eRender, eMultimedia, other.put()));
}

TEST_F(SimulatedEnumeratorDefault, RefusesFlowsAndRolesThatHaveNoDefault)
{
    auto* found = poison<IMMDevice>();
    EXPECT_EQ(E_INVALIDARG, enumerator->GetDefaultAudioEndpoint(eAll, eConsole, &found));
    EXPECT_EQ(nullptr, found);
    found = poison<IMMDevice>();
    EXPECT_EQ(E_INVALIDARG, enumerator->GetDefaultAudioEndpoint(eRender, ERole_enum_count, &found));
    EXPECT_EQ(nullptr, found);
    EXPECT_EQ(E_INVALIDARG, enumerator->GetDefaultAudioEndpoint(EDataFlow_enum_count, eConsole, &found));
    EXPECT_EQ(E_POINTER, enumerator->GetDefaultAudioEndpoint(eRender, eConsole, nullptr));
}

TEST_F(SimulatedEnumeratorGetDevice, FindsAnEndpointWithoutRegardToCase)
{
    std::string shouted = speakerId;
    for (char& character : shouted)
        character = static_cast<char>(std::toupper(character));

    Held<IMMDevice> found;
    ASSERT_EQ(S_OK, enumerator->GetDevice(Wide(shouted), found.put()));

    EXPECT_EQ(speakerId, textOf(found, &IMMDevice::GetId));
}

TEST_F(SimulatedEnumeratorGetDevice, PrefersTheExactIdAndThenTheFirstOfTheMachine)
{
    simulation.change(
        [&](sim::Machine& machine)
        {
            machine.endpoint(lineInId)->id = "{TWIN}";
            machine.endpoint(earphoneId)->id = "{twin}";
        });
    const auto idOf = [&](const char* id)
    {
        Held<IMMDevice> found;
        EXPECT_EQ(S_OK, enumerator->GetDevice(Wide(id), found.put()));
        return textOf(found, &IMMDevice::GetId);
    };

    EXPECT_EQ("{TWIN}", idOf("{TWIN}"));
    EXPECT_EQ("{twin}", idOf("{twin}"));
    EXPECT_EQ("{TWIN}", idOf("{Twin}"));
    simulation.change([&](sim::Machine& machine) { machine.endpoint("{TWIN}")->openable = false; });
    EXPECT_EQ("{twin}", idOf("{TWIN}"));
}

TEST_F(SimulatedEnumeratorGetDevice, OpensAnAdapterWhichIsNoEndpoint)
{
    Held<IMMDevice> found;
    ASSERT_EQ(S_OK, enumerator->GetDevice(Wide(codecId), found.put()));

    void* endpoint = poison<void>();
    EXPECT_EQ(E_NOINTERFACE, found->QueryInterface(sim::InterfaceTraits<IMMEndpoint>::iid(), &endpoint));
    EXPECT_EQ(nullptr, endpoint);
    EXPECT_EQ(codecId, textOf(found, &IMMDevice::GetId));
}

// Microsoft's documentation of IMMDeviceEnumerator::GetDevice.
TEST_F(SimulatedEnumeratorGetDevice, DoesNotFindIdsThatNoDeviceHas)
{
    for (const char* id : {"{0.0.0.00000000}.{11111111-2222-3333-4444-555555555555}",
                           "{0.0.1.00000000}.{11111111-2222-3333-4444-555555555555}", "{2}.\\\\?\\usb#nothing"})
    {
        auto* found = poison<IMMDevice>();
        EXPECT_EQ(E_NOTFOUND, enumerator->GetDevice(Wide(id), &found)) << id;
        EXPECT_EQ(nullptr, found);
    }
}

// The tests of Wine, which were run on Windows, for "notadevice"; Microsoft's documentation of GetDevice.
TEST_F(SimulatedEnumeratorGetDevice, RefusesWhatIsNoIdOfADevice)
{
    for (const char* id : {"", "notadevice", "{0.0.0.00000000}.{nowhere}", "{2}.usb#nothing"})
    {
        auto* found = poison<IMMDevice>();
        EXPECT_EQ(E_INVALIDARG, enumerator->GetDevice(Wide(id), &found)) << id;
        EXPECT_EQ(nullptr, found);
    }
}

TEST_F(SimulatedEnumeratorGetDevice, FindsAnIdOfTheMachineInAnyForm)
{
    simulation.change([&](sim::Machine& machine) { machine.adapter(codecId)->id = "codec"; });

    Held<IMMDevice> found;
    EXPECT_EQ(S_OK, enumerator->GetDevice(Wide("codec"), found.put()));
    simulation.change([&](sim::Machine& machine) { machine.adapter("codec")->openable = false; });
    EXPECT_EQ(E_NOTFOUND, enumerator->GetDevice(Wide("CODEC"), found.put()));
    simulation.change([&](sim::Machine& machine) { machine.adapters.clear(); });
    EXPECT_EQ(E_INVALIDARG, enumerator->GetDevice(Wide("codec"), found.put()));
}

// The tests of Wine, which were run on Windows.
TEST_F(SimulatedEnumeratorGetDevice, RefusesNullPointersFirst)
{
    auto* found = poison<IMMDevice>();
    EXPECT_EQ(E_POINTER, enumerator->GetDevice(nullptr, &found));
    EXPECT_EQ(nullptr, found);
    EXPECT_EQ(E_POINTER, enumerator->GetDevice(Wide(speakerId), nullptr));
    EXPECT_EQ(E_POINTER, enumerator->GetDevice(Wide("notadevice"), nullptr));
}

TEST_F(SimulatedEnumeratorGetDevice, FindsARemovedEndpointButNothingThatCannotBeOpened)
{
    simulation.events().remove(speakerId);
    simulation.change([&](sim::Machine& machine) { machine.endpoint(earphoneId)->openable = false; });

    Held<IMMDevice> found;
    EXPECT_EQ(S_OK, enumerator->GetDevice(Wide(speakerId), found.put()));
    EXPECT_EQ(E_NOTFOUND, enumerator->GetDevice(Wide(earphoneId), found.put()));
}

// Microsoft's documentation of RegisterEndpointNotificationCallback; the tests of Wine, which were run on Windows;
// NAudio issues 849 and 1394.
TEST_F(SimulatedEnumeratorClients, TakesNoReferenceAndAsksForNoInterface)
{
    struct Untouchable : bench::ClientListener
    {
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override
        {
            ADD_FAILURE() << "QueryInterface";
            return E_NOTIMPL;
        }
        ULONG STDMETHODCALLTYPE AddRef() override
        {
            ADD_FAILURE() << "AddRef";
            return 2;
        }
        ULONG STDMETHODCALLTYPE Release() override
        {
            ADD_FAILURE() << "Release";
            return 1;
        }
    } client;
    simulation.deliverAtOnce(true);

    EXPECT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&client));
    simulation.events().plug(microphoneId);
    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&client));

    EXPECT_THAT(client.heard(), ElementsAre("state " + microphoneId + " 1"));
}

// The tests of Wine, which were run on Windows.
TEST_F(SimulatedEnumeratorClients, AreUnregisteredAsOftenAsTheyWereRegistered)
{
    bench::ClientListener client;

    EXPECT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&client));
    EXPECT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&client));
    EXPECT_EQ(2, simulation.census().clients.at("IMMNotificationClient"));

    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&client));
    EXPECT_EQ(1, simulation.census().clients.at("IMMNotificationClient"));
    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&client));
    EXPECT_EQ(E_NOTFOUND, enumerator->UnregisterEndpointNotificationCallback(&client));
}

TEST_F(SimulatedEnumeratorClients, DoesNotFindAClientThatIsNotRegistered)
{
    bench::ClientListener client;

    EXPECT_EQ(E_NOTFOUND, enumerator->UnregisterEndpointNotificationCallback(&client));
    EXPECT_EQ(1u, client.references);
    EXPECT_EQ(E_POINTER, enumerator->RegisterEndpointNotificationCallback(nullptr));
    EXPECT_EQ(E_POINTER, enumerator->UnregisterEndpointNotificationCallback(nullptr));
}

// The tests of Wine, which were run on Windows; NAudio issue 421.
TEST_F(SimulatedEnumeratorObject, IsOneForTheWholeProcess)
{
    const Held<IMMDeviceEnumerator> second = createdEnumerator();
    const Held<IMMDeviceEnumerator> third(simulation.enumerator());
    Held<IMMDeviceEnumerator> fourth;
    bench::onThread(
        [&]
        {
            CoInitialize(nullptr);
            EXPECT_EQ(S_OK, simulation.registerOnThisThread());
            fourth = createdEnumerator();
            CoUninitialize();
        });

    EXPECT_EQ(enumerator.get(), second.get());
    EXPECT_EQ(enumerator.get(), third.get());
    EXPECT_EQ(enumerator.get(), fourth.get());
}

// The tests of Wine, which were run on Windows; CSCore issue 468.
TEST_F(SimulatedEnumeratorObject, HasAReferenceOfThePlatformsOwn)
{
    EXPECT_EQ(3u, enumerator->AddRef());
    EXPECT_EQ(2u, enumerator->Release());
}

TEST_F(SimulatedEnumeratorObject, CountsOnlyItsUsersReferencesInTheCensus)
{
    const Held<IMMDeviceEnumerator> second = createdEnumerator();

    EXPECT_EQ(2, simulation.census().references("IMMDeviceEnumerator"));
    EXPECT_EQ(1, simulation.census().objects.at("IMMDeviceEnumerator"));
    EXPECT_EQ(2, simulation.census().byObject.at("IMMDeviceEnumerator enumerator"));
}

TEST_F(SimulatedEnumeratorObject, StaysWhenItsUsersHaveReleasedIt)
{
    IMMDeviceEnumerator* const former = enumerator.get();
    enumerator.reset();
    EXPECT_EQ(sim::Census(), simulation.census());

    enumerator = createdEnumerator();

    EXPECT_EQ(former, enumerator.get());
}

TEST_F(SimulatedEnumeratorObject, GoesWithAReleaseTooMany)
{
    EXPECT_EQ(1u, enumerator->Release());
    EXPECT_EQ(sim::Census(), simulation.census());
    enumerator.reset(); // takes the platform's own

    EXPECT_EQ(sim::Census(), simulation.census());
    enumerator = createdEnumerator();
    EXPECT_EQ(3u, enumerator->AddRef());
    EXPECT_EQ(2u, enumerator->Release());
}

TEST_F(SimulatedEnumeratorObject, BelongsToOneMachine)
{
    auto other = std::make_unique<sim::Simulation>(simulation.machine());
    const Held<IMMDeviceEnumerator> its = createdEnumerator();
    EXPECT_NE(enumerator.get(), its.get());

    const Held<IMMDeviceEnumerator> again = createdEnumerator();
    other.reset();
    const Held<IMMDeviceEnumerator> former = createdEnumerator();

    EXPECT_EQ(its.get(), again.get());
    EXPECT_EQ(enumerator.get(), former.get());
}

TEST_F(SimulatedEnumeratorClients, KeepsRegistrationsWhenTheEnumeratorGoes)
{
    bench::ClientListener client;
    ASSERT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&client));
    simulation.deliverAtOnce(true);

    enumerator = createdEnumerator();
    simulation.events().plug(microphoneId);

    EXPECT_THAT(client.heard(), ElementsAre("state " + microphoneId + " 1"));
    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&client));
}
}
