#pragma once

#include "libSonavit/soundcard.h"
#include "tests/libSonavit/soundcard/supportgraphs.h"
#include "tests/support/librarytest.h"

namespace support
{
inline constexpr const char* cardChannel = "libSonavit.soundcard";

/// Entered for each topology whose connectors are registered.
inline constexpr const char* topologyLabel = "SoundCard::registerConnectors(const AudioDeviceTopology& deviceTopology)";

/// A test of the only card of a machine, which is discovered once the test has drawn the machine's graph.
struct GraphCardTest : LibraryTest
{
    ~GraphCardTest() noexcept override {} // the cards' own may throw

    /// Discovers the card. A test that has started the machine itself gets the card of that.
    SoundCard& discovered()
    {
        if (!isRunning)
            start();
        cards = SoundCard::enumerateSystemSoundDevices();
        EXPECT_EQ(1u, cards.size());
        return cards[0];
    }

    sim::Simulation& start()
    {
        isRunning = true;
        return run(graph.machine);
    }

    void TearDown() override
    {
        cards.clear();
        LibraryTest::TearDown();
    }

    GraphMachine graph;
    qor::Array<SoundCard> cards;
    bool isRunning = false;
};
} // namespace support
