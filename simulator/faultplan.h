/// @file
/// The fault plan of a simulated machine: which calls fail, and how.
#pragma once

#include "simulator/lie.h"
#include "simulator/machine/machine.h"
#include "simulator/mutex.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace sim
{
/// What a call throws if the plan says so.
class InjectedException : public std::runtime_error
{
public:
    explicit InjectedException(const std::string& operation);
};

/// One rule of a plan: a handle whose copies share the rule. It may outlive the plan.
///
/// A rule meets a call if operation, object and first arguments match, and if it holds at that time. It fires at the
/// n-th call that it meets, or at each of them.
class PlannedFault
{
public:
    /// Only on this object: a device id, the global id of a part, or another object name of the journal. Of objects
    /// that have the journal's name in common, one has a name of its own, too: "PART incoming" and "PART outgoing" are
    /// the lists of a part's neighbours, "PART to PART" is the list of a signal path, "PART control INDEX" describes
    /// one control of a part.
    PlannedFault& on(const std::string& object);
    /// Only with this first argument, as the journal records it.
    PlannedFault& with(const std::string& firstArgument);
    /// Only with these first arguments, as the journal records them; without any: with all arguments.
    PlannedFault& with(std::vector<std::string> firstArguments);
    PlannedFault& with(std::initializer_list<const char*> firstArguments);
    /// Only at the n-th call that matches, counted from now on; the next one is 1.
    PlannedFault& at(std::uint32_t call);
    /// Only for @p duration, counted from now on; after after(), from the event on. At least 1 ms and at most 2^32 - 1
    /// ms, otherwise it throws std::invalid_argument.
    PlannedFault& during(std::chrono::milliseconds duration);
    /// Not before the machine has had an event of this kind; the time of during() counts from the last one.
    PlannedFault& after(ScriptEvent::Kind event);

    /// The number of calls that matched, and of those at which the rule fired.
    std::uint32_t met() const;
    std::uint32_t fired() const;

    /// The rule itself.
    FaultRule rule() const;

private:
    friend class FaultPlan;
    struct Shared;
    explicit PlannedFault(std::shared_ptr<Shared> shared);

    std::shared_ptr<Shared> m_shared;
};

/// Plans failures. Any thread may call any operation.
///
/// Operations have their names of the journal; a bare name such as "Release" means that operation of every interface. A
/// name that no operation has is accepted, and its rule is never met. If several rules fire at one call, the one that
/// was planned first decides. A failing call stores null in its out-pointers and leaves other out-parameters as they
/// are; a call that succeeds without doing anything ("null success") also stores zero in those. AddRef, CoTaskMemFree
/// and CoUninitialize meet no rule, not even one of run().
class FaultPlan
{
public:
    using Clock = std::chrono::steady_clock;

    FaultPlan();

    /// Replaces the clock of rules that hold for a time, so that a test need not wait: @p now returns the current time,
    /// on any thread; it must not use the plan. Times that already run begin anew. Without it the clock is Clock.
    void useClock(std::function<Clock::time_point()> now);

    /// The call returns @p result.
    PlannedFault fail(const std::string& operation, HRESULT result = E_FAIL);
    /// The call returns S_OK (or 0) and stores null and zero.
    PlannedFault succeedWithNull(const std::string& operation);
    /// The call throws InjectedException. A Release that throws has released its reference nevertheless.
    PlannedFault raise(const std::string& operation);
    /// @p action runs before the call, on its thread; then the call does its work.
    PlannedFault run(const std::string& operation, std::function<void()> action);
    /// The call does its work, and if it succeeds, stores @p lie in place of what it has found. Of several lies for one
    /// call the last one that is planned shows.
    PlannedFault lie(const std::string& operation, const Lie& lie);
    /// A rule of a machine file.
    PlannedFault add(const FaultRule& rule);

    /// Removes all rules, those of the machine included.
    void clear();

    /// All rules in the order of their planning.
    std::vector<PlannedFault> faults() const;
    /// One line for each rule that has not fired yet.
    std::vector<std::string> unmet() const;

    /// What the plan decides for a call.
    struct Verdict
    {
        std::vector<std::function<void()>> actions;
        std::vector<Lie> lies;
        std::optional<FaultRule::Outcome> outcome;
        HRESULT result = S_OK;
    };

    /// For the platform's objects: whether there is no rule; the decision for a call, which is counted. The object's
    /// finer name is empty if it has none.
    bool isEmpty() const;
    Verdict judge(const std::string& operation, const std::string& object, const std::vector<std::string>& arguments,
                  const std::string& finerObject = {});
    /// For the machine's events: rules that hold after @p event begin to hold.
    void happened(ScriptEvent::Kind event);

private:
    friend class PlannedFault;
    struct Time;

    PlannedFault add(const FaultRule& rule, std::function<void()> action, std::optional<Lie> lie);

    const std::shared_ptr<Time> m_time;
    mutable Mutex m_mutex;
    std::vector<std::shared_ptr<PlannedFault::Shared>> m_rules;
    std::atomic<std::size_t> m_count{0};
};
}
