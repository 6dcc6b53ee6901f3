#include "libSonavit/endpointdeviceenumerator.h"

#include "tests/libSonavit/endpointdeviceenumerator/supportendpoints.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/support/librarytest.h"

using libSonavit::AudioDeviceEnumerator;
using libSonavit::AudioDeviceEnumeratorFactory;
using qor::LoggerPriority;
using support::namesOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
struct AudioDeviceEnumeratorAudioDevices : support::LibraryTest
{
    /// The shared enumerator on @p machine with its platform enumerator, with log and journal cleared.
    AudioDeviceEnumerator& sharedOf(sim::Machine machine)
    {
        run(std::move(machine));
        AudioDeviceEnumerator& shared = *AudioDeviceEnumeratorFactory::enumerator();
        shared.deviceEnumerator();
        log.clear();
        simulation().journal().clear();
        return shared;
    }
};
}

TEST_F(AudioDeviceEnumeratorAudioDevices, ListsTheEndpointsOfAFlowInEveryStateInTheSystemsOrder)
{
    const AudioDeviceEnumerator& shared = sharedOf(support::endpointsInAllStates());
    qor::Array<AudioDevice> devices;

    const unsigned int count = shared.audioDevices(eRender, devices);

    EXPECT_EQ(5u, count);
    EXPECT_THAT(namesOf(devices), ElementsAre("Unplugged", "Active", "Not present", "Disabled", "Second active"));
    EXPECT_THAT(simulation().journal().of("IMMDeviceEnumerator::*").calls(),
                ElementsAre("IMMDeviceEnumerator::EnumAudioEndpoints(eRender, 15)"));
}

TEST_F(AudioDeviceEnumeratorAudioDevices, LogsTheirNumberAndOpensNoScope)
{
    const AudioDeviceEnumerator& shared = sharedOf(support::endpointsInAllStates());
    qor::Array<AudioDevice> devices;

    shared.audioDevices(eRender, devices);

    EXPECT_THAT(log.texts(channels::deviceEnumerator), ElementsAre("Found 5 devices"));
    EXPECT_THAT(log.texts(LoggerPriority::LOG_INFO, channels::deviceEnumerator), ElementsAre("Found 5 devices"));
    EXPECT_THAT(log.entered(channels::deviceEnumerator), IsEmpty());
}

TEST_F(AudioDeviceEnumeratorAudioDevices, ReplacesWhatTheListHeld)
{
    const AudioDeviceEnumerator& shared = sharedOf(support::endpointsInAllStates());
    qor::Array<AudioDevice> devices;
    shared.audioDevices(eRender, devices);

    const unsigned int count = shared.audioDevices(eCapture, devices);

    EXPECT_EQ(1u, count);
    EXPECT_THAT(namesOf(devices), ElementsAre("Microphone"));
}

TEST_F(AudioDeviceEnumeratorAudioDevices, EmptiesTheListForAFlowWithoutEndpoints)
{
    const AudioDeviceEnumerator& shared = sharedOf({});
    qor::Array<AudioDevice> devices;
    devices.append(AudioDevice());

    EXPECT_EQ(0u, shared.audioDevices(eRender, devices));

    EXPECT_EQ(0u, devices.size());
    EXPECT_THAT(log.texts(channels::deviceEnumerator), ElementsAre("Found 0 devices"));
}

TEST_F(AudioDeviceEnumeratorAudioDevices, PassesAllFlowsThroughToThePlatform)
{
    const AudioDeviceEnumerator& shared = sharedOf(support::endpointsInAllStates());
    qor::Array<AudioDevice> devices;

    EXPECT_EQ(6u, shared.audioDevices(eAll, devices));

    EXPECT_THAT(simulation().journal().of("IMMDeviceEnumerator::EnumAudioEndpoints").calls(),
                ElementsAre("IMMDeviceEnumerator::EnumAudioEndpoints(eAll, 15)"));
}

TEST_F(AudioDeviceEnumeratorAudioDevices, ReadsARefusedEnumerationAsNone)
{
    const AudioDeviceEnumerator& shared = sharedOf(support::endpointsInAllStates());
    qor::Array<AudioDevice> devices;
    const sim::PlannedFault fault = simulation().faults().fail("IMMDeviceEnumerator::EnumAudioEndpoints");

    EXPECT_EQ(0u, shared.audioDevices(eRender, devices));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(log.texts(), ElementsAre("Found 0 devices"));
}

TEST_F(AudioDeviceEnumeratorAudioDevices, ReadsARefusedCountAsZero)
{
    const AudioDeviceEnumerator& shared = sharedOf(support::endpointsInAllStates());
    qor::Array<AudioDevice> devices;
    const sim::PlannedFault fault = simulation().faults().fail("IMMDeviceCollection::GetCount");

    EXPECT_EQ(0u, shared.audioDevices(eRender, devices));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(log.texts(), ElementsAre("Found 0 devices"));
}

TEST_F(AudioDeviceEnumeratorAudioDevices, KeepsThePlaceOfAnEndpointThatCannotBeObtained)
{
    const AudioDeviceEnumerator& shared = sharedOf(support::endpointsInAllStates());
    qor::Array<AudioDevice> devices;
    const sim::PlannedFault fault = simulation().faults().fail("IMMDeviceCollection::Item").at(2);

    EXPECT_EQ(5u, shared.audioDevices(eRender, devices));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(namesOf(devices), ElementsAre("Unplugged", "", "Not present", "Disabled", "Second active"));
    EXPECT_FALSE(devices[1].isInitialized());
}
