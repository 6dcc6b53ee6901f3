/// @file
/// The fixture of the client layer's tests.
#pragma once

#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/redirection.h"
#include "simulator/simulation.h"
#include "sonavit/system.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace support
{
/// Keeps the multithreaded apartment on a thread while it lives, as the client layer's worker does; for tests that call
/// readings themselves. On Windows, where the test's thread already has an apartment of its own, that one stays.
class ComOnThisThread
{
public:
    ComOnThisThread();
    ~ComOnThisThread();
    ComOnThisThread(const ComOnThisThread&) = delete;
    ComOnThisThread& operator=(const ComOnThisThread&) = delete;

private:
    bool m_isInitialized;
};

[[nodiscard]] inline ComOnThisThread comOnThisThread()
{
    return ComOnThisThread();
}

/// A test of the client layer on a simulated machine.
///
/// The machine answers every thread of the layer's code. What Windows forbids in a callback fails the test. At the end
/// of the test, when all of the layer's objects have ended, the machine must hold nothing of theirs: no reference, no
/// memory, no client.
class ClientTest : public testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    /// Starts the machine of that name, or of that file; at most once in a test, and before the first System.
    sim::Simulation& play(const std::string& machineName);
    sim::Simulation& play(sim::Machine machine);
    sim::Simulation& simulation() { return *m_simulation; }

    /// Options with which the worker meets the machine on Windows, too, and which wait long. Each System of a test
    /// begins with them.
    sonavit::System::Options options();

private:
    std::unique_ptr<sim::Redirection> m_redirection;
    std::unique_ptr<sim::Simulation> m_simulation;
};
}
