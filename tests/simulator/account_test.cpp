#include "tests/simulator/bench.h"

#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/propertykeys.h"

namespace
{
using bench::Held;
using bench::poison;
namespace keys = sim::keys;

/// The bench machine under an ordinary account.
class SimulatedAccount : public bench::SimulationTest
{
protected:
    SimulatedAccount() { simulation.setAccount(sim::Account::ordinary); }

    /// Opens a store of @p deviceId and releases it again.
    HRESULT open(const std::string& deviceId, DWORD access)
    {
        Held<IPropertyStore> store;
        return device(deviceId)->OpenPropertyStore(access, store.put());
    }
};

// Microsoft's documentation of IMMDevice::OpenPropertyStore; Wine's propstore tests, which were run on Windows.
TEST_F(SimulatedAccount, OpensNoStoreOfAnEndpointOrAnAdapterForWritingIfItIsOrdinary)
{
    for (const std::string& id : {speakerId, microphoneId, codecId})
    {
        for (const DWORD access : {STGM_WRITE, STGM_READWRITE})
        {
            auto* store = poison<IPropertyStore>();
            EXPECT_EQ(E_ACCESSDENIED, device(id)->OpenPropertyStore(access, &store)) << id << " " << access;
            EXPECT_EQ(nullptr, store) << id << " " << access;
        }
    }
}

// Microsoft's documentation of IMMDevice::OpenPropertyStore
TEST_F(SimulatedAccount, ReadsAllPropertiesIfItIsOrdinary)
{
    Held<IPropertyStore> store;
    ASSERT_EQ(S_OK, device(speakerId)->OpenPropertyStore(STGM_READ, store.put()));

    PROPVARIANT value;
    PropVariantInit(&value);
    EXPECT_EQ(S_OK, store->GetValue(keys::deviceDescription, &value));
    EXPECT_EQ(VT_LPWSTR, value.vt);
    PropVariantClear(&value);
    EXPECT_EQ(S_OK, open(codecId, STGM_READ));
}

// Microsoft's documentation of IPropertyStore::SetValue and IPropertyStore::Commit
TEST_F(SimulatedAccount, ChangesNothingThroughAStoreForReading)
{
    const sim::Machine before = simulation.machine();
    Held<IPropertyStore> store;
    ASSERT_EQ(S_OK, device(speakerId)->OpenPropertyStore(STGM_READ, store.put()));
    PROPVARIANT number;
    PropVariantInit(&number);
    number.vt = VT_UI4;
    number.ulVal = 63;

    EXPECT_EQ(STG_E_ACCESSDENIED, store->SetValue(keys::speakerConfig, number));
    EXPECT_EQ(STG_E_ACCESSDENIED, store->Commit());

    EXPECT_TRUE(before == simulation.machine());
}

TEST_F(SimulatedAccount, IsRefusedAnAccessThatDoesNotExistAndALostDeviceAsAnAdministratorIs)
{
    const Held<IMMDevice> speaker = device(speakerId);
    auto* store = poison<IPropertyStore>();
    EXPECT_EQ(E_INVALIDARG, speaker->OpenPropertyStore(3, &store));
    EXPECT_EQ(E_POINTER, speaker->OpenPropertyStore(STGM_READWRITE, nullptr));

    simulation.change([](sim::Machine& machine) { machine.endpoints.clear(); });

    EXPECT_EQ(AUDCLNT_E_DEVICE_INVALIDATED, speaker->OpenPropertyStore(STGM_READWRITE, &store));
}

TEST_F(SimulatedAccount, CountsWhenAStoreIsOpened)
{
    simulation.setAccount(sim::Account::administrator);
    Held<IPropertyStore> store;
    ASSERT_EQ(S_OK, device(speakerId)->OpenPropertyStore(STGM_READWRITE, store.put()));
    simulation.setAccount(sim::Account::ordinary);
    PROPVARIANT number;
    PropVariantInit(&number);
    number.vt = VT_UI4;
    number.ulVal = 63;

    EXPECT_EQ(S_OK, store->SetValue(keys::speakerConfig, number)) << "a store that is open stays as it is";
    EXPECT_EQ(S_OK, store->Commit());

    EXPECT_EQ(E_ACCESSDENIED, open(speakerId, STGM_READWRITE));
}

TEST(MachineAccount, IsAnAdministratorsIfNothingIsSaid)
{
    EXPECT_EQ(sim::Account::administrator, sim::Machine().account);
    EXPECT_EQ(sim::Account::administrator, sim::MachineBuilder().build().account);
    EXPECT_EQ(sim::Account::administrator, sim::readMachine(R"({"name": "m"})", "m.json").account);
}

TEST(MachineAccount, ComesFromTheBuilderOrTheFile)
{
    EXPECT_EQ(sim::Account::ordinary, sim::MachineBuilder().account(sim::Account::ordinary).build().account);
    EXPECT_EQ(sim::Account::ordinary, sim::readMachine(R"({"name": "m", "account": "ordinary"})", "m.json").account);
}
}
