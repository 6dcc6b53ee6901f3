#include "tests/client/capturing/surveytest.h"

#include "simulator/machine/file/machinefile.h"

#include <utility>

sim::Simulation& SurveyTest::start(const std::string& machineName)
{
    return start(machineWithoutHardware(machineName));
}

sim::Simulation& SurveyTest::start(sim::Machine machine)
{
    sim::Simulation& simulation = play(std::move(machine));
    simulation.latency().clear();
    m_com.emplace();
    return simulation;
}

void SurveyTest::TearDown()
{
    m_com.reset();
    ClientTest::TearDown();
}

capturing::Survey SurveyTest::survey()
{
    return capturing::surveyPlatform([] {});
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
