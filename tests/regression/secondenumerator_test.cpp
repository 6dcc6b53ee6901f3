// A thread of the platform that asked for the shared enumerator during its destruction was given a second one, which
// was never released: the handle was emptied before the object was destroyed.

#include "libSonavit/endpointdeviceenumerator.h"
#include "libSonavit/soundcard.h"
#include "tests/support/librarytest.h"

using libSonavit::AudioDeviceEnumerator;
using libSonavit::AudioDeviceEnumeratorFactory;

namespace
{
using SharedEnumeratorDuringItsEnd = support::LibraryTest;
}

TEST_F(SharedEnumeratorDuringItsEnd, IsStillTheOneThatCallbacksGet)
{
    sim::MachineBuilder builder;
    const std::string endpoint = builder.card("Card").speaker().id();
    run(builder.build());
    const SoundCard card;
    const AudioDeviceEnumerator* const instance = AudioDeviceEnumeratorFactory::enumerator().get();
    const AudioDeviceEnumerator* seen = nullptr;
    bool isFound = false;
    const sim::PlannedFault fault = simulation().faults().run(
        "IMMDeviceEnumerator::UnregisterEndpointNotificationCallback",
        [&]
        {
            seen = AudioDeviceEnumeratorFactory::enumerator().get();
            isFound = AudioDevice(qor::String::fromUtf8(endpoint)).isInitialized(); // as the card's updater does it
        });

    endModule();

    kept.directSoundTexts = 1; // of the device
    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(instance, seen);
    EXPECT_TRUE(isFound);
    EXPECT_EQ(1u, simulation().journal().count("CoCreateInstance"));
}
