#include "tests/client/capturing/capturetest.h"

#include "client/reading/endpointreading.h"
#include "simulator/machine/file/machinefile.h"

#include <chrono>
#include <fstream>
#include <sstream>

std::vector<std::string> Captured::lines() const
{
    std::vector<std::string> result;
    std::istringstream stream(capture.text);
    for (std::string line; std::getline(stream, line);)
        result.push_back(line);
    return result;
}

std::vector<std::string> Captured::problems() const
{
    std::vector<std::string> result;
    for (const sonavit::Problem& problem : capture.problems)
        result.push_back(problem.operation() + " on " + problem.object() + " -> " + problem.codeText());
    return result;
}

void CaptureTest::SetUp()
{
    ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
    m_redirection =
        std::make_unique<sim::Redirection>(reinterpret_cast<const void*>(&sonavit::reading::createEnumerator));
}

void CaptureTest::TearDown()
{
    m_redirection.reset();
    CoUninitialize();
}

sonavit::Result<sonavit::Capture> CaptureTest::resultOf(sim::Simulation& simulation,
                                                        const sonavit::CaptureOptions& captureOptions)
{
    sonavit::System::Options options;
    options.patience = std::chrono::minutes(10); // a busy computer must not change what a test sees
    options.onWorkerStart = [&] { static_cast<void>(simulation.registerOnThisThread()); };
    sonavit::System system(options);
    return sonavit::capture(system, captureOptions);
}

Captured CaptureTest::captured(const sim::Machine& machine, const Preparation& prepare)
{
    sim::Simulation simulation(machine);
    simulation.latency().clear();
    simulation.onViolation([](const sim::Violation& violation) { ADD_FAILURE() << violation; });
    if (prepare)
        prepare(simulation);
    Captured result;
    sonavit::Result<sonavit::Capture> capture = resultOf(simulation);
    if (capture)
        result.capture = std::move(*capture);
    else
        ADD_FAILURE() << capture.problem();
    result.journal = simulation.journal().entries();
    result.left = simulation.census();
    return result;
}

support::Examination CaptureTest::examined(const sim::Machine& machine)
{
    sim::Simulation simulation(machine);
    simulation.latency().clear();
    return support::examine(simulation);
}

sim::Machine CaptureTest::replayed(const Captured& captured)
{
    try
    {
        return sim::readMachine(captured.capture.text, "capture.json");
    }
    catch (const sim::MachineFileError& error)
    {
        ADD_FAILURE() << error.what();
        return {};
    }
}

std::string CaptureTest::lookAt(const sim::Machine& machine)
{
    const std::string path = testing::TempDir() + machine.name + ".json";
    std::ofstream(path) << sim::writeMachine(machine);
    return "see it with: sonavit graph --machine " + path;
}
