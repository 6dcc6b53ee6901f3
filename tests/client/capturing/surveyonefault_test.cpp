// Surveys at which one call of the platform fails: the machine that each of them finds is surveyed with the same
// result.
#include "tests/client/capturing/supportsweep.h"
#include "tests/client/capturing/surveytest.h"
#include "tests/support/pace.h"

#include <iterator>
#include <map>
#include <tuple>

namespace
{
/// A code that nothing else returns.
constexpr HRESULT planned = static_cast<HRESULT>(0x8007045D);

/// The n-th call of an operation.
struct NthCall
{
    std::string operation;
    std::uint32_t number = 0;
    std::string text;
};

/// The calls that fail.
std::vector<NthCall> sampled(const std::vector<sim::JournalEntry>& entries)
{
    std::vector<NthCall> calls;
    std::map<std::string, std::uint32_t> counts;
    using Extent = support::CallSample::Extent;
    support::CallSample sample(support::isSlow ? Extent::first : Extent::several);
    for (const sim::JournalEntry& entry : entries)
    {
        const std::uint32_t number = ++counts[entry.operation];
        if (sample.contains(entry))
            calls.push_back({entry.operation, number, entry.line()});
    }
    return calls;
}

using MachineAndOutcome = std::tuple<const char*, sim::FaultRule::Outcome>;

class SurveyPlatformWithAFailingCall : public SurveyTest, public testing::WithParamInterface<MachineAndOutcome>
{
protected:
    /// The survey of a machine at which one call fails.
    capturing::Survey surveyWithout(const sim::Machine& machine, const NthCall& call)
    {
        std::optional<sim::PlannedFault> fault;
        const capturing::Survey found =
            surveyOf(machine, [&](sim::Simulation& simulation) { fault = failOnce(simulation, call); });
        EXPECT_EQ(1u, fault->fired());
        return found;
    }

private:
    static sim::PlannedFault failOnce(sim::Simulation& simulation, const NthCall& call)
    {
        sim::FaultRule rule;
        rule.operation = call.operation;
        rule.call = call.number;
        rule.outcome = std::get<1>(GetParam());
        rule.result = planned;
        return simulation.faults().add(rule);
    }
};

TEST_P(SurveyPlatformWithAFailingCall, FindsAMachineThatIsSurveyedWithTheSameResult)
{
    const sim::Machine machine = machineWithoutHardware(std::get<0>(GetParam()));
    const std::vector<NthCall> calls = sampled(callsOfASurvey(machine));
    ASSERT_LT(40u, calls.size());
    for (const NthCall& call : support::share(calls, 3))
    {
        SCOPED_TRACE(call.text);

        const capturing::Survey found = surveyWithout(machine, call);

        expectSame(found, replay(found));
        ASSERT_FALSE(HasFailure());
    }
}

/// Where there is time for few cases only, the first.
constexpr const char* machines[] = {"virtual", "desktop"};

INSTANTIATE_TEST_SUITE_P(
    Machines, SurveyPlatformWithAFailingCall,
    testing::Combine(testing::ValuesIn(std::begin(machines), std::end(machines) - support::cases(0, 1)),
                     testing::Values(sim::FaultRule::Outcome::result, sim::FaultRule::Outcome::nullSuccess)),
    [](const testing::TestParamInfo<MachineAndOutcome>& each)
    {
        const bool isNull = std::get<1>(each.param) == sim::FaultRule::Outcome::nullSuccess;
        return std::string(std::get<0>(each.param)) + (isNull ? "WithNull" : "WithACode");
    });
}
