#include "tests/faults/library/trial.h"

#include "libSonavit/endpointdeviceenumerator.h"

#include <sstream>
#include <utility>

namespace faults::library
{
namespace
{
/// COM on this thread.
class Apartment
{
public:
    Apartment() { CoInitialize(nullptr); }
    ~Apartment() { CoUninitialize(); }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
};

/// Takes the shared enumerator down, as the end of the module does.
void endModule()
{
    libSonavit::AudioDeviceEnumeratorFactory::m_enumerator = nullptr;
}

void reportThrown(Run& run, const char* where, const std::string& thrown)
{
    if (!thrown.empty())
        run.report(Kind::exception, where + (": " + thrown));
}
}

Record perform(const Operation& operation, const sim::Machine& machine, std::vector<Fault> faults)
{
    const Apartment apartment;
    sim::Simulation simulation(machine);
    simulation.deliverAtOnce(true);
    support::LogCapture log(qor::LoggerPriority::LOG_INFO);
    Run run(simulation, std::move(faults));
    reportThrown(run, "outside the failing calls", thrownBy([&] { operation.perform(run); }));
    reportThrown(run, "at the end of the module", thrownBy(endModule));
    if (!run.hasActed())
        run.report(Kind::unmet, "the operation did not come to its calls");
    for (const sim::Violation& violation : simulation.violations())
    {
        std::ostringstream text;
        text << violation;
        run.report(Kind::answer, text.str());
    }
    Record& record = run.record();
    record.allCalls = simulation.journal().entries();
    record.left = simulation.census();
    record.log = log.records();
    return std::move(record);
}

std::vector<std::string> performModel(const Operation& operation, const sim::Machine& machine,
                                      const std::vector<Fault>& faults)
{
    const Apartment apartment;
    sim::Simulation simulation(machine);
    simulation.deliverAtOnce(true);
    return operation.model(simulation,
                           [&]
                           {
                               for (const Fault& fault : faults)
                                   plan(simulation.faults(), fault);
                           });
}
}
