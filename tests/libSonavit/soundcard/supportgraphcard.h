#pragma once

#include "libSonavit/soundcard.h"
#include "tests/libSonavit/soundcard/supportgraphs.h"
#include "tests/support/librarytest.h"

namespace support
{
inline constexpr const char* cardChannel = "libSonavit.soundcard";

/// Entered for each topology whose connectors are registered.
inline constexpr const char* topologyLabel = "SoundCard::registerConnectors(const AudioDeviceTopology& deviceTopology)";

/// A test of the only card of a machine, which is discovered after the test has built the machine's graph.
struct GraphCardTest : LibraryTest
{
    ~GraphCardTest() noexcept override {} // the cards' own may throw

    /// Discovers the card of the machine, which starts now unless the test has started it already.
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

    /// Makes the first Release of part @p id throw after @p operation of that part: of the reference that the library
    /// holds during the call.
    void throwAtTheReleaseAfter(const std::string& operation, const std::string& id)
    {
        simulation()
            .faults()
            .run(operation, [this, id] { simulation().faults().raise("Release").on(id).at(1); })
            .on(id);
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
}
