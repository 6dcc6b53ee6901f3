#include "tests/client/reading/hardwaretest.h"
#include "tests/support/pace.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <string>

namespace
{
/// What a walk gives, card by card, and all that it could not read.
struct Values
{
    sonavit::Graph graph;
    std::vector<sonavit::Hardware> hardware;

    /// The problems of the graph and of the hardware of all cards.
    std::vector<sonavit::Problem> problems() const
    {
        std::vector<sonavit::Problem> all = graph.problems;
        for (const sonavit::Hardware& each : hardware)
        {
            const std::vector<sonavit::Problem> more = problemsOf(each);
            all.insert(all.end(), more.begin(), more.end());
        }
        return all;
    }
};

/// One call of a walk: the n-th of its operation.
struct Call
{
    sim::JournalEntry entry;
    std::uint32_t number;
};

class HardwareWalkWithAFailingCall : public HardwareTest, public testing::WithParamInterface<const char*>
{
protected:
    void SetUp() override
    {
        HardwareTest::SetUp();
        start(GetParam());
        m_cards = cards();
        simulation().journal().clear();
        m_usual = values();
        m_calls = callsOf(simulation().journal().entries());
        m_census = simulation().census();
        simulation().journal().record(false);
    }

    Values values()
    {
        const reading::HardwareWalk walk(enumerator(), m_cards);
        Values result;
        result.graph = walk.graph();
        for (const sonavit::Card& card : m_cards)
            result.hardware.push_back(walk.hardware(card.id()));
        return result;
    }

    /// The values of a walk in which one call fails, beside the machine's own failures. It must leave nothing behind.
    Values valuesWith(const Call& call, const std::function<sim::PlannedFault(const std::string&)>& plan)
    {
        sim::FaultPlan& faults = simulation().faults();
        faults.clear();
        plan(call.entry.operation).at(call.number);
        for (const sim::FaultRule& rule : simulation().machine().faults)
            faults.add(rule);
        Values result = values();
        EXPECT_EQ(m_census, simulation().census()) << call.entry.line();
        return result;
    }

    /// The calls of the walk. Of the questions of larger machines, which are alike, it takes a part.
    static std::vector<Call> callsOf(const sim::JournalEntries& entries)
    {
        const bool isSmall = GetParam() == std::string("desktop");
        const std::uint32_t first = support::cases(6, isSmall ? 2 : 1);
        const std::uint32_t distance = isSmall ? support::cases(1, 151) : support::cases(397, 3000);
        std::map<std::string, std::uint32_t> numbers;
        std::vector<Call> calls;
        for (const sim::JournalEntry& entry : entries)
        {
            const std::uint32_t number = ++numbers[entry.operation];
            const bool isTaken = number <= first || number % distance == 0;
            if (entry.operation != "CoTaskMemFree" && entry.operation != "PropVariantClear" && isTaken)
                calls.push_back({entry, number});
        }
        return calls;
    }

