/// One run of an operation whose calls fail.
#pragma once

#include "simulator/simulation.h"
#include "tests/faults/engine/fault.h"
#include "tests/faults/engine/finding.h"
#include "tests/support/logcapture.h"

#include <functional>
#include <string>
#include <vector>

namespace faults
{
/// All that a run leaves to be judged.
struct Record
{
    std::vector<Fault> faults;
    std::vector<bool> fired;          ///< for each of them
    sim::JournalEntries calls;        ///< those during act(), references included
    std::vector<std::string> answers; ///< what act() found
    std::vector<std::string> later;   ///< what its objects answer when the faults are gone
    std::string thrown;               ///< what left act(): "InjectedException: planned: Release"; else empty
    sim::JournalEntries allCalls;     ///< of the whole run
    std::size_t callsBefore = 0;      ///< of these, those that prepare act()
    sim::Census left;                 ///< when everything has ended
    std::vector<support::LogCapture::Record> log;
    std::vector<Finding> findings; ///< the operation's own
};

/// What an operation gets. It prepares what it needs, calls act() once, and may use its objects again afterwards.
///
///     void controls(Run& run)
///     {
///         const Cards cards = discover();
///         Controls controls;
///         run.act([&] { controls = controlsOf(cards); });
///         run.answer(textOf(controls));
///         run.later(textOf(controlsOf(cards)));
///     }
class Run
{
public:
    Run(sim::Simulation& simulation, std::vector<Fault> faults);

    sim::Simulation& simulation() { return m_simulation; }
    bool hasFaults() const { return !m_record.faults.empty(); }

    /// @p action makes the calls that fail. What it throws is noted and ends here.
    void act(const std::function<void()>& action);
    /// Whether act() has ended.
    bool hasActed() const { return m_hasActed; }

    /// Notes what act() has found, which depends on the faults.
    void answer(const std::string& text) { m_record.answers.push_back(text); }
    /// Notes what objects answer after act(), which must not depend on them.
    void later(const std::string& text) { m_record.later.push_back(text); }
    /// Reports what is wrong.
    void report(Kind kind, const std::string& text);

    Record& record() { return m_record; }

private:
    void plan();
    void end();

    sim::Simulation& m_simulation;
    Record m_record;
    std::vector<sim::PlannedFault> m_planned;
    bool m_hasActed = false;
};

/// Calls @p action. @return what it threw: "qor::AssertionFailure: …", "InjectedException: …", "std::bad_alloc: …",
/// "exception: …"; empty if nothing
std::string thrownBy(const std::function<void()>& action);
}
