#include "simulator/faultplan.h"

#include "simulator/journal.h"
#include "simulator/machine/namedvalues.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace sim
{
/// The clock of a plan. Its rules share it, because they may outlive the plan.
struct FaultPlan::Time
{
    using Point = Clock::time_point;

    Point now() const
    {
        const std::lock_guard<Mutex> lock(mutex);
        return clock();
    }

    mutable Mutex mutex;
    std::function<Point()> clock = [] { return Clock::now(); };
};

/// A rule and its counts. The mutex is the rule's own, because handles may outlive the plan.
struct PlannedFault::Shared
{
    mutable Mutex mutex;
    FaultRule rule;
    std::function<void()> action;
    std::optional<Lie> lie;
    std::uint32_t met = 0;
    std::uint32_t fired = 0;
    std::shared_ptr<FaultPlan::Time> time;
    std::optional<FaultPlan::Time::Point> begin; ///< since when the rule holds; no value: its event has not happened

    void beginNow() { begin = time->now(); }

    bool holds() const
    {
        if (!begin || rule.forMilliseconds == 0)
            return begin.has_value();
        return time->now() < *begin + std::chrono::milliseconds(rule.forMilliseconds);
    }

    bool fits(const std::string& operation, const std::string& object, const std::vector<std::string>& arguments,
              const std::string& finerObject) const
    {
        const bool isFinerObject = !finerObject.empty() && rule.object == finerObject;
        if (rule.object != "*" && rule.object != object && !isFinerObject)
            return false;
        if (!beginsAsRuled(arguments))
            return false;
        if (rule.operation == operation)
            return true;
        const std::size_t colons = operation.rfind("::");
        return colons != std::string::npos && operation.compare(colons + 2, std::string::npos, rule.operation) == 0;
    }

    bool beginsAsRuled(const std::vector<std::string>& arguments) const
    {
        if (rule.arguments.empty())
            return rule.argument.empty() || (!arguments.empty() && arguments.front() == rule.argument);
        return rule.arguments.size() <= arguments.size() &&
               std::equal(rule.arguments.begin(), rule.arguments.end(), arguments.begin());
    }
};

namespace
{
/// "IMMDevice::Activate(IAudioClient)"
std::string callOf(const FaultRule& rule)
{
    JournalEntry call;
    call.operation = rule.operation;
    call.arguments = rule.arguments;
    if (call.arguments.empty() && !rule.argument.empty())
        call.arguments = {rule.argument};
    return call.arguments.empty() ? call.operation : call.call();
}
}

InjectedException::InjectedException(const std::string& operation) : std::runtime_error("planned: " + operation) {}

PlannedFault::PlannedFault(std::shared_ptr<Shared> shared) : m_shared(std::move(shared)) {}

PlannedFault& PlannedFault::on(const std::string& object)
{
    const std::lock_guard<Mutex> lock(m_shared->mutex);
    m_shared->rule.object = object;
    return *this;
}

PlannedFault& PlannedFault::with(const std::string& firstArgument)
{
    const std::lock_guard<Mutex> lock(m_shared->mutex);
    m_shared->rule.argument = firstArgument;
    m_shared->rule.arguments.clear();
    return *this;
}

PlannedFault& PlannedFault::with(std::vector<std::string> firstArguments)
{
    const std::lock_guard<Mutex> lock(m_shared->mutex);
    m_shared->rule.argument.clear();
    m_shared->rule.arguments = std::move(firstArguments);
    return *this;
}

PlannedFault& PlannedFault::with(std::initializer_list<const char*> firstArguments)
{
    return with(std::vector<std::string>(firstArguments.begin(), firstArguments.end()));
}

PlannedFault& PlannedFault::at(std::uint32_t call)
{
    const std::lock_guard<Mutex> lock(m_shared->mutex);
    m_shared->rule.call = call;
    m_shared->met = 0;
    return *this;
}

PlannedFault& PlannedFault::during(std::chrono::milliseconds duration)
{
    if (duration.count() < 1 || duration.count() > std::numeric_limits<std::uint32_t>::max())
        throw std::invalid_argument("a fault holds for 1 to 4294967295 milliseconds");
    const std::lock_guard<Mutex> lock(m_shared->mutex);
    m_shared->rule.forMilliseconds = static_cast<std::uint32_t>(duration.count());
    if (!m_shared->rule.after)
        m_shared->beginNow();
    return *this;
}

PlannedFault& PlannedFault::after(ScriptEvent::Kind event)
{
    const std::lock_guard<Mutex> lock(m_shared->mutex);
    m_shared->rule.after = event;
    m_shared->begin.reset();
    return *this;
}

std::uint32_t PlannedFault::met() const
{
    const std::lock_guard<Mutex> lock(m_shared->mutex);
    return m_shared->met;
}

std::uint32_t PlannedFault::fired() const
{
    const std::lock_guard<Mutex> lock(m_shared->mutex);
    return m_shared->fired;
}

FaultRule PlannedFault::rule() const
{
    const std::lock_guard<Mutex> lock(m_shared->mutex);
    return m_shared->rule;
}

FaultPlan::FaultPlan() : m_time(std::make_shared<Time>()) {}

void FaultPlan::useClock(std::function<Clock::time_point()> now)
{
    const std::lock_guard<Mutex> lock(m_mutex);
    {
        const std::lock_guard<Mutex> timeLock(m_time->mutex);
        m_time->clock = std::move(now);
    }
    for (const auto& shared : m_rules)
    {
        const std::lock_guard<Mutex> ruleLock(shared->mutex);
        if (shared->begin)
            shared->beginNow();
    }
}

PlannedFault FaultPlan::fail(const std::string& operation, HRESULT result)
{
    FaultRule rule;
    rule.operation = operation;
    rule.result = result;
    return add(rule);
}

PlannedFault FaultPlan::succeedWithNull(const std::string& operation)
{
    FaultRule rule;
    rule.operation = operation;
    rule.outcome = FaultRule::Outcome::nullSuccess;
    return add(rule);
}

PlannedFault FaultPlan::raise(const std::string& operation)
{
    FaultRule rule;
    rule.operation = operation;
    rule.outcome = FaultRule::Outcome::thrown;
    return add(rule);
}

PlannedFault FaultPlan::run(const std::string& operation, std::function<void()> action)
{
    FaultRule rule;
    rule.operation = operation;
    return add(rule, std::move(action), {});
}

PlannedFault FaultPlan::lie(const std::string& operation, const Lie& lie)
{
    FaultRule rule;
    rule.operation = operation;
    return add(rule, {}, lie);
}

PlannedFault FaultPlan::add(const FaultRule& rule)
{
    return add(rule, {}, {});
}

PlannedFault FaultPlan::add(const FaultRule& rule, std::function<void()> action, std::optional<Lie> lie)
{
    auto shared = std::make_shared<PlannedFault::Shared>();
    shared->rule = rule;
    shared->action = std::move(action);
    shared->lie = std::move(lie);
    shared->time = m_time;
    if (!rule.after)
        shared->beginNow();
    const std::lock_guard<Mutex> lock(m_mutex);
    m_rules.push_back(shared);
    m_count = m_rules.size();
    return PlannedFault(std::move(shared));
}

void FaultPlan::clear()
{
    const std::lock_guard<Mutex> lock(m_mutex);
    m_rules.clear();
    m_count = 0;
}

std::vector<PlannedFault> FaultPlan::faults() const
{
    const std::lock_guard<Mutex> lock(m_mutex);
    std::vector<PlannedFault> result;
    for (const auto& rule : m_rules)
        result.push_back(PlannedFault(rule));
    return result;
}

std::vector<std::string> FaultPlan::unmet() const
{
    std::vector<std::string> result;
    for (const PlannedFault& fault : faults())
    {
        if (fault.fired() > 0)
            continue;
        const FaultRule rule = fault.rule();
        std::string line = callOf(rule);
        line.append(" on ").append(rule.object);
        if (rule.call != 0)
            line.append(", call ").append(std::to_string(rule.call));
        if (rule.after)
            line.append(", after ").append(nameOf(eventNames, *rule.after));
        if (rule.forMilliseconds != 0)
            line.append(", for ").append(std::to_string(rule.forMilliseconds)).append(" ms");
        result.push_back(line + ": met " + std::to_string(fault.met()) + " times");
    }
    return result;
}

bool FaultPlan::isEmpty() const
{
    return m_count.load(std::memory_order_relaxed) == 0;
}

FaultPlan::Verdict FaultPlan::judge(const std::string& operation, const std::string& object,
                                    const std::vector<std::string>& arguments, const std::string& finerObject)
{
    Verdict verdict;
    const std::lock_guard<Mutex> lock(m_mutex);
    for (const auto& shared : m_rules)
    {
        const std::lock_guard<Mutex> ruleLock(shared->mutex);
        if (!shared->fits(operation, object, arguments, finerObject) || !shared->holds())
            continue;
        ++shared->met;
        if (shared->rule.call != 0 && shared->rule.call != shared->met)
            continue;
        ++shared->fired;
        if (shared->action)
        {
            verdict.actions.push_back(shared->action);
        }
        else if (shared->lie)
        {
            verdict.lies.push_back(*shared->lie);
        }
        else if (!verdict.outcome)
        {
            verdict.outcome = shared->rule.outcome;
            verdict.result = shared->rule.result;
        }
    }
    return verdict;
}

void FaultPlan::happened(ScriptEvent::Kind event)
{
    const std::lock_guard<Mutex> lock(m_mutex);
    for (const auto& shared : m_rules)
    {
        const std::lock_guard<Mutex> ruleLock(shared->mutex);
        if (shared->rule.after == event)
            shared->beginNow();
    }
}
}
