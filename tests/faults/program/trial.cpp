#include "tests/faults/program/trial.h"

#include "client/worker/worker.h"
#include "qor/logging.h"
#include "tests/faults/program/verdict.h"
#include "tests/support/manualclock.h"
#include "tools/sonavit/program.h"

#include <memory>
#include <sstream>
#include <utility>

namespace faults::program
{
namespace
{
void settle()
{
    if (const std::shared_ptr<sonavit::worker::Worker> worker = sonavit::worker::Worker::current())
        worker->settle();
}

/// Time stands still on the layer's worker, so that the same calls are made in each run.
class StillClock
{
public:
    StillClock() { sonavit::worker::replaceClock(std::make_shared<support::ManualClock>()); }
    ~StillClock() { sonavit::worker::replaceClock(nullptr); }
    StillClock(const StillClock&) = delete;
    StillClock& operator=(const StillClock&) = delete;
};
}

VerbTrial::VerbTrial(sim::Machine machine, Names names, CommandLine line, std::vector<std::string> words)
    : m_machine(std::move(machine)),
      m_names(std::move(names)),
      m_line(std::move(line)),
      m_words(std::move(words))
{
    qor::LogFactory::setPriority(qor::LoggerPriority::LOG_ERROR); // as little as a user gets
}

/// While it listens, a monitor sees a volume, a state and an addition.
Printed VerbTrial::call(sim::Simulation& simulation, const std::vector<std::string>& words) const
{
    const StillClock clock;
    std::ostringstream out;
    std::ostringstream err;
    sonavit::program::Environment environment{out, err};
    environment.readInput = [this] { return m_names.settings; };
    environment.onWorkerStart = [&] { static_cast<void>(simulation.registerOnThisThread()); };
    int pauses = 0;
    environment.pause = [&](std::chrono::milliseconds)
    {
        if (words.front() != "monitor")
            return false;
        if (++pauses == 1 && !m_names.endpoint.empty())
        {
            simulation.events().setVolume(m_names.endpoint, 0.25F, true);
            simulation.events().setState(m_names.endpoint, DEVICE_STATE_DISABLED);
            simulation.events().remove(m_names.endpoint);
            simulation.events().add(m_names.endpoint);
        }
        settle();
        return pauses == 2;
    };
    Printed printed;
    printed.code = sonavit::program::run(words, environment);
    printed.out = out.str();
    printed.err = err.str();
    return printed;
}

Record VerbTrial::perform(std::vector<Fault> faults)
{
    sim::Simulation simulation(m_machine);
    simulation.latency().clear();
    simulation.deliverAtOnce(true);
    Run run(simulation, std::move(faults));
    simulation.onViolation(
        [&](const sim::Violation& violation)
        {
            std::ostringstream text;
            text << violation;
            run.report(Kind::answer, text.str());
        });
    Printed now;
    run.act([&] { now = call(simulation, m_words); });
    if (!run.hasFaults() && !m_clean)
        m_clean = now;
    if (!run.record().thrown.empty())
        run.report(Kind::exception, run.record().thrown);
    else
        judge(run, m_line, *m_clean, now);
    judgeLeft(run);
    tryAgain(run);
    return std::move(run.record());
}

/// The program works again as soon as the platform does.
void VerbTrial::tryAgain(Run& run) const
{
    sim::Simulation& simulation = run.simulation();
    const sim::Census before = simulation.census();
    simulation.journal().clear();
    if (m_line.changesMachine)
    {
        const Printed again = call(simulation, {"list"});
        if (again.code != 0)
            run.report(Kind::reuse, "list ends with " + std::to_string(again.code) + ": " + again.err);
        return;
    }
    const Printed again = call(simulation, m_words);
    if (again.code != m_clean->code || again.out != m_clean->out || again.err != m_clean->err)
        run.report(Kind::reuse, "the next call answers otherwise: " + std::to_string(again.code) + " " + again.err);
    const sim::Census left = simulation.census() - before;
    if (!m_line.usesModel && !left.empty())
        run.report(Kind::references, "the next call leaves " + left.describe());
}
}
