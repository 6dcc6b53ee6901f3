// How devices open their property stores under an administrator's and an ordinary account.
#include "tests/libSonavit/audiodeviceendpoint/devicetest.h"
#include "tests/libSonavit/soundcard/supporthotplug.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/libSonavit/supportstackobject.h"

#include <memory>
#include <thread>

namespace
{
using devicetest::waveFormat;
using qor::LoggerPriority;
using support::HotPlug;
using support::IdText;
using testing::ElementsAre;
using testing::IsEmpty;

const sim::DeviceFormat usual = {16, 48000, 2};
const sim::DeviceFormat better = {24, 96000, 2};

constexpr const char* opening = "IMMDevice::OpenPropertyStore";
constexpr const char* openingForBoth = "IMMDevice::OpenPropertyStore(2)";
constexpr const char* openingForReading = "IMMDevice::OpenPropertyStore(0)";

/// Sets the way in which the process opens stores, until the end of the object's life.
class ChosenAccess
{
public:
    explicit ChosenAccess(StoreAccess access) { AudioDevice::setStoreAccess(access); }
    ~ChosenAccess() { AudioDevice::setStoreAccess(StoreAccess::readWrite); }
    ChosenAccess(const ChosenAccess&) = delete;
    ChosenAccess& operator=(const ChosenAccess&) = delete;
};

/// What one device did from its construction to its destruction.
struct Life
{
    bool isInitialized = false;
    std::vector<std::string> calls;
    std::vector<std::string> records;
    std::string name;
    bool hasFormat = false;
};

class AudioDeviceStore : public devicetest::DeviceTest
{
protected:
    void start(sim::Account account)
    {
        bench.account(account);
        DeviceTest::start();
        simulation().journal().recordReferences(true);
    }

    std::vector<std::string> openings() { return simulation().journal().of(opening).calls(); }

    Life live()
    {
        simulation().journal().clear();
        log.clear();
        Life life;
        {
            AudioDevice device;
            life.isInitialized = device.initialize(reference(speaker.id()));
            life.name = device.deviceProperty().endpointType.toUtf8();
            life.hasFormat = waveFormat(usual) == device.deviceProperty().format;
        }
        life.calls = simulation().journal().entries().calls();
        life.records = records();
        return life;
    }
};

/// Under an ordinary account, by a process that has not asked for anything else.
class AudioDeviceStoreByDefault : public AudioDeviceStore
{
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        start(sim::Account::ordinary);
    }
};

/// Under an ordinary account, by a process that also wants to read.
class AudioDeviceStoreForReading : public AudioDeviceStoreByDefault
{
    const ChosenAccess m_access{StoreAccess::writeElseRead};
};

/// Under an administrator's account, by the same process.
class AudioDeviceStoreOfAdministrator : public AudioDeviceStore
{
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        start(sim::Account::administrator);
    }

private:
    const ChosenAccess m_access{StoreAccess::writeElseRead};
};

using AudioDeviceSetFormatForReading = AudioDeviceStoreForReading;

/// A device that denies the first opening, yet stores a pointer, and gives its store to the second one.
class DenyingWithAPointer final : public support::StackObject<IMMDevice>
{
public:
    HRESULT STDMETHODCALLTYPE Activate(REFIID, DWORD, PROPVARIANT*, void**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetId(LPWSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetState(DWORD*) override { return E_NOTIMPL; }

    HRESULT STDMETHODCALLTYPE OpenPropertyStore(DWORD access, IPropertyStore** opened) override
    {
        storedBefore.push_back(*opened);
        if (access != STGM_READ)
        {
            *opened = reinterpret_cast<IPropertyStore*>(this); // must not be used
            return E_ACCESSDENIED;
        }
        return E_FAIL;
    }

    std::vector<IPropertyStore*> storedBefore;
};

TEST_F(AudioDeviceStoreByDefault, IsOpenedForReadingAndWritingOnly)
{
    EXPECT_EQ(StoreAccess::readWrite, AudioDevice::storeAccess());

    const Life life = live();

    EXPECT_FALSE(life.isInitialized);
    EXPECT_EQ("", life.name);
    EXPECT_THAT(openings(), ElementsAre(openingForBoth));
    EXPECT_EQ(0u, simulation().journal().count("IPropertyStore::*"));
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), ElementsAre("OpenPropertyStore returns 0x80070005"));
}