    std::vector<sonavit::Card> m_cards;
    Values m_usual;
    std::vector<Call> m_calls;
    sim::Census m_census;
};

/// Whether one of two ids begins with the other, as that of a part begins with that of its device.
bool areRelated(const std::string& one, const std::string& other)
{
    const std::size_t common = std::min(one.size(), other.size());
    return common > 0 && sonavit::compareIds(one.substr(0, common), other.substr(0, common)) == 0;
}

/// Whether a problem is that of a failing call. A part whose id is not known goes by its device, a device whose id is
/// not known by its part. A call on the enumerator goes by the device that it is asked for.
bool isProblemOf(const sonavit::Problem& problem, const sim::JournalEntry& entry, HRESULT code)
{
    const bool isOperation = problem.operation().compare(0, entry.operation.size(), entry.operation) == 0;
    const bool isObject = areRelated(problem.object(), entry.object) ||
                          (!entry.arguments.empty() && problem.object() == entry.arguments[0]);
    return isOperation && isObject && problem.code() == static_cast<std::int32_t>(code);
}

bool isTold(const Values& values, const sim::JournalEntry& entry, HRESULT code)
{
    const std::vector<sonavit::Problem> problems = values.problems();
    return std::any_of(problems.begin(), problems.end(),
                       [&](const sonavit::Problem& problem) { return isProblemOf(problem, entry, code); });
}

/// The control without what depends on the way on which the walk has found it.
sonavit::Control withoutOwner(sonavit::Control control)
{
    control.ownerName.reset();
    control.ownerType.reset();
    return control;
}

/// Compares each control and each selector that has no problem of its own with what it is without the failure.
void expectSoundOnesToBeEqual(const sonavit::Hardware& usual, const sonavit::Hardware& now)
{
    ASSERT_EQ(usual.controls.size(), now.controls.size());
    for (std::size_t endpoint = 0; endpoint < now.controls.size(); ++endpoint)
    {
        const std::vector<sonavit::Control>& before = usual.controls[endpoint].controls;
        for (const sonavit::Control& control : now.controls[endpoint].controls)
        {
            const auto same = std::find_if(before.begin(), before.end(),
                                           [&](const sonavit::Control& each) { return each.id == control.id; });
            if (same == before.end() || same->problems != control.problems)
                continue;
            EXPECT_EQ(withoutOwner(*same), withoutOwner(control));
        }
    }
    for (const sonavit::Selector& selector : now.selectors)
    {
        const auto same = std::find_if(usual.selectors.begin(), usual.selectors.end(),
                                       [&](const sonavit::Selector& each) { return each.id == selector.id; });
        if (same == usual.selectors.end() || same->problems != selector.problems)
            continue;
        EXPECT_EQ(same->name, selector.name);
        EXPECT_EQ(same->selection, selector.selection);
    }
}

/// A card of which nothing failed has the values that it has without the failure.
TEST_P(HardwareWalkWithAFailingCall, NamesTheCallAndSpoilsNoOtherCard)
{
    ASSERT_FALSE(m_calls.empty());
    const auto plan = [&](const std::string& operation) { return simulation().faults().fail(operation, E_ABORT); };
    for (const Call& call : m_calls)
    {
        const Values now = valuesWith(call, plan);

        EXPECT_TRUE(isTold(now, call.entry, E_ABORT)) << call.entry.line();
        ASSERT_EQ(m_usual.hardware.size(), now.hardware.size());
        SCOPED_TRACE(call.entry.line());
        for (std::size_t card = 0; card < now.hardware.size(); ++card)
        {
            expectSoundOnesToBeEqual(m_usual.hardware[card], now.hardware[card]);
            if (problemsOf(now.hardware[card]) != problemsOf(m_usual.hardware[card]))
                continue;
            EXPECT_EQ(m_usual.hardware[card], now.hardware[card]) << call.entry.line();
        }
    }
}

/// Operations that promise an object or an id; the others store numbers, names or flags, where nothing is a value.
bool promisesAnObject(const std::string& operation)
{
    static const std::set<std::string> promising = {"IMMDeviceEnumerator::GetDevice",
                                                    "IMMDevice::Activate",
                                                    "IMMDevice::OpenPropertyStore",
                                                    "IDeviceTopology::GetConnector",
                                                    "IDeviceTopology::GetSubunit",
                                                    "IDeviceTopology::GetSignalPath",
                                                    "IConnector::GetConnectedTo",
                                                    "IConnector::GetDeviceIdConnectedTo",
                                                    "IDeviceTopology::GetDeviceId",
                                                    "IPart::GetGlobalId",
                                                    "IPart::EnumPartsIncoming",
                                                    "IPart::EnumPartsOutgoing",
                                                    "IPart::GetTopologyObject",
                                                    "IPart::Activate",
                                                    "IPartsList::GetPart"};
    return promising.count(operation) != 0;
}

TEST_P(HardwareWalkWithAFailingCall, TakesSuccessWithoutAnObjectForAFailure)
{
    const auto plan = [&](const std::string& operation) { return simulation().faults().succeedWithNull(operation); };
    for (const Call& call : m_calls)
    {
        const Values now = valuesWith(call, plan);

        EXPECT_EQ(promisesAnObject(call.entry.operation), isTold(now, call.entry, E_POINTER)) << call.entry.line();
    }
}

INSTANTIATE_TEST_SUITE_P(Machines, HardwareWalkWithAFailingCall,
                         testing::ValuesIn(support::share<const char*>({"desktop", "studio", "broken"}, 2)),
                         [](const testing::TestParamInfo<const char*>& machine) { return machine.param; });
}
