// Captures of machines that no file may contain: whatever a platform answers, the capture can be read again.
#include "simulator/machine/file/machinefile.h"
#include "tests/client/capturing/capturetest.h"
#include "tests/client/capturing/hostilechanges.h"
#include "tests/client/capturing/hostilities.h"
#include "tests/support/pace.h"

#include <random>
#include <string>
#include <vector>

namespace
{
class CaptureOfAHostileMachine : public CaptureTest, public testing::WithParamInterface<Hostility>
{
};

TEST_P(CaptureOfAHostileMachine, CanBeReadAgainAndCapturedWithTheSameResult)
{
    sim::Machine machine = sim::findMachine("laptop");
    machine.script.clear();
    GetParam().apply(machine);

    const Captured first = captured(machine);
    const Captured second = captured(replayed(first));

    EXPECT_TRUE(first.left.empty()) << first.left;
    EXPECT_EQ("", support::firstDifference(first.problems(), second.problems()));
    if (GetParam().isRepeated)
        EXPECT_EQ("", support::firstDifference(first.lines(), second.lines()));
    else
        EXPECT_FALSE(first.capture.notes.empty());
}

INSTANTIATE_TEST_SUITE_P(Machines, CaptureOfAHostileMachine, testing::ValuesIn(support::share(hostilities(), 4)),
                         [](const testing::TestParamInfo<Hostility>& each) { return std::string(each.param.name); });

TEST_F(CaptureTest, IsUnreadableUnderANameThatNoFileCanContain)
{
    sim::Simulation simulation(sim::findMachine("virtual"));
    simulation.latency().clear();
    sonavit::CaptureOptions options;
    options.name = std::string("a\0b", 3);

    const sonavit::Result<sonavit::Capture> capture = resultOf(simulation, options);

    ASSERT_FALSE(capture);
    EXPECT_EQ(sonavit::Problem::Kind::unreadable, capture.problem().kind());
    EXPECT_EQ("capture", capture.problem().operation());
    EXPECT_THAT(capture.problem().sentence(), testing::HasSubstr("a string without a zero character"));
}

/// Calls of which several fail, with a code or with null, as far as they have one.
TEST_F(CaptureTest, OfMachinesAtWhichSeveralCallsFailCanBeReadAgain)
{
    constexpr std::uint32_t machines = support::cases(100, 5);
    const sim::Machine whole = sim::findMachine("laptop");
    const sim::JournalEntries calls = captured(whole).journal;
    for (std::uint32_t seed = 0; seed < machines && !HasFailure(); ++seed)
    {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        sim::Machine machine = whole;
        machine.script.clear();
        for (std::uint32_t count = 0; count < 3 + seed % 20; ++count)
        {
            const sim::JournalEntry& call = calls[random() % calls.size()];
            if (call.operation.rfind("Co", 0) == 0 || call.operation == "PropVariantClear")
                continue; // without COM there is no capture; what cannot be freed stays
            const bool isEverywhere = random() % 3 == 0;
            hostile::fail(machine, call.operation.c_str(), isEverywhere || call.object.empty() ? "*" : call.object,
                          isEverywhere ? std::vector<std::string>() : call.arguments);
            if (random() % 3 == 0)
                machine.faults.back().outcome = sim::FaultRule::Outcome::nullSuccess;
        }

        const Captured first = captured(machine);
        replayed(captured(replayed(first)));

        EXPECT_TRUE(first.left.empty()) << first.left;
    }
}

/// Any two of them at once.
TEST_F(CaptureTest, OfTwiceHostileMachinesCanBeReadAgain)
{
    for (std::size_t one = 0; one < hostilities().size(); one += support::cases(1, 64))
    {
        const std::size_t other = (one * 7 + 3) % hostilities().size();
        SCOPED_TRACE(hostilities()[one].name + std::string(", ") + hostilities()[other].name);
        sim::Machine machine = sim::findMachine("laptop");
        machine.script.clear();
        hostilities()[one].apply(machine);
        try
        {
            hostilities()[other].apply(machine);
        }
        catch (const std::logic_error&)
        {
            continue; // nothing is left to be changed
        }

        replayed(captured(machine));
    }
}
}