TEST_F(AudioDeviceStoreByDefault, IsMissedInTheSameWayWhateverRefusesIt)
{
    const Life ordinary = live();
    simulation().setAccount(sim::Account::administrator);
    sim::PlannedFault fault = simulation().faults().fail(opening, E_ACCESSDENIED);

    const Life refused = live();

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(refused.calls, ordinary.calls);
    EXPECT_EQ(refused.records, ordinary.records);
    EXPECT_EQ(refused.isInitialized, ordinary.isInitialized);
}

TEST_F(AudioDeviceStoreByDefault, IsClosedAgainAfterTheProcessTakesItsWishBack)
{
    AudioDevice::setStoreAccess(StoreAccess::writeElseRead);
    AudioDevice::setStoreAccess(StoreAccess::readWrite);

    EXPECT_FALSE(live().isInitialized);

    EXPECT_THAT(openings(), ElementsAre(openingForBoth));
}

TEST_F(AudioDeviceStoreForReading, IsOpenedOnceMoreIfWritingIsDenied)
{
    kept.directSoundTexts = 1;

    const Life life = live();

    EXPECT_TRUE(life.isInitialized);
    EXPECT_EQ("Speakers", life.name);
    EXPECT_TRUE(life.hasFormat);
    EXPECT_THAT(openings(), ElementsAre(openingForBoth, openingForReading));
}

TEST_F(AudioDeviceStoreForReading, GivesTheCallsAndRecordsOfAnAdministratorExceptForTheSecondOpening)
{
    kept.directSoundTexts = 2;
    Life ordinary = live();
    simulation().setAccount(sim::Account::administrator);

    const Life administrator = live();

    const auto second = std::find(ordinary.calls.begin(), ordinary.calls.end(), openingForReading);
    ASSERT_NE(ordinary.calls.end(), second);
    ASSERT_EQ(openingForBoth, *(second - 1)) << "one right after the other";
    ordinary.calls.erase(second);
    EXPECT_EQ(administrator.calls, ordinary.calls);
    EXPECT_EQ(administrator.records, ordinary.records);
    EXPECT_THAT(openings(), ElementsAre(openingForBoth));
}

TEST_F(AudioDeviceStoreForReading, StaysOpenForAllRefreshes)
{
    kept.directSoundTexts = 3;
    AudioDevice device(reference(speaker.id()));

    EXPECT_TRUE(device.refreshDeviceInformation());
    EXPECT_TRUE(device.refreshDeviceInformation());

    EXPECT_THAT(openings(), ElementsAre(openingForBoth, openingForReading));
    EXPECT_EQ(1, simulation().census().references("IPropertyStore"));
}

TEST_F(AudioDeviceStoreForReading, IsMissedWithTheSecondResultIfReadingIsRefusedToo)
{
    sim::PlannedFault fault = simulation().faults().fail(opening, E_FAIL).with("0");

    const Life life = live();

    EXPECT_EQ(1u, fault.fired());
    EXPECT_FALSE(life.isInitialized);
    EXPECT_EQ("", life.name);
    EXPECT_THAT(openings(), ElementsAre(openingForBoth, openingForReading));
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), ElementsAre("OpenPropertyStore returns 0x80004005"));
}

TEST_F(AudioDeviceStoreForReading, IsAskedForTwiceAndNoMoreIfReadingIsDeniedToo)
{
    sim::PlannedFault fault = simulation().faults().fail(opening, E_ACCESSDENIED);

    EXPECT_FALSE(live().isInitialized);

    EXPECT_EQ(2u, fault.fired());
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), ElementsAre("OpenPropertyStore returns 0x80070005"));
}

TEST_F(AudioDeviceStoreForReading, IsOpenedForReadingByTheNextRefreshIfThatWasRefused)
{
    kept.directSoundTexts = 1;
    sim::PlannedFault fault = simulation().faults().fail(opening, E_FAIL).with("0").at(1);
    AudioDevice device(reference(speaker.id()));
    EXPECT_EQ(nullptr, device.m_propertyStore.get());

    EXPECT_TRUE(device.refreshDeviceInformation());

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(openings(), ElementsAre(openingForBoth, openingForReading, openingForBoth, openingForReading));
    EXPECT_EQ("Speakers", device.deviceProperty().endpointType.toUtf8());
    device.m_savedProperties = device.m_properties; // so that the destructor restores nothing
}

