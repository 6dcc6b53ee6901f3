#include "tests/client/capturing/surveytest.h"

#include "client/capturing/faults.h"
#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/valuetext.h"

#include <utility>

namespace
{
/// Calls that only count references or free memory.
bool onlyCountsOrFrees(const std::string& operation)
{
    return operation == "CoTaskMemFree" || operation == "PropVariantClear" ||
           operation.find("::Release") != std::string::npos || operation.find("::AddRef") != std::string::npos;
}
}

void SurveyTest::TearDown()
{
    m_com.reset();
    ClientTest::TearDown();
}

sim::Simulation& SurveyTest::start(sim::Machine machine)
{
    sim::Simulation& simulation = play(std::move(machine));
    simulation.latency().clear();
    enterCom();
    return simulation;
}

capturing::Survey SurveyTest::survey()
{
    return capturing::surveyPlatform([] {});
}

capturing::Survey SurveyTest::surveyOf(const sim::Machine& machine, const std::function<void(sim::Simulation&)>& plan)
{
    enterCom();
    sim::Simulation other(machine);
    other.latency().clear();
    plan(other);
    capturing::Survey found = survey();
    EXPECT_TRUE(other.census().empty()) << other.census();
    return found;
}

capturing::Survey SurveyTest::replay(const capturing::Survey& found)
{
    sim::Machine machine = found.machine;
    machine.faults = capturing::faultRules(found.failures);
    return surveyOf(throughFile(machine));
}

std::vector<sim::JournalEntry> SurveyTest::callsOfASurvey(const sim::Machine& machine)
{
    std::vector<sim::JournalEntry> calls;
    const auto record = [&](sim::Simulation& simulation)
    {
        simulation.journal().recordReferences(true);
        survey();
        for (const sim::JournalEntry& entry : simulation.journal().entries())
        {
            if (!onlyCountsOrFrees(entry.operation))
                calls.push_back(entry);
        }
    };
    surveyOf(machine, record);
    return calls;
}

void SurveyTest::enterCom()
{
    if (!m_com)
        m_com.emplace();
}

sim::Machine machineWithoutHardware(const std::string& machineName)
{
    sim::Machine machine = sim::findMachine(machineName);
    for (sim::Endpoint& endpoint : machine.endpoints)
    {
        endpoint.topology.reset();
        if (endpoint.volume)
            endpoint.volume->hardware = {};
    }
    machine.adapters.clear();
    machine.joins.clear();
    machine.script.clear();
    return machine;
}

sim::Machine machineWithOneEndpoint()
{
    sim::Machine machine;
    machine.name = "one endpoint";
    machine.composition = sim::Composition::none;
    sim::Endpoint endpoint;
    endpoint.id = "{0.0.0.00000000}.{00000001-0000-4000-8000-000000000000}";
    endpoint.hasAudioClient = true;
    endpoint.mixFormat = sim::MixFormat();
    endpoint.periods = sim::DevicePeriods();
    endpoint.volume = sim::EndpointVolume();
    machine.endpoints.push_back(std::move(endpoint));
    return machine;
}

sim::Machine throughFile(const sim::Machine& machine)
{
    return sim::readMachine(sim::writeMachine(machine), "survey.json");
}

std::vector<std::string> failuresOf(const capturing::Survey& survey)
{
    std::vector<std::string> texts;
    for (const capturing::FailedCall& failure : survey.failures)
    {
        const bool isNull = failure.outcome == capturing::FailedCall::Outcome::nullSuccess;
        texts.push_back(failureOf(failure.call(), failure.object, isNull ? "null" : sim::resultText(failure.code)));
    }
    return texts;
}

std::string failureOf(const std::string& call, const std::string& object, const std::string& outcome)
{
    return call + " on " + object + " -> " + outcome;
}

void expectSame(const capturing::Survey& left, const capturing::Survey& right)
{
    EXPECT_EQ(failuresOf(left), failuresOf(right));
    EXPECT_EQ(sim::writeMachine(left.machine), sim::writeMachine(right.machine));
    EXPECT_EQ(left.machine, throughFile(left.machine));
}
