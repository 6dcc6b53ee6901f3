// A System's first snapshot, once for each call of the platform that it makes: that call fails.
#include "simulator/machine/file/machinefile.h"
#include "sonavit/contentfields.h"
#include "tests/client/watching/watchtest.h"
#include "tests/support/pace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

using namespace sonavit;

namespace
{
/// A code that nothing else returns.
constexpr HRESULT planned = static_cast<HRESULT>(0x8007045D);

/// The n-th call of an operation.
struct Call
{
    std::string operation;
    std::string argument;
    std::uint32_t number;
};

/// Calls that only free memory, and those whose answer has no code.
bool isLeftOut(const std::string& operation)
{
    static const std::set<std::string> all = {
        "CoTaskMemFree",     "CoTaskMemAlloc",   "PropVariantClear",         "CoUninitialize",
        "waveOutGetNumDevs", "waveInGetNumDevs", "getParentDeviceInstanceId"};
    return all.count(operation) != 0 || operation.find("::Release") != std::string::npos ||
           operation.find("::AddRef") != std::string::npos || operation.find("::Unregister") != std::string::npos;
}

bool isOf(const Problem& problem, const Call& call)
{
    return problem.operation().substr(0, problem.operation().find('(')) == call.operation && problem.code() == planned;
}

bool names(const std::vector<Problem>& problems, const Call& call)
{
    return std::any_of(problems.begin(), problems.end(), [&](const Problem& problem) { return isOf(problem, call); });
}

/// What fails for the computer as a whole.
bool isOfComputer(EndpointField field)
{
    return field == EndpointField::roles || field == EndpointField::waveId;
}

/// Whether the call stands for a list or for the whole platform, so that many endpoints are missing without it.
bool losesMany(const Call& call)
{
    static const std::set<std::string> all = {"CoInitializeEx", "CoCreateInstance",
                                              "IMMDeviceEnumerator::EnumAudioEndpoints",
                                              "IMMDeviceCollection::GetCount"};
    return all.count(call.operation) != 0;
}

class FirstSnapshotWithAFailingCall : public support::WatchTest, public testing::WithParamInterface<const char*>
{
protected:
    void SetUp() override
    {
        WatchTest::SetUp();
        play(sim::findMachine(GetParam())).deliverAtOnce(true);
    }

    Snapshot firstSnapshot() { return System(polledOptions()).snapshot(); }

    std::vector<Call> callsOfASnapshot()
    {
        simulation().journal().clear();
        whole = firstSnapshot();
        std::vector<Call> calls;
        std::map<std::string, std::uint32_t> numbers;
        for (const sim::JournalEntry& entry : simulation().journal().entries())
        {
            const std::uint32_t number = ++numbers[entry.operation];
            if (!isLeftOut(entry.operation))
                calls.push_back({entry.operation, entry.arguments.empty() ? "" : entry.arguments[0], number});
        }
        simulation().journal().record(false);
        return calls;
    }

    /// Judges the endpoint that differs: each value that it has not is missing, and a problem names the call.
    void judgeEndpoint(const Endpoint& was, const Endpoint& is, const Call& call)
    {
        for (const EndpointField field : allEndpointFields)
        {
            if (field == EndpointField::problems || hasSameField(was.content(), is.content(), field))
                continue;
            const std::optional<Problem> problem = is.problemWith(field);
            const bool isNamed = isOfComputer(field) ? names(now.problems(), call) : problem && isOf(*problem, call);
            EXPECT_TRUE(isNamed) << field << " of " << is;
        }
    }

    /// Judges all endpoints. @return the ids of those that differ or are missing
    std::vector<EndpointId> judgeEndpoints(const Call& call)
    {
        std::vector<EndpointId> spoilt;
        for (const Endpoint& was : whole.endpoints())
        {
            const std::optional<Endpoint> is = now.endpoint(was.id());
            if (is == was)
                continue;
            spoilt.push_back(was.id());
            EXPECT_TRUE(is || names(now.problems(), call)) << was;
            if (is)
                judgeEndpoint(was, *is, call);
        }
        return spoilt;
    }

    /// The endpoint that a failure spoils may leave its card, or take the bus with it; all else stays.
    void judgeCards(const std::vector<EndpointId>& spoilt)
    {
        const auto isSound = [&](const Endpoint& endpoint)
        { return std::find(spoilt.begin(), spoilt.end(), endpoint.id()) == spoilt.end(); };
        for (const Card& was : whole.cards())
        {
            for (const Endpoint& endpoint : was.endpoints())
            {
                if (!isSound(endpoint))
                    continue;
                const std::optional<Card> is = now.cardOf(endpoint.id());
                ASSERT_TRUE(is);
                for (const CardField field : allCardFields)
                {
                    const bool mayDiffer = field == CardField::problems || field == CardField::bus;
                    EXPECT_TRUE(hasSameField(was.content(), is->content(), field) ||
                                (mayDiffer && !is->problems().empty()))
                        << field << " of " << *is;
                }
                EXPECT_EQ(was.id(), is->id());
            }
        }
    }

    std::vector<Problem> allProblems() const
    {
        std::vector<Problem> all = now.problems();
        for (const Card& card : now.cards())
        {
            all.insert(all.end(), card.problems().begin(), card.problems().end());
            for (const Endpoint& endpoint : card.endpoints())
            {
                for (const EndpointProblem& each : endpoint.problems())
                    all.push_back(each.problem);
            }
        }
        return all;
    }

    Snapshot whole;
    Snapshot now;
};

/// At most one endpoint suffers, in the fields whose problems say so; the others and their cards are as without it.
TEST_P(FirstSnapshotWithAFailingCall, HasTheSameValuesButForThoseWhoseProblemNamesTheCall)
{
    const std::vector<Call> calls = callsOfASnapshot();
    ASSERT_LT(150u, calls.size());
    for (const Call& call : support::share(calls, 4))
    {
        SCOPED_TRACE(call.operation + "(" + call.argument + "), call " + std::to_string(call.number));
        const sim::PlannedFault fault = simulation().faults().fail(call.operation, planned).at(call.number);

        now = firstSnapshot();

        EXPECT_EQ(1u, fault.fired());
        // The bus of a card is known if one of its endpoints reports it.
        EXPECT_TRUE(names(allProblems(), call) || call.argument == "enumeratorName");
        const std::vector<EndpointId> spoilt = judgeEndpoints(call);
        EXPECT_GE(losesMany(call) ? whole.endpoints().size() : 1u, spoilt.size());
        judgeCards(spoilt);
        simulation().faults().clear();
        ASSERT_FALSE(HasFailure());
    }
}

INSTANTIATE_TEST_SUITE_P(Machines, FirstSnapshotWithAFailingCall, testing::Values("desktop", "laptop"),
                         [](const testing::TestParamInfo<const char*>& machine) { return machine.param; });
}
