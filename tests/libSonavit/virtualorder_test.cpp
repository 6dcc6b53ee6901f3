// Callers that were built against an older library call the virtual operations by their slots.
#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/soundcard.h"
#include "libSonavit/soundcardobserver.h"
#include "libSonavit/soundcardupdater.h"
#include "libSonavit/volumecontroller.h"
#include "qor/serializable.h"
#include "tests/foundation/supportvirtualslot.h"

#include <gtest/gtest.h>

#include <type_traits>

#if defined(SUPPORT_HAS_VIRTUAL_SLOTS)

using support::virtualSlot;

namespace
{
/// A class with one more virtual operation, in the slot after all others. A virtual destructor takes two slots: if the
/// named operations leave two slots before this one, the destructor is the last of them.
template<class Base>
struct Extended : Base
{
    virtual void further() {}
};

typedef unsigned int (SoundCardInterface::*JackQuery)(qor::Array<AudioInterfacePtr>&);
typedef void (qor::Serializable::*ReadText)(const qor::String&);
}

TEST(VirtualOrder, OfSoundCardInterfaceEndsWithTheDestructor)
{
    EXPECT_EQ(0u, virtualSlot<JackQuery>(&SoundCardInterface::microphoneEndpointDevice));
    EXPECT_EQ(1u, virtualSlot<JackQuery>(&SoundCardInterface::waveOutEndpointDevice));
    EXPECT_EQ(2u, virtualSlot<JackQuery>(&SoundCardInterface::lineInEndpointDevice));
    EXPECT_EQ(3u, virtualSlot<JackQuery>(&SoundCardInterface::spdifInEndpointDevice));
    EXPECT_EQ(4u, virtualSlot<JackQuery>(&SoundCardInterface::spdifOutEndpointDevice));
    EXPECT_EQ(5u, virtualSlot(&SoundCardInterface::volumeController));
    EXPECT_EQ(6u, virtualSlot(&SoundCardInterface::operator==));
    EXPECT_EQ(7u, virtualSlot(&SoundCardInterface::deviceId));
    EXPECT_EQ(10u, virtualSlot(&Extended<SoundCardInterface>::further));
}

TEST(VirtualOrder, IsNotAddedToBySoundCard)
{
    EXPECT_EQ(10u, virtualSlot(&Extended<SoundCard>::further));
}

TEST(VirtualOrder, OfSoundCardObserverHasNoDestructor)
{
    EXPECT_EQ(0u, virtualSlot(&SoundCardObserver::onDeviceStateChanged));
    EXPECT_EQ(1u, virtualSlot(&SoundCardObserver::onDeviceAdded));
    EXPECT_EQ(2u, virtualSlot(&SoundCardObserver::onDeviceRemoved));
    EXPECT_EQ(3u, virtualSlot(&Extended<SoundCardObserver>::further));
    EXPECT_FALSE(std::has_virtual_destructor_v<SoundCardObserver>);
}

TEST(VirtualOrder, OfSoundCardDeviceUpdaterIsThePlatforms)
{
    typedef SoundCard::SoundCardDeviceUpdater Updater;
    EXPECT_EQ(0u, virtualSlot(&Updater::QueryInterface));
    EXPECT_EQ(1u, virtualSlot(&Updater::AddRef));
    EXPECT_EQ(2u, virtualSlot(&Updater::Release));
    EXPECT_EQ(3u, virtualSlot(&Updater::OnDeviceStateChanged));
    EXPECT_EQ(4u, virtualSlot(&Updater::OnDeviceAdded));
    EXPECT_EQ(5u, virtualSlot(&Updater::OnDeviceRemoved));
    EXPECT_EQ(6u, virtualSlot(&Updater::OnDefaultDeviceChanged));
    EXPECT_EQ(7u, virtualSlot(&Updater::OnPropertyValueChanged));
    EXPECT_FALSE(std::has_virtual_destructor_v<Updater>);
    EXPECT_EQ(4u, sizeof(Updater::m_refCount));
}