TEST_F(AudioDeviceStoreForReading, IgnoresAPointerThatComesWithTheDenial)
{
    DenyingWithAPointer denying;
    {
        AudioDevice device;
        device.m_device = denying.handle();

        EXPECT_FALSE(device.refreshDeviceInformation());

        EXPECT_EQ(nullptr, device.m_propertyStore.get());
    }
    EXPECT_THAT(denying.storedBefore, ElementsAre(nullptr, nullptr));
    EXPECT_EQ(1u, denying.references);
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), ElementsAre("OpenPropertyStore returns 0x80004005"));
}

TEST_F(AudioDeviceStoreForReading, IsWhatAllCopiesHold)
{
    kept.directSoundTexts = 1;
    AudioDevice device(reference(speaker.id()));
    simulation().journal().recordReferences(false);
    simulation().journal().clear();
    {
        qor::Array<AudioDevice> copies;
        for (int count = 0; count < 10; ++count)
            copies.append(device);

        EXPECT_EQ(11, references("IPropertyStore " + speaker.id()));
        EXPECT_FALSE(copies[9].setFormat(waveFormat(better)));
    }

    EXPECT_THAT(simulation().journal().operations(), ElementsAre("IPropertyStore::SetValue"));
    EXPECT_EQ(1, references("IPropertyStore " + speaker.id()));
}

TEST_F(AudioDeviceStoreForReading, IsThatOfAdaptersToo)
{
    AudioDevice adapter(reference(card.adapter().id));

    EXPECT_THAT(openings(), ElementsAre(openingForBoth, openingForReading));
    EXPECT_NE(nullptr, adapter.m_propertyStore.get());
}

TEST_F(AudioDeviceStoreForReading, IsOpenedOnEachThread)
{
    kept.directSoundTexts = 1;
    Life life;

    std::thread thread(
        [&]
        {
            CoInitialize(nullptr);
            life = live();
            CoUninitialize();
        });
    thread.join();

    EXPECT_TRUE(life.isInitialized);
}

/// A failure that is not about rights.
class AudioDeviceStoreFailure : public AudioDeviceStoreForReading, public testing::WithParamInterface<HRESULT>
{
};

TEST_P(AudioDeviceStoreFailure, IsFinal)
{
    sim::PlannedFault fault = simulation().faults().fail(opening, GetParam());

    EXPECT_FALSE(live().isInitialized);

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(openings(), ElementsAre(openingForBoth));
    const std::string result = qor::QORValue(static_cast<int>(GetParam())).toHexString(true).toUtf8();
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), ElementsAre("OpenPropertyStore returns " + result));
}

/// STG_E_ACCESSDENIED, E_FAIL, E_INVALIDARG, E_NOTFOUND, AUDCLNT_E_DEVICE_INVALIDATED.
INSTANTIATE_TEST_SUITE_P(Each, AudioDeviceStoreFailure,
                         testing::Values(HRESULT(0x80030005), E_FAIL, E_INVALIDARG, HRESULT(0x80070490),
                                         AUDCLNT_E_DEVICE_INVALIDATED));

TEST_F(AudioDeviceStoreForReading, IsNotAskedForAfterASuccessWithoutAStore)
{
    sim::PlannedFault fault = simulation().faults().succeedWithNull(opening);

    EXPECT_FALSE(live().isInitialized);

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), ElementsAre("OpenPropertyStore returns 0x00000000"));
}

TEST_F(AudioDeviceStoreOfAdministrator, IsOpenedAndWrittenWithTheSameCallsAndRecordsAsWithoutTheWish)
{
    kept.directSoundTexts = 2;
    const Life wish = live();
    AudioDevice::setStoreAccess(StoreAccess::readWrite);

    const Life usualLife = live();

    EXPECT_TRUE(wish.isInitialized);
    EXPECT_EQ(usualLife.calls, wish.calls);
    EXPECT_EQ(usualLife.records, wish.records);
}

TEST_F(AudioDeviceStoreOfAdministrator, TakesAFormatAndGetsTheFormerOneBack)
{
    kept.directSoundTexts = 3;
    {
        AudioDevice device(reference(speaker.id()));
        EXPECT_TRUE(device.setFormat(waveFormat(better)));
        EXPECT_EQ(better.bytes(), storedFormat(speaker.id()));
    }

    EXPECT_EQ(usual.bytes(), storedFormat(speaker.id()));
    EXPECT_THAT(openings(), ElementsAre(openingForBoth, openingForBoth, openingForBoth));
}

