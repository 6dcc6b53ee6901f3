#include "tests/client/reading/readingtest.h"
#include "tests/support/pace.h"

#include <algorithm>
#include <map>
#include <set>

namespace
{
/// A code that nothing else returns.
constexpr HRESULT planned = static_cast<HRESULT>(0x8007045D);
constexpr HRESULT invalidData = static_cast<HRESULT>(0x8007000D);

/// One call of a reading: the n-th of its operation.
struct Call
{
    std::string operation;
    std::string argument;
    std::uint32_t number;
};

bool onlyFrees(const std::string& operation)
{
    static const std::set<std::string> all = {"CoTaskMemFree", "PropVariantClear", "CoTaskMemAlloc"};
    return all.count(operation) != 0 || operation.find("::Release") != std::string::npos ||
           operation.find("::AddRef") != std::string::npos;
}

bool isWaveCount(const std::string& operation)
{
    return operation == "waveOutGetNumDevs" || operation == "waveInGetNumDevs";
}

/// Whether a failure of the call may go without a problem: the parent is asked of a function that has no code, and the
/// bus of a card is known if one of its endpoints has told it.
bool mayStaySilent(const Call& call)
{
    return call.operation == "getParentDeviceInstanceId" || call.argument == "enumeratorName";
}

/// Whether the operation stores an object or a text.
bool storesPointer(const std::string& operation)
{
    static const std::set<std::string> all = {"IMMDeviceEnumerator::EnumAudioEndpoints",
                                              "IMMDeviceEnumerator::GetDefaultAudioEndpoint",
                                              "IMMDeviceCollection::Item",
                                              "IMMDevice::GetId",
                                              "IMMDevice::Activate",
                                              "IMMDevice::OpenPropertyStore",
                                              "IDeviceTopology::GetConnector",
                                              "IConnector::GetConnectedTo",
                                              "IConnector::GetDeviceIdConnectedTo",
                                              "IConnector::QueryInterface",
                                              "IPart::Activate"};
    return all.count(operation) != 0;
}

/// How many problems say that the call failed with that code.
long mentions(const std::vector<sonavit::Problem>& problems, const std::string& operation, HRESULT code)
{
    return std::count_if(problems.begin(), problems.end(),
                         [&](const sonavit::Problem& problem)
                         {
                             const std::string name = problem.operation().substr(0, problem.operation().find('('));
                             return name == operation && problem.code() == code;
                         });
}

/// The endpoints by id.
std::map<std::string, sonavit::Endpoint> endpointsOf(const Everything& all)
{
    std::map<std::string, sonavit::Endpoint> endpoints;
    for (const sonavit::Card& card : all.cards)
    {
        for (const sonavit::Endpoint& endpoint : card.endpoints())
            endpoints.emplace(endpoint.id().text(), endpoint);
    }
    return endpoints;
}

class ReadingWithFault : public ReadingTest, public testing::WithParamInterface<const char*>
{
protected:
    /// Of the further calls of an operation one in so many goes wrong.
    static constexpr std::uint32_t distance = support::cases(1, 20);
    static constexpr std::uint32_t enough = 2;

    /// Reads the machine once as it is and once for each call that the first reading makes, which then goes wrong in
    /// the way that @p plan says.
    template<class Plan, class Check>
    void forEachCall(const Plan& plan, const Check& check)
    {
        sim::Simulation& simulation = start(GetParam());
        const std::vector<sim::FaultRule> rules = simulation.machine().faults;
        simulation.journal().clear();
        simulation.journal().recordReferences(true);
        const Everything whole = readEverything();
        const std::vector<Call> calls = callsOf(simulation.journal().entries());
        simulation.journal().recordReferences(false);
        simulation.journal().record(false);
        ASSERT_GT(calls.size(), 100u);
        for (const Call& call : calls)
        {
            if (call.number > enough && call.number % distance != 0)
                continue;
            SCOPED_TRACE(call.operation + "(" + call.argument + "), call " + std::to_string(call.number));
            simulation.faults().clear();
            const sim::PlannedFault fault = plan(simulation.faults(), call);
            for (const sim::FaultRule& rule : rules)
                simulation.faults().add(rule);
            check(whole, readEverything(), call);
            ASSERT_EQ(1u, fault.fired());
            ASSERT_FALSE(HasFailure());
        }
        simulation.faults().clear();
    }

    static std::vector<Call> callsOf(const sim::JournalEntries& entries)
    {
        std::vector<Call> calls;
        std::map<std::string, std::uint32_t> numbers;
        for (const sim::JournalEntry& entry : entries)
        {
            if (!onlyFrees(entry.operation))
                calls.push_back(
                    {entry.operation, entry.arguments.empty() ? "" : entry.arguments[0], ++numbers[entry.operation]});
        }
        return calls;
    }

