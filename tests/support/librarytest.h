#pragma once

#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/simulation.h"
#include "tests/support/logcapture.h"
#include "tests/support/printers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

namespace support
{
/// What the library leaves with the platform for good, on purpose. Each test says how much of it there is.
struct Kept
{
    long partsLists = 0;       ///< one for each walk to the neighbours of a part that found any
    long directSoundTexts = 0; ///< one for each refresh that read a DirectSound GUID
    long defaultDeviceIds = 0; ///< one for each answered question for the default endpoint
};

/// A test of the library on a simulated machine: COM on the test's thread, the machine, and the log.
///
/// What Windows forbids in a callback fails the test. At its end the shared enumerator goes, as at the end of the
/// module, with all clients and what they hold. After that the machine must hold nothing but what the test has declared
/// in `kept`.
class LibraryTest : public testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    /// Starts the machine; at most once in a test. Clients are called before the operation that causes an event
    /// returns.
    sim::Simulation& run(sim::Machine machine);

    sim::Simulation& simulation() { return *m_simulation; }

    /// Takes the shared enumerator down, as the end of the module does.
    static void endModule();

    Kept kept;
    LogCapture log;

private:
    std::unique_ptr<sim::Simulation> m_simulation;
};
}
