/// @file
/// What the tests of surveys have in common.
#pragma once

#include "client/capturing/survey.h"
#include "tests/support/clienttest.h"

#include <optional>
#include <ostream>

namespace capturing = sonavit::capturing;

/// A test that surveys simulated machines on its own thread.
class SurveyTest : public support::ClientTest
{
protected:
    /// Starts the machine of that name without its hardware graphs.
    sim::Simulation& start(const std::string& machineName);
    sim::Simulation& start(sim::Machine machine);
    void TearDown() override;

    capturing::Survey survey();

private:
    std::optional<support::ComOnThisThread> m_com;
};

/// The machine of that name, without topologies, joins and script.
sim::Machine machineWithoutHardware(const std::string& machineName);

namespace sonavit::capturing
{
inline void PrintTo(const FailedCall& failure, std::ostream* out)
{
    *out << failure.call() << " on \"" << failure.object << "\": " << failure.code;
}
}