TEST(VirtualOrder, OfAudioDeviceInterfaceEndsWithTheDestructor)
{
    EXPECT_EQ(0u, virtualSlot(&AudioDeviceInterface::isEndpoint));
    EXPECT_EQ(1u, virtualSlot(&AudioDeviceInterface::volumeControl));
    EXPECT_EQ(2u, virtualSlot(&AudioDeviceInterface::initialize));
    EXPECT_EQ(3u, virtualSlot(&AudioDeviceInterface::isInitialized));
    EXPECT_EQ(4u, virtualSlot(&AudioDeviceInterface::refreshDeviceInformation));
    EXPECT_EQ(5u, virtualSlot(&AudioDeviceInterface::deviceProperty));
    EXPECT_EQ(6u, virtualSlot(&AudioDeviceInterface::waveLegacyDeviceID));
    EXPECT_EQ(7u, virtualSlot(&AudioDeviceInterface::refreshDeviceState));
    EXPECT_EQ(10u, virtualSlot(&Extended<AudioDeviceInterface>::further));
}

TEST(VirtualOrder, IsNotAddedToByAudioDevice)
{
    EXPECT_EQ(10u, virtualSlot(&Extended<AudioDevice>::further));
}

TEST(VirtualOrder, OfVolumeControllerInterfaceEndsWithTheDestructor)
{
    EXPECT_EQ(0u, virtualSlot(&VolumeControllerInterface::numChannel));
    EXPECT_EQ(1u, virtualSlot(&VolumeControllerInterface::volumeLevelPercent));
    EXPECT_EQ(2u, virtualSlot(&VolumeControllerInterface::volumeLevelDecibel));
    EXPECT_EQ(3u, virtualSlot(&VolumeControllerInterface::volumeRangeDecibel));
    EXPECT_EQ(4u, virtualSlot(&VolumeControllerInterface::masterVolumeLevelPercent));
    EXPECT_EQ(5u, virtualSlot(&VolumeControllerInterface::masterVolumeLevelDecibel));
    EXPECT_EQ(6u, virtualSlot(&VolumeControllerInterface::setVolumeLevelPercent));
    EXPECT_EQ(7u, virtualSlot(&VolumeControllerInterface::setVolumeLevelDecibel));
    EXPECT_EQ(8u, virtualSlot(&VolumeControllerInterface::setMasterVolumeLevelPercent));
    EXPECT_EQ(9u, virtualSlot(&VolumeControllerInterface::setMasterVolumeLevelDecibel));
    EXPECT_EQ(10u, virtualSlot(&VolumeControllerInterface::registerVolumeChangeNotification));
    EXPECT_EQ(11u, virtualSlot(&VolumeControllerInterface::ownerName));
    EXPECT_EQ(12u, virtualSlot(&VolumeControllerInterface::ownerType));
    EXPECT_EQ(13u, virtualSlot(&VolumeControllerInterface::isMuted));
    EXPECT_EQ(14u, virtualSlot(&VolumeControllerInterface::setMute));
    EXPECT_EQ(15u, virtualSlot(&VolumeControllerInterface::hasVolumeControl));
    EXPECT_EQ(16u, virtualSlot(&VolumeControllerInterface::hasMuteControl));
    EXPECT_EQ(19u, virtualSlot(&Extended<VolumeControllerInterface>::further));
}

TEST(VirtualOrder, OfSerializableBeginsWithTheDestructor)
{
    EXPECT_EQ(2u, virtualSlot(&qor::Serializable::doSerialization));
    EXPECT_EQ(3u, virtualSlot<ReadText>(&qor::Serializable::deserialize));
    EXPECT_EQ(4u, virtualSlot(&qor::Serializable::deserializeFromElement));
    EXPECT_EQ(5u, virtualSlot(&qor::Serializable::serializeToXML));
    EXPECT_EQ(6u, virtualSlot(&qor::Serializable::objectClassName));
    EXPECT_EQ(7u, virtualSlot(&qor::Serializable::serializeBegin));
    EXPECT_EQ(8u, virtualSlot(&qor::Serializable::serializeEnd));
    EXPECT_EQ(9u, virtualSlot(&qor::Serializable::getSerializedXML));
    EXPECT_EQ(10u, virtualSlot(&qor::Serializable::deserializeBegin));
    EXPECT_EQ(11u, virtualSlot(&qor::Serializable::deserializeEnd));
    EXPECT_EQ(12u, virtualSlot(&qor::Serializable::insertValueToContainer));
    EXPECT_EQ(13u, virtualSlot(&Extended<qor::Serializable>::further));
}

TEST(VirtualOrder, IsNotAddedToByArray)
{
    EXPECT_EQ(13u, virtualSlot(&Extended<qor::Array<qor::String>>::further));
}

#endif