    /// At most one endpoint may suffer, or the list of one flow.
    static void expectOthersComplete(const Everything& whole, const Everything& now, const Call& call)
    {
        const std::map<std::string, sonavit::Endpoint> before = endpointsOf(whole);
        const std::map<std::string, sonavit::Endpoint> after = endpointsOf(now);
        const bool losesFlow = call.operation == "IMMDeviceEnumerator::EnumAudioEndpoints" ||
                               call.operation == "IMMDeviceCollection::GetCount";
        unsigned missing = 0;
        unsigned changed = 0;
        for (const auto& [id, endpoint] : before)
        {
            const auto place = after.find(id);
            missing += place == after.end() ? 1 : 0;
            changed += place != after.end() && place->second != endpoint ? 1 : 0;
        }
        EXPECT_LE(changed + (losesFlow ? 0 : missing), 1u);
    }
};

TEST_P(ReadingWithFault, SaysWhichCallFailedAndReadsTheRest)
{
    forEachCall([](sim::FaultPlan& faults, const Call& call)
                { return faults.fail(call.operation, planned).at(call.number); },
                [](const Everything& whole, const Everything& now, const Call& call)
                {
                    // A count has no code: the fault is the count.
                    const HRESULT code = isWaveCount(call.operation) ? invalidData : planned;
                    const long expected = mayStaySilent(call) ? 0 : 1;
                    EXPECT_LE(expected, mentions(now.problems(), call.operation, code));
                    expectOthersComplete(whole, now, call);
                });
}

TEST_P(ReadingWithFault, TakesNothingInPlaceOfAnObjectAsAFailure)
{
    forEachCall([](sim::FaultPlan& faults, const Call& call)
                { return faults.succeedWithNull(call.operation).at(call.number); },
                [](const Everything& whole, const Everything& now, const Call& call)
                {
                    const long expected = storesPointer(call.operation) ? 1 : 0;
                    EXPECT_LE(expected, mentions(now.problems(), call.operation, E_POINTER));
                    expectOthersComplete(whole, now, call);
                });
}

INSTANTIATE_TEST_SUITE_P(Machines, ReadingWithFault, testing::Values("desktop", "studio", "broken"));

using ReadingAfterFailure = ReadingTest;

TEST_F(ReadingAfterFailure, LeavesNothingBehindWhereverACallFails)
{
    sim::Simulation& simulation = start("desktop");
    const sim::Census before = simulation.census();
    static_cast<void>(readEverything());
    const std::vector<std::string> operations = simulation.journal().operations();

    for (const std::string& operation : std::set<std::string>(operations.begin(), operations.end()))
    {
        if (onlyFrees(operation))
            continue;
        simulation.faults().clear();
        simulation.faults().fail(operation);
        static_cast<void>(readEverything());
        EXPECT_EQ(before, simulation.census()) << operation;
        simulation.faults().clear();
        simulation.faults().succeedWithNull(operation);
        static_cast<void>(readEverything());
        EXPECT_EQ(before, simulation.census()) << operation;
    }
    EXPECT_LT(20u, operations.size());
}

TEST_F(ReadingAfterFailure, TellsTheWitnessOfEachFailureOnItsThread)
{
    sim::MachineBuilder builder;
    const sim::EndpointBuilder speaker = builder.card("Card").speaker();
    sim::Simulation& simulation = start(builder.build());
    simulation.faults().fail("IMMDevice::GetState", E_ACCESSDENIED);
    simulation.faults().fail("IPropertyStore::GetValue", E_ABORT).with("friendlyName");
    KeepingWitness outer;
    KeepingWitness inner;

    const reading::WitnessScope outerScope(outer);
    {
        const reading::WitnessScope innerScope(inner);
        static_cast<void>(read(speaker.id()));
    }
    reading::EndpointReading endpoint = open(speaker.id());
    reading::readState(endpoint);

    EXPECT_THAT(inner.seen,
                testing::ElementsAre("IMMDevice::GetState " + speaker.id() + " 0x80070005",
                                     "IPropertyStore::GetValue(friendlyName) " + speaker.id() + " 0x80004004"));
    EXPECT_THAT(outer.seen, testing::ElementsAre("IMMDevice::GetState " + speaker.id() + " 0x80070005"));
}

/// Some failures are how the platform says that there is no such thing: no problem, but the witness sees them.
TEST_F(ReadingAfterFailure, TellsTheWitnessOfFailuresThatAreNoProblem)
{
    sim::MachineBuilder builder;
    const sim::EndpointBuilder speaker = builder.card("Card").speaker().withoutVolume().unjoined();
    start(builder.build());
    KeepingWitness witness;
    const reading::WitnessScope scope(witness);

    const reading::EndpointReading endpoint = read(speaker.id());

    EXPECT_THAT(endpoint.content.problems, testing::IsEmpty());
    EXPECT_THAT(witness.seen,
                testing::ElementsAre("IMMDevice::Activate(IAudioEndpointVolume) " + speaker.id() + " 0x80004002",
                                     "IConnector::GetDeviceIdConnectedTo " + speaker.id() + " 0x80070490",
                                     "IConnector::GetConnectedTo " + speaker.id() + " 0x80070490"));
}
}
