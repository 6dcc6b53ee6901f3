#include "tests/libSonavit/portable/supportoperations.h"

#include "libSonavit/endpointdeviceenumerator.h"
#include "tests/libSonavit/portable/supportnotes.h"

#include <gtest/gtest.h>

namespace support
{
const std::vector<Operation>& operations()
{
    static const std::vector<Operation> all = {{"cards", discover},          {"card-interfaces", discoverInterfaces},
                                               {"card-by-id", createCards},  {"system-information", answerAboutSystem},
                                               {"state-lists", listByState}, {"flat-lists", listFlat},
                                               {"controls", findControls},   {"jacks", findJacks},
                                               {"selectors", findSelectors}, {"events", followEvents},
                                               {"devices", useDevices},      {"topologies", useTopologies},
                                               {"volumes", useVolumes},      {"parts", walkParts}};
    return all;
}

std::string transcriptOf(const Operation& operation, const sim::Machine& machine,
                         const std::function<void(sim::FaultPlan&)>& plan)
{
    CoInitialize(nullptr);
    std::string text;
    {
        sim::Simulation simulation(machine);
        simulation.deliverAtOnce(true);
        Transcript transcript(simulation);
        if (plan)
        {
            transcript.atBegin([&] { plan(simulation.faults()); });
            transcript.leaveOutCensus();
        }
        noteThrown(transcript, [&] { operation.perform(simulation, transcript); });
        transcript.note("the module ends");
        libSonavit::AudioDeviceEnumeratorFactory::m_enumerator = nullptr; // deletes the enumerator
        transcript.note(simulation.census().describe());
        for (const sim::Violation& violation : simulation.violations())
            transcript.note("violation: " + testing::PrintToString(violation));
        text = transcript.text();
    }
    CoUninitialize();
    return text;
}
}
