/// @file
/// What the tests of surveys have in common.
#pragma once

#include "client/capturing/recorder.h"
#include "client/capturing/survey.h"
#include "tests/support/clienttest.h"

#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace capturing = sonavit::capturing;

/// What a survey consists of, in reach of its recorder.
struct Recording
{
    capturing::Survey survey;
    capturing::Recorder recorder{survey};
};

/// A test that surveys simulated machines on its own thread.
class SurveyTest : public support::ClientTest
{
protected:
    void TearDown() override;

    sim::Simulation& start(sim::Machine machine);
    capturing::Survey survey();
    /// Surveys another machine in between. @p plan may plan failures.
    capturing::Survey surveyOf(
        const sim::Machine& machine, const std::function<void(sim::Simulation&)>& plan = [](sim::Simulation&) {});
    /// Surveys a machine that is as @p found says.
    capturing::Survey replay(const capturing::Survey& found);

    /// The calls of a survey of @p machine that can fail, QueryInterface included.
    std::vector<sim::JournalEntry> callsOfASurvey(const sim::Machine& machine);

private:
    void enterCom();

    std::optional<support::ComOnThisThread> m_com;
};

/// The machine of that name, without topologies and joins.
sim::Machine machineWithoutHardware(const std::string& machineName);
/// A machine with one active render endpoint, which has an audio client and a volume.
sim::Machine machineWithOneEndpoint();

/// The machine as a file contains it.
sim::Machine throughFile(const sim::Machine& machine);

/// The failures as "IMMDevice::GetState on {0.0.0.00000000}.{…} -> 0x80004005", with "null" for a null success.
std::vector<std::string> failuresOf(const capturing::Survey& survey);
/// Such a text; the code is E_FAIL if nothing else is said.
std::string failureOf(const std::string& call, const std::string& object, const std::string& outcome = "0x80004005");

/// Expects that both surveys are equal, and that a file can contain the machine.
void expectSame(const capturing::Survey& left, const capturing::Survey& right);