TEST_F(AudioDeviceSetFormatForReading, IsRefusedByTheStoreAndSaysSo)
{
    kept.directSoundTexts = 2;
    {
        AudioDevice device(reference(speaker.id()));
        withoutDebugMessages();
        simulation().journal().clear();

        EXPECT_FALSE(device.setFormat(waveFormat(better)));

        EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), ElementsAre("IPropertyStore::SetValue failed 0x80070005"));
        EXPECT_THAT(simulation().journal().operations(), ElementsAre("IPropertyStore::SetValue"));
        EXPECT_TRUE(waveFormat(usual) == device.deviceProperty().format);
        EXPECT_NE(nullptr, device.m_propertyStore.get());
        EXPECT_TRUE(device.refreshDeviceInformation());
    }

    EXPECT_EQ(1u, simulation().journal().count("IPropertyStore::SetValue")) << "nothing is to be restored";
    EXPECT_EQ(usual.bytes(), storedFormat(speaker.id()));
}

TEST_F(AudioDeviceSetFormatForReading, OpensTheNewStoreForReadingIfTheAccountHasLostItsRightMeanwhile)
{
    kept.directSoundTexts = 2;
    simulation().setAccount(sim::Account::administrator);
    {
        AudioDevice device(reference(speaker.id()));
        simulation().setAccount(sim::Account::ordinary);

        EXPECT_TRUE(device.setFormat(waveFormat(better)));

        EXPECT_TRUE(waveFormat(better) == device.deviceProperty().format);
        EXPECT_THAT(openings(), ElementsAre(openingForBoth, openingForBoth, openingForReading));
        EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), IsEmpty());
    }

    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), ElementsAre("IPropertyStore::SetValue failed 0x80070005"))
        << "the restore is refused";
    EXPECT_EQ(better.bytes(), storedFormat(speaker.id()));
}

TEST_F(AudioDeviceSetFormatForReading, LogsTheSecondResultIfTheNewStoreCannotBeReadEither)
{
    kept.directSoundTexts = 1;
    simulation().setAccount(sim::Account::administrator);
    AudioDevice device(reference(speaker.id()));
    simulation().setAccount(sim::Account::ordinary);
    sim::PlannedFault fault = simulation().faults().fail(opening, E_FAIL).with("0");

    EXPECT_FALSE(device.setFormat(waveFormat(better)));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(nullptr, device.m_propertyStore.get());
    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), ElementsAre("Cannot open a new property store 0x80004005"));
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), IsEmpty());
}

/// Cards that were found while the account could write; it is ordinary from then on.
class HotPlugOfOrdinaryAccount : public HotPlug
{
protected:
    void SetUp() override
    {
        HotPlug::SetUp();
        simulation().setAccount(sim::Account::ordinary);
    }
};

TEST_F(HotPlugOfOrdinaryAccount, TakesEndpointsForThoseOfAnotherCardByDefault)
{
    simulation().events().add(late);

    EXPECT_EQ(2u, playbackDevices().size());
    EXPECT_THAT(playback.notifications, IsEmpty());
    EXPECT_THAT(simulation().journal().of(opening).calls(), ElementsAre(openingForBoth, openingForBoth))
        << "one by the updater of each card";
}

TEST_F(HotPlugOfOrdinaryAccount, KeepsTheListsOfTheCardIfItsProcessReads)
{
    const ChosenAccess access(StoreAccess::writeElseRead);

    simulation().events().add(late);
    simulation().events().plug(headphones);
    simulation().events().remove(late);
    simulation().events().add(foreign);

    EXPECT_EQ(2u, playbackDevices().size());
    EXPECT_THAT(playback.notifications, ElementsAre("added", "state", "removed"));
}

TEST_F(HotPlugOfOrdinaryAccount, AsksForReadingInTheCallbackRightAfterTheDenial)
{
    const ChosenAccess access(StoreAccess::writeElseRead);

    EXPECT_EQ(S_OK, updater().OnDeviceAdded(IdText(late)));

    EXPECT_THAT(simulation().journal().of(opening).calls(), ElementsAre(openingForBoth, openingForReading));
    EXPECT_EQ("Late", playbackDevices()[2].deviceProperty().endpointType.toUtf8());
}
}
