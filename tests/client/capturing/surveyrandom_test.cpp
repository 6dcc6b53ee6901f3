#include "tests/client/capturing/surveytest.h"
#include "tests/support/pace.h"
#include "tests/support/randommachine.h"

#include <random>

namespace
{
constexpr std::uint32_t distance = 50; ///< between the first seeds of two tests
constexpr std::uint32_t seedsInATest = support::cases(distance, 3);
constexpr int failuresInAMachine = 4;

class SurveyPlatformAtRandom : public SurveyTest, public testing::WithParamInterface<std::uint32_t>
{
protected:
    /// The call fails each time, or gives null.
    static sim::FaultRule failing(const sim::JournalEntry& call, bool isNull)
    {
        sim::FaultRule rule;
        rule.operation = call.operation;
        if (!call.object.empty())
            rule.object = call.object;
        rule.arguments = call.arguments;
        rule.outcome = isNull ? sim::FaultRule::Outcome::nullSuccess : sim::FaultRule::Outcome::result;
        return rule;
    }
};

TEST_P(SurveyPlatformAtRandom, FindsMachinesThatAreSurveyedWithTheSameResult)
{
    for (std::uint32_t seed = GetParam(); seed < GetParam() + seedsInATest; ++seed)
    {
        SCOPED_TRACE(seed);
        const sim::Machine machine = support::withOddLevels(support::randomMachine(seed), seed);

        const capturing::Survey found = surveyOf(machine);

        expectSame(found, replay(found));
        ASSERT_FALSE(HasFailure());
    }
}

TEST_P(SurveyPlatformAtRandom, FindsAMachineAgainAtWhichSeveralCallsFail)
{
    const sim::Machine whole = machineWithoutHardware("desktop");
    const std::vector<sim::JournalEntry> calls = callsOfASurvey(whole);
    ASSERT_LT(100u, calls.size());
    for (std::uint32_t seed = GetParam(); seed < GetParam() + seedsInATest; ++seed)
    {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        sim::Machine machine = whole;
        for (int count = 0; count < failuresInAMachine; ++count)
            machine.faults.push_back(failing(calls[random() % calls.size()], random() % 3 == 0));

        const capturing::Survey found = surveyOf(machine);

        expectSame(found, replay(found));
        ASSERT_FALSE(HasFailure());
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, SurveyPlatformAtRandom, testing::Values(1u, 1u + distance, 1u + 2 * distance));
}
