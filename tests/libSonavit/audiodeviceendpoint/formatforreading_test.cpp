// Setting a format through a store that is open for reading only, and by an administrator.
#include "tests/libSonavit/audiodeviceendpoint/storetest.h"

namespace
{
using qor::LoggerPriority;
using storetest::AudioDeviceStoreOfAdministrator;
using storetest::betterFormat;
using storetest::usualFormat;
using storetest::waveFormat;
using support::opening;
using support::openingForBoth;
using support::openingForReading;
using testing::ElementsAre;
using testing::IsEmpty;
using AudioDeviceSetFormatForReading = storetest::AudioDeviceStoreForReading;

TEST_F(AudioDeviceStoreOfAdministrator, TakesAFormatAndGetsTheFormerOneBack)
{
    kept.directSoundTexts = 3;
    {
        AudioDevice device(reference(speaker.id()));
        EXPECT_TRUE(device.setFormat(waveFormat(betterFormat)));
        EXPECT_EQ(betterFormat.bytes(), storedFormat(speaker.id()));
    }

    EXPECT_EQ(usualFormat.bytes(), storedFormat(speaker.id()));
    EXPECT_THAT(openings(), ElementsAre(openingForBoth, openingForBoth, openingForBoth));
}

TEST_F(AudioDeviceSetFormatForReading, IsRefusedByTheStoreAndSaysSo)
{
    kept.directSoundTexts = 2;
    {
        AudioDevice device(reference(speaker.id()));
        withoutDebugMessages();
        simulation().journal().clear();

        EXPECT_FALSE(device.setFormat(waveFormat(betterFormat)));

        EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), ElementsAre("IPropertyStore::SetValue failed 0x80030005"));
        EXPECT_THAT(simulation().journal().operations(), ElementsAre("IPropertyStore::SetValue"));
        EXPECT_TRUE(waveFormat(usualFormat) == device.deviceProperty().format);
        EXPECT_NE(nullptr, device.m_propertyStore.get());
        EXPECT_TRUE(device.refreshDeviceInformation());
    }

    EXPECT_EQ(1u, simulation().journal().count("IPropertyStore::SetValue")) << "nothing is to be restored";
    EXPECT_EQ(usualFormat.bytes(), storedFormat(speaker.id()));
}

TEST_F(AudioDeviceSetFormatForReading, OpensTheNewStoreForReadingIfTheAccountHasLostItsRightMeanwhile)
{
    kept.directSoundTexts = 2;
    simulation().setAccount(sim::Account::administrator);
    {
        AudioDevice device(reference(speaker.id()));
        simulation().setAccount(sim::Account::ordinary);

        EXPECT_TRUE(device.setFormat(waveFormat(betterFormat)));

        EXPECT_TRUE(waveFormat(betterFormat) == device.deviceProperty().format);
        EXPECT_THAT(openings(), ElementsAre(openingForBoth, openingForBoth, openingForReading));
        EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), IsEmpty());
    }

    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), ElementsAre("IPropertyStore::SetValue failed 0x80030005"))
        << "the restore is refused";
    EXPECT_EQ(betterFormat.bytes(), storedFormat(speaker.id()));
}

/// The restore belongs to each copy, and each is refused.
TEST_F(AudioDeviceSetFormatForReading, LogsTheRefusedRestoreOfEachCopy)
{
    kept.directSoundTexts = 2;
    simulation().setAccount(sim::Account::administrator);
    {
        AudioDevice device(reference(speaker.id()));
        simulation().setAccount(sim::Account::ordinary);
        ASSERT_TRUE(device.setFormat(waveFormat(betterFormat)));
        const AudioDevice copy = device;
        log.clear();
    }

    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), ElementsAre("IPropertyStore::SetValue failed 0x80030005",
                                                                   "IPropertyStore::SetValue failed 0x80030005"));
    EXPECT_EQ(betterFormat.bytes(), storedFormat(speaker.id()));
}

TEST_F(AudioDeviceSetFormatForReading, LogsTheSecondResultIfTheNewStoreCannotBeReadEither)
{
    kept.directSoundTexts = 1;
    simulation().setAccount(sim::Account::administrator);
    AudioDevice device(reference(speaker.id()));
    simulation().setAccount(sim::Account::ordinary);
    sim::PlannedFault fault = simulation().faults().fail(opening, E_FAIL).with("0");

    EXPECT_FALSE(device.setFormat(waveFormat(betterFormat)));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(nullptr, device.m_propertyStore.get());
    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), ElementsAre("Cannot open a new property store 0x80004005"));
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), IsEmpty());
}
}
