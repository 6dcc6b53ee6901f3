#include "tests/faults/engine/faultedruns.h"

#include "simulator/machine/builder/machinebuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace
{
using faults::FaultedRuns;
using faults::Finding;
using faults::Kind;
using faults::Record;
using faults::Run;

sim::Machine machineWithSpeaker()
{
    sim::MachineBuilder builder("one speaker");
    builder.card("Codec").speaker().defaultFor(eConsole);
    return builder.build();
}

/// Asks for the default endpoint and its id. @param isCareless forgets the endpoint if it cannot read the id
std::string defaultId(sim::Simulation& simulation, bool isCareless)
{
    IMMDeviceEnumerator* const enumerator = simulation.enumerator();
    IMMDevice* device = nullptr;
    LPWSTR id = nullptr;
    std::string answer = "no endpoint";
    if (SUCCEEDED(enumerator->GetDefaultAudioEndpoint(eRender, eConsole, &device)) && device != nullptr)
    {
        const bool hasId = SUCCEEDED(device->GetId(&id)) && id != nullptr;
        answer = hasId ? "an id" : "no id";
        CoTaskMemFree(id);
        if (hasId || !isCareless)
            device->Release();
    }
    enumerator->Release();
    return answer;
}

faults::Sweep sweepOf(const std::function<void(Run&)>& operation)
{
    faults::Sweep sweep;
    sweep.perform = [=](std::vector<faults::Fault> planned)
    {
        sim::Simulation simulation(machineWithSpeaker());
        Run run(simulation, std::move(planned));
        operation(run);
        run.record().left = simulation.census();
        return run.record();
    };
    sweep.judge = [](const Record& clean, const Record& run)
    {
        std::vector<Finding> found;
        if (run.left != clean.left)
            found.push_back({Kind::references, (run.left - clean.left).describe()});
        if (run.later != clean.later)
            found.push_back({Kind::reuse, "another answer"});
        return found;
    };
    return sweep;
}

/// "2:fail references" for each finding.
std::vector<std::string> findingsOf(FaultedRuns& runs)
{
    std::vector<std::string> found;
    for (std::size_t i = 0; i < runs.size(); ++i)
    {
        for (const Finding& finding : runs.run(i).findings)
            found.push_back(runs.name(i) + " " + nameOf(finding.kind));
    }
    return found;
}

std::vector<std::string> namesOf(const FaultedRuns& runs)
{
    std::vector<std::string> names;
    for (std::size_t i = 0; i < runs.size(); ++i)
        names.push_back(runs.name(i));
    return names;
}

void ask(Run& run, bool isCareless)
{
    run.act([&] { run.answer(defaultId(run.simulation(), isCareless)); });
    run.later(defaultId(run.simulation(), false));
}

/// A hundred times the same calls, of which runs can have only some.
faults::Sweep sweepOfManyCalls()
{
    faults::Sweep sweep = sweepOf(
        [](faults::Run& run)
        {
            run.act(
                [&]
                {
                    for (int i = 0; i < 100; ++i)
                        defaultId(run.simulation(), false);
                });
        });
    sweep.extent.platformCalls = 400;
    return sweep;
}
}

TEST(FaultedRuns, LetEachCallFailInEachOfItsModes)
{
    FaultedRuns runs(sweepOf([](faults::Run& run) { ask(run, false); }));

    EXPECT_THAT(namesOf(runs), ElementsAre("1:fail", "1:null", "2:fail", "2:null", "3:throw", "4:throw"));
    EXPECT_EQ("IMMDeviceEnumerator::GetDefaultAudioEndpoint(eRender, eConsole) on enumerator", runs.detail(0));
    EXPECT_EQ(4u, runs.calls());
    EXPECT_EQ(4u, runs.callsTried());
}

TEST(FaultedRuns, CountTheCallsThatDidFail)
{
    FaultedRuns runs(sweepOf([](faults::Run& run) { ask(run, false); }));

    EXPECT_EQ(1u, runs.run(2).failures);
    EXPECT_THAT(runs.run(2).findings, IsEmpty());
}

TEST(FaultedRuns, FindWhatIsForgottenAfterAFailure)
{
    FaultedRuns runs(sweepOf([](faults::Run& run) { ask(run, true); }));

    EXPECT_THAT(findingsOf(runs), testing::AllOf(Contains("2:fail references"), Contains("2:null references")));
}

TEST(FaultedRuns, FindObjectsThatDoNotWorkAnyMoreWhenTheFaultIsGone)
{
    FaultedRuns runs(sweepOf(
        [](faults::Run& run)
        {
            std::string kept;
            run.act([&] { kept = defaultId(run.simulation(), false); });
            run.later(kept);
        }));

    EXPECT_THAT(findingsOf(runs),
                testing::IsSupersetOf({"1:fail reuse", "1:null reuse", "2:fail reuse", "2:null reuse"}));
}

TEST(FaultedRuns, TellACallThatIsNotMade)
{
    int runsBefore = 0;
    FaultedRuns runs(sweepOf(
        [&](faults::Run& run)
        {
            const bool isFirst = runsBefore++ == 0;
            run.act(
                [&]
                {
                    if (isFirst)
                        defaultId(run.simulation(), false);
                });
        }));

    EXPECT_THAT(findingsOf(runs), Contains("1:fail unmet"));
}

TEST(FaultedRuns, LetPairsOfCallsFail)
{
    faults::Sweep sweep = sweepOf([](faults::Run& run) { ask(run, false); });
    sweep.extent.pairs = 100;
    FaultedRuns runs(std::move(sweep));

    EXPECT_THAT(namesOf(runs), SizeIs(6 + 6));
    EXPECT_THAT(namesOf(runs), testing::IsSupersetOf({"1,2:fail,fail", "3,4:throw,throw"}));
}

TEST(FaultedRuns, OfManyCallsTryTheFirstAndTheLastOfEachKindAndSomeInBetween)
{
    faults::Sweep sweep = sweepOfManyCalls();
    sweep.extent.runsAtLeast = 10;
    FaultedRuns runs(std::move(sweep));

    EXPECT_EQ(400u, runs.calls());
    EXPECT_GE(runs.callsTried(), 10u);
    EXPECT_LE(runs.callsTried(), 20u);
    EXPECT_THAT(namesOf(runs), testing::IsSupersetOf({"1:fail", "2:fail", "397:null", "398:null", "400:throw"}));
}

TEST(FaultedRuns, OfManyCallsTryThoseAtEqualDistancesAloneIfKindsDoNotCount)
{
    faults::Sweep sweep = sweepOfManyCalls();
    sweep.extent.runsAtLeast = 4;
    sweep.extent.hasKinds = false;
    sweep.extent.turn = 101 + 1; // the distance is 101
    FaultedRuns runs(std::move(sweep));

    EXPECT_EQ(4u, runs.callsTried());
    EXPECT_EQ("2:fail", runs.name(0));
}

TEST(FaultedRuns, NoteWhatLeavesTheOperation)
{
    std::string thrown;
    FaultedRuns runs(sweepOf(
        [&](faults::Run& run)
        {
            run.act([&] { defaultId(run.simulation(), false); });
            thrown = run.record().thrown;
        }));

    runs.run(5);

    EXPECT_THAT(thrown, testing::StartsWith("InjectedException: "));
}
