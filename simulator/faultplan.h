/// @file
/// The fault plan of a simulated machine: which calls fail, and how.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "simulator/machine/machine.h"
#include "simulator/mutex.h"

namespace sim
{
/// What leaves an operation that the plan makes throw.
class InjectedException : public std::runtime_error
{
public:
    explicit InjectedException(const std::string& operation);
};

/// One rule of a plan: a cheap handle, whose copies mean the same rule. It may outlive the plan.
///
/// A rule meets a call when operation, object and first argument fit; it fires at the n-th call that it meets, or at
/// each of them.
class PlannedFault
{
public:
    /// Only on this object: a device id, the global id of a part, or another name that the journal shows.
    PlannedFault& on(const std::string& object);
    /// Only with this first argument, as the journal writes it.
    PlannedFault& with(const std::string& firstArgument);
    /// Only at the @p call -th call that fits, counted from 1 and from now on.
    PlannedFault& at(std::uint32_t call);

    /// Calls that fitted, and those of them at which the rule fired. A test asserts with these that its fault was met.
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
/// Operations are named as in the journal; a bare name such as "Release" stands for that operation of every interface.
/// When several rules fire at one call, the first that was planned decides. A failing call stores null in its
/// out-pointers and leaves other out-parameters as they are; a call that succeeds without doing anything ("null
/// success") zeroes those too. AddRef, CoTaskMemFree and CoUninitialize always work, and the latter two meet no rule at
/// all, not even one of run().
class FaultPlan
{
public:
    /// The call answers @p result.
    PlannedFault fail(const std::string& operation, HRESULT result = E_FAIL);
    /// The call answers S_OK, or what else is 0, and hands out nothing.
    PlannedFault succeedWithNull(const std::string& operation);
    /// The call throws InjectedException. A Release that throws has given up its reference all the same.
    PlannedFault raise(const std::string& operation);
    /// @p action runs ahead of the call, on its thread; then the call does its work.
    PlannedFault run(const std::string& operation, std::function<void()> action);
    /// A rule as a machine holds it.
    PlannedFault add(const FaultRule& rule);

    /// Forgets all rules, those of the machine included.
    void clear();

    /// All rules in order.
    std::vector<PlannedFault> faults() const;
    /// Readable lines of the rules that have not fired yet; empty when the plan has been met in full.
    std::vector<std::string> unmet() const;

    /// What is to happen to a call.
    struct Verdict
    {
        std::vector<std::function<void()>> actions;
        std::optional<FaultRule::Outcome> outcome;
        HRESULT result = S_OK;
    };

    /// For the platform's objects: whether there is any rule, and what the plan has for this call, which it counts.
    bool isEmpty() const;
    Verdict judge(const std::string& operation, const std::string& object, const std::vector<std::string>& arguments);

private:
    PlannedFault add(const FaultRule& rule, std::function<void()> action);

    mutable Mutex m_mutex;
    std::vector<std::shared_ptr<PlannedFault::Shared>> m_rules;
    std::atomic<std::size_t> m_count{0};
};
}
