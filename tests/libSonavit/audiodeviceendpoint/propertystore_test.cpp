// How devices open their property stores under an administrator's and an ordinary account.
#include "tests/libSonavit/audiodeviceendpoint/storetest.h"
#include "tests/libSonavit/supportstackobject.h"

#include <thread>

namespace
{
using qor::LoggerPriority;
using storetest::AudioDeviceStoreByDefault;
using storetest::AudioDeviceStoreForReading;
using storetest::AudioDeviceStoreOfAdministrator;
using storetest::betterFormat;
using storetest::Life;
using storetest::waveFormat;
using support::opening;
using support::openingForBoth;
using support::openingForReading;
using testing::ElementsAre;

/// A device that denies the first opening, yet stores a pointer; the second one fails and stores `stored`.
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
        *opened = stored;
        return E_FAIL;
    }

    IPropertyStore* stored = nullptr;
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

TEST_F(AudioDeviceStoreByDefault, LeavesADeviceWithItsIdAndVolumeOnlyIfItIsDenied)
{
    AudioDevice device(reference(speaker.id()));

    const AudioDeviceInterface::Properties& properties = device.deviceProperty();
    EXPECT_EQ(speaker.id(), properties.deviceId.toUtf8());
    EXPECT_NE(nullptr, device.volumeControl().get());
    EXPECT_EQ("",
              properties.endpointType.toUtf8() + properties.friendlyName.toUtf8() + properties.instancePath.toUtf8());
    EXPECT_TRUE(WAVEFORMATEXTENSIBLE() == properties.format);
    EXPECT_TRUE(GUID() == properties.subType);
    EXPECT_EQ(0u, properties.deviceState);
    EXPECT_THROW(device.setFormat(waveFormat(betterFormat)), qor::AssertionFailure);
}

TEST_F(AudioDeviceStoreByDefault, FailsAlikeForAnOrdinaryAccountAndForAPlannedDenial)
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

TEST_F(AudioDeviceStoreByDefault, IsNotOpenedForReadingAfterTheProcessReturnsToTheDefault)
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

TEST_F(AudioDeviceStoreForReading, LogsTheSecondResultIfReadingIsRefusedToo)
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

TEST_F(AudioDeviceStoreForReading, LogsASecondOpeningThatSucceedsWithoutAStore)
{
    sim::PlannedFault fault = simulation().faults().succeedWithNull(opening).with("0");

    EXPECT_FALSE(live().isInitialized);

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(openings(), ElementsAre(openingForBoth, openingForReading));
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), ElementsAre("OpenPropertyStore returns 0x00000000"));
}

// Windows stores null along with a failure; as with one opening, the next refresh reads from what is stored.
TEST_F(AudioDeviceStoreForReading, KeepsAPointerThatComesWithTheFailureOfTheSecondOpening)
{
    DenyingWithAPointer denying;
    const COMPtr<IMMDevice>::pointer platformDevice(reference(speaker.id()));
    ASSERT_EQ(S_OK, platformDevice->OpenPropertyStore(STGM_READ, &denying.stored));
    {
        AudioDevice device;
        device.m_device = denying.handle();

        EXPECT_FALSE(device.refreshDeviceInformation());

        EXPECT_EQ(denying.stored, device.m_propertyStore.get());
        EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), ElementsAre("OpenPropertyStore returns 0x80004005"));
    }
    EXPECT_EQ(0, simulation().census().references("IPropertyStore"));
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
        EXPECT_FALSE(copies[9].setFormat(waveFormat(betterFormat)));
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

TEST_F(AudioDeviceStoreOfAdministrator, HasTheSameCallsAndRecordsWithEitherAccess)
{
    kept.directSoundTexts = 2;
    const Life withReading = live();
    AudioDevice::setStoreAccess(StoreAccess::readWrite);

    const Life withoutReading = live();

    EXPECT_TRUE(withReading.isInitialized);
    EXPECT_EQ(withoutReading.calls, withReading.calls);
    EXPECT_EQ(withoutReading.records, withReading.records);
}
}
