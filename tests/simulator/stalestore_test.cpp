#include "tests/simulator/bench.h"

#include "simulator/machine/propertykeys.h"

// Stores that are open turn E_ACCESSDENIED after a logon from another computer (AudioSwitcher_v1 issues 252 and 521) or
// after a driver was installed or removed (AudioSwitcher_v1 issues 633 and 914): reading a value, counting, anything.
namespace
{
using bench::Held;

class StaleStore : public bench::SimulationTest
{
protected:
    Held<IPropertyStore> open(const std::string& id)
    {
        Held<IPropertyStore> store;
        EXPECT_EQ(S_OK, device(id)->OpenPropertyStore(STGM_READWRITE, store.put()));
        return store;
    }

    static HRESULT count(const Held<IPropertyStore>& store)
    {
        DWORD number = 0;
        return store->GetCount(&number);
    }
};

TEST_F(StaleStore, RefusesEveryOperationAfterARemoteLogon)
{
    const Held<IPropertyStore> store = open(speakerId);
    PROPVARIANT value;
    PropVariantInit(&value);
    value.vt = VT_UI4;
    PROPERTYKEY key = {};

    simulation.events().remoteLogon();

    EXPECT_EQ(E_ACCESSDENIED, count(store));
    EXPECT_EQ(E_ACCESSDENIED, store->GetAt(0, &key));
    EXPECT_EQ(E_ACCESSDENIED, store->GetValue(sim::keys::deviceDescription, &value));
    EXPECT_EQ(E_ACCESSDENIED, store->SetValue(sim::keys::speakerConfig, value));
    EXPECT_EQ(E_ACCESSDENIED, store->Commit());
}

TEST_F(StaleStore, IsReplacedByANewOne)
{
    const Held<IMMDevice> speaker = device(speakerId);
    const Held<IPropertyStore> before = open(speakerId);

    simulation.events().remoteLogon();

    Held<IPropertyStore> after;
    ASSERT_EQ(S_OK, speaker->OpenPropertyStore(STGM_READ, after.put()));
    EXPECT_EQ(S_OK, count(after));
    EXPECT_EQ(E_ACCESSDENIED, count(before));
}

TEST_F(StaleStore, IsThatOfEveryDeviceAfterARemoteLogon)
{
    const Held<IPropertyStore> earphone = open(earphoneId);
    const Held<IPropertyStore> codec = open(codecId);

    simulation.events().remoteLogon();

    EXPECT_EQ(E_ACCESSDENIED, count(earphone));
    EXPECT_EQ(E_ACCESSDENIED, count(codec));
}

TEST_F(StaleStore, IsThatOfTheDeviceWhoseDriverIsReplaced)
{
    const Held<IPropertyStore> speaker = open(speakerId);
    const Held<IPropertyStore> lineIn = open(lineInId);
    const Held<IPropertyStore> earphone = open(earphoneId);

    simulation.events().driverUpdate(speakerId);
    simulation.events().waitForClients();

    EXPECT_EQ(E_ACCESSDENIED, count(speaker));
    EXPECT_EQ(E_ACCESSDENIED, count(lineIn));
    EXPECT_EQ(S_OK, count(earphone));
    EXPECT_EQ(S_OK, count(open(speakerId)));
}

TEST_F(StaleStore, StaysStaleAndRecordsThatInTheJournal)
{
    const Held<IPropertyStore> store = open(speakerId);
    simulation.events().remoteLogon();
    simulation.events().remoteLogon();

    EXPECT_EQ(E_ACCESSDENIED, count(store));

    EXPECT_EQ(1u, simulation.journal().of("IPropertyStore::GetCount").failed().size());
}

TEST_F(StaleStore, ChangesNothing)
{
    const Held<IPropertyStore> store = open(lineInId);
    PROPVARIANT value;
    PropVariantInit(&value);
    value.vt = VT_UI4;
    value.ulVal = 4;
    simulation.events().remoteLogon();

    EXPECT_EQ(E_ACCESSDENIED, store->SetValue(sim::keys::speakerConfig, value));

    const sim::Machine machine = simulation.machine();
    const sim::PropertyValue* const kept =
        sim::findProperty(machine.endpoint(lineInId)->properties, sim::keys::speakerConfig);
    EXPECT_TRUE(kept == nullptr || kept->number != 4u);
}
}
