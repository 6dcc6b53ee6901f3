/// @file
/// A System on a simulated machine, on which an operation is tried.
#pragma once

#include "simulator/redirection.h"
#include "simulator/simulation.h"
#include "sonavit/client.h"
#include "tests/support/manualclock.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace faults::client
{
/// What of a machine the operations are called for. An empty id: it has no such thing.
struct Targets
{
    sonavit::EndpointId output; ///< the default output, or else the first endpoint with a volume
    sonavit::EndpointId other;  ///< an active output that is not the default
    sonavit::CardId card;       ///< of the output
    std::string instanceId;     ///< of that card
    std::vector<sonavit::CardId> cards;
    sonavit::EndpointId controlled;          ///< the first endpoint with a hardware control
    std::optional<sonavit::Control> control; ///< its first one
    sonavit::EndpointId mutable_;            ///< the first endpoint whose hardware control has a mute
    std::optional<sonavit::Control> mute;
    sonavit::CardId selecting; ///< the first card with a selector
    std::optional<sonavit::Selector> selector;
    std::string input;                           ///< the number of another of its inputs
    sonavit::EndpointId formatted;               ///< the first endpoint with a format
    std::optional<sonavit::Reference> reference; ///< to the output
    sonavit::Settings settings;                  ///< all of them, changed
};

/// Reads @p machine without any fault.
Targets targetsOf(const sim::Machine& machine);

/// The machine, its clock, and a System with what a program holds of it.
///
/// Notifications come on the thread that causes them, and time stands still, so that the same calls are made in each
/// run.
class Stage
{
public:
    Stage(const sim::Machine& machine, const Targets& targets);
    ~Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    sim::Simulation& simulation() { return *m_simulation; }
    sonavit::System& audio() { return *m_audio; }
    const Targets& targets() const { return m_targets; }

    sonavit::System::Options options();
    /// Waits until the worker has done all that is due.
    static void settle();
    /// Lets time pass before that.
    void advance(std::chrono::milliseconds duration);
    /// Ends what the program holds, and then the System.
    void endSystem();
    /// After endSystem() with everything that ever used the machine.
    sim::Census left();

    // What a program holds.
    std::vector<sonavit::Watch> watches;
    std::vector<sonavit::Subscription> subscriptions;
    std::vector<sonavit::Change> changes;
    std::optional<sonavit::FormatHold> hold;
    sim::PropertyValue formerFormat; ///< before that
    /// What the callbacks of the machine must not do, and did.
    std::vector<std::string> violations;

private:
    const Targets& m_targets;
    std::unique_ptr<sim::Redirection> m_redirection;
    std::shared_ptr<support::ManualClock> m_clock = std::make_shared<support::ManualClock>();
    std::unique_ptr<sim::Simulation> m_simulation;
    std::unique_ptr<sonavit::System> m_audio;
};
}
