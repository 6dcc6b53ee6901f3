#include "tests/libSonavit/audiodeviceendpoint/devicetest.h"

#include "libSonavit/volumechangenotification.h"
#include "tests/libSonavit/supportchannels.h"

namespace
{
using qor::LoggerPriority;
using testing::ElementsAre;

/// The controller that an endpoint device makes and shares.
class AudioDeviceVolumeControl : public devicetest::DeviceTest
{
protected:
    /// Runs the machine for a test that refreshes endpoints @p refreshes times.
    void startFor(long refreshes)
    {
        start();
        kept.directSoundTexts = refreshes;
    }
};

TEST_F(AudioDeviceVolumeControl, HasTheNameAndTypeThatWereJustRead)
{
    startFor(1);
    AudioDevice device(reference(speaker.id()));
    log.clear();

    const SharedPointer<VolumeControllerInterface> control = device.volumeControl();

    ASSERT_NE(nullptr, control.get());
    EXPECT_EQ("Speakers", control->ownerName().toUtf8());
    EXPECT_TRUE(control->ownerType() == sim::nodetypes::speaker);
    EXPECT_EQ(2u, control->numChannel());
    EXPECT_THAT(log.entered(channels::audioDevice), ElementsAre("AudioDevice::volumeControl"));
}

TEST_F(AudioDeviceVolumeControl, IsSharedByAllCopies)
{
    startFor(1);
    AudioDevice device(reference(speaker.id()));
    AudioDevice copy(device);
    AudioDevice assigned;
    assigned = copy;

    EXPECT_EQ(device.volumeControl().get(), copy.volumeControl().get());
    EXPECT_EQ(device.volumeControl().get(), assigned.volumeControl().get());
}

TEST_F(AudioDeviceVolumeControl, OutlivesTheDevice)
{
    startFor(1);
    SharedPointer<VolumeControllerInterface> control;
    {
        AudioDevice device(reference(speaker.id()));
        control = device.volumeControl();
    }

    EXPECT_EQ(1, simulation().census().references("IAudioEndpointVolume"));
    EXPECT_EQ(2u, control->numChannel());
}

TEST_F(AudioDeviceVolumeControl, IsCreatedEvenWithoutAnInterface)
{
    speaker.withoutVolume();
    startFor(1);
    AudioDevice device(reference(speaker.id()));
    const COMPtr<VolumeChangeNotification>::pointer notification = new VolumeChangeNotification;

    const SharedPointer<VolumeControllerInterface> control = device.volumeControl();

    ASSERT_NE(nullptr, control.get());
    EXPECT_TRUE(control->hasVolumeControl());
    EXPECT_FALSE(control->registerVolumeChangeNotification(notification));
    EXPECT_THAT(log.texts(LoggerPriority::LOG_WARNING, "libSonavit.volumecontroller"),
                ElementsAre("Volume controller has not been initialized yet"));
    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING),
                ElementsAre("Interface is not available for this device Speakers Analog Audio 0x80004002"));
}

TEST_F(AudioDeviceVolumeControl, IsMissingForAnAdapterDeviceWithAFatalMessage)
{
    start();
    AudioDevice device;

    device.initialize(reference(card.adapter().id));

    EXPECT_EQ(nullptr, device.volumeControl().get());
    EXPECT_THAT(messages(LoggerPriority::LOG_FATAL),
                ElementsAre("Not implemented. Subunits don't always have a volume controller"));
    EXPECT_EQ(0u, simulation().journal().of("IMMDevice::Activate").with("IAudioEndpointVolume").size());
    EXPECT_FALSE(device.createVolumeControl());
}

TEST_F(AudioDeviceVolumeControl, OfAnEarlierEndpointIsKeptByAnAdapterDevice)
{
    startFor(2); // the store stays that of the speaker
    AudioDevice device(reference(speaker.id()));
    VolumeControllerInterface* const before = device.volumeControl().get();

    device.initialize(reference(card.adapter().id));

    EXPECT_EQ(before, device.volumeControl().get());
    EXPECT_TRUE(device.createVolumeControl());
}

TEST_F(AudioDeviceVolumeControl, IsReplacedByASecondInitialize)
{
    startFor(2);
    AudioDevice device(reference(speaker.id()));
    AudioDevice copy(device);

    device.initialize(reference(microphone.id()));

    EXPECT_NE(device.volumeControl().get(), copy.volumeControl().get());
    EXPECT_EQ(2, simulation().census().references("IAudioEndpointVolume"));
    copy = AudioDevice(); // the last holder of the first controller
    EXPECT_EQ(1, simulation().census().references("IAudioEndpointVolume"));
}

TEST_F(AudioDeviceVolumeControl, IsCreatedUnderTheLabelOfVolumeControl)
{
    startFor(1);
    AudioDevice device(reference(speaker.id()));
    log.clear();

    EXPECT_TRUE(device.createVolumeControl());

    EXPECT_THAT(log.entered(channels::audioDevice),
                ElementsAre("AudioDevice::volumeControl", "AudioDevice::volumeController()",
                            "AudioDevice::activateDeviceInterface()"));
}
}
