#include "tests/faults/engine/supervisor.h"

#include "tests/faults/engine/report.h"
#include "tests/support/pace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <sstream>
#include <thread>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{
using faults::Finding;
using faults::Kind;
using faults::Place;

/// Runs that do what a test has planted.
class PlantedRuns final : public faults::Runs
{
public:
    using Action = std::function<faults::Result(std::size_t)>;

    PlantedRuns(std::size_t size, Action action) : m_size(size), m_action(std::move(action)) {}

    std::size_t size() const override { return m_size; }
    std::string name(std::size_t index) const override { return std::to_string(index + 1) + ":fail"; }
    std::string detail(std::size_t index) const override { return "planted\tcall\n" + std::to_string(index + 1); }
    faults::Result run(std::size_t index) override { return m_action(index); }
    std::size_t calls() const override { return m_size; }
    std::size_t callsTried() const override { return m_size; }

private:
    std::size_t m_size;
    Action m_action;
};

faults::Result fine()
{
    return {1, {}};
}

faults::Task planted(std::size_t runs, PlantedRuns::Action action, const std::string& operation = "operation")
{
    return {"part", {operation, "machine", [=] { return std::make_unique<PlantedRuns>(runs, action); }}};
}

/// What a supervisor tells: "2:fail crash".
class Heard final : public faults::Listener
{
public:
    void onCalls(const std::string&, const faults::Job&, std::size_t all, std::size_t) override { calls += all; }

    void onRun(const Place& place, std::size_t count, const std::vector<Finding>& found) override
    {
        failures += count;
        ++runs;
        for (const Finding& finding : found)
        {
            findings.push_back(place.run + " " + nameOf(finding.kind));
            texts.push_back(finding.text);
            details.push_back(place.detail);
        }
    }

    std::size_t calls = 0;
    std::size_t runs = 0;
    std::size_t failures = 0;
    std::vector<std::string> findings;
    std::vector<std::string> texts;
    std::vector<std::string> details;
};

Heard heardOf(const std::vector<faults::Task>& tasks, std::chrono::milliseconds patience = std::chrono::seconds(30),
              const std::string& only = {})
{
    Heard heard;
    faults::Supervisor(heard, 2, patience, only).run(tasks);
    return heard;
}

/// Without AddressSanitizer nothing looks for lost memory.
std::vector<std::string> ifLossesAreSeen(const std::vector<std::string>& findings)
{
    return support::isInstrumented ? findings : std::vector<std::string>();
}

faults::Result losing()
{
    std::vector<char>* volatile lost = new std::vector<char>(100);
    return {lost->empty() ? 0U : 1U, {}};
}
}

TEST(FaultSupervisor, DoesAllRunsOfAllJobs)
{
    const Heard heard =
        heardOf({planted(3, [](std::size_t) { return fine(); }), planted(4, [](std::size_t) { return fine(); }),
                 planted(5, [](std::size_t) { return fine(); })});

    EXPECT_EQ(12u, heard.runs);
    EXPECT_EQ(12u, heard.failures);
    EXPECT_EQ(12u, heard.calls);
    EXPECT_THAT(heard.findings, IsEmpty());
}

TEST(FaultSupervisor, TellsARunThatLosesMemory)
{
    const Heard heard = heardOf({planted(7, [](std::size_t index) { return index == 4 ? losing() : fine(); })});

    EXPECT_THAT(heard.findings, testing::ElementsAreArray(ifLossesAreSeen({"5:fail references"})));
}

TEST(FaultSupervisor, TellsARunThatLosesMemoryBeforeACrash)
{
    const auto action = [](std::size_t index)
    {
        if (index == 4)
            std::abort();
        return index == 2 ? losing() : fine();
    };
    const Heard heard = heardOf({planted(7, action)});

    std::vector<std::string> expected = {"5:fail crash"};
    for (const std::string& loss : ifLossesAreSeen({"3:fail references"}))
        expected.push_back(loss);
    EXPECT_THAT(heard.findings, testing::ElementsAreArray(expected));
}

TEST(FaultSupervisor, FindsNoLossInRunsBeforeACrashThatLoseNothing)
{
    const auto action = [](std::size_t index)
    {
        if (index == 4)
            std::abort();
        return fine();
    };

    EXPECT_THAT(heardOf({planted(7, action)}).findings, ElementsAre("5:fail crash"));
}

TEST(FaultSupervisor, TellsAWrongAnswerWithItsRun)
{
    const Heard heard =
        heardOf({planted(3,
                         [](std::size_t index) {
                             return index == 1 ? faults::Result{1, {{Kind::answer, "a\tb\n\\c"}}} : fine();
                         })});

    EXPECT_THAT(heard.findings, ElementsAre("2:fail answer"));
    EXPECT_THAT(heard.texts, ElementsAre("a\tb\n\\c"));
    EXPECT_THAT(heard.details, ElementsAre("planted\tcall\n2"));
}

TEST(FaultSupervisor, GoesOnBehindARunThatCrashes)
{
    const Heard heard = heardOf({planted(4,
                                         [](std::size_t index)
                                         {
                                             if (index == 1 || index == 3)
                                                 std::abort();
                                             return fine();
                                         })});

    EXPECT_THAT(heard.findings, ElementsAre("2:fail crash", "4:fail crash"));
    EXPECT_EQ(4u, heard.runs);
}

TEST(FaultSupervisor, TellsWhatEndedTheProcess)
{
    const Heard heard =
        heardOf({planted(1, [](std::size_t) -> faults::Result { throw std::runtime_error("planted"); })});

    ASSERT_THAT(heard.findings, ElementsAre("1:fail crash"));
    EXPECT_THAT(heard.texts.front(), HasSubstr("the worker ends with: planted"));
}

TEST(FaultSupervisor, TakesAnEndInTheMiddleForACrash)
{
    const Heard heard = heardOf({planted(2,
                                         [](std::size_t index)
                                         {
                                             if (index == 0)
                                                 std::_Exit(0);
                                             return fine();
                                         })});

    EXPECT_THAT(heard.findings, ElementsAre("1:fail crash"));
    EXPECT_EQ(2u, heard.runs);
}

TEST(FaultSupervisor, TellsACrashInThePreparation)
{
    const faults::Job job = {"operation", "machine", []() -> std::unique_ptr<faults::Runs> { std::abort(); }};

    const Heard heard = heardOf({{"part", job}, planted(2, [](std::size_t) { return fine(); })});

    EXPECT_THAT(heard.findings, ElementsAre("preparation crash"));
    EXPECT_EQ(2u, heard.failures);
}

TEST(FaultSupervisor, GoesOnBehindARunThatHangs)
{
    const Heard heard = heardOf({planted(3,
                                         [](std::size_t index)
                                         {
                                             while (index == 1)
                                                 std::this_thread::yield();
                                             return fine();
                                         })},
                                std::chrono::milliseconds(300));

    EXPECT_THAT(heard.findings, ElementsAre("2:fail hang"));
    EXPECT_EQ(3u, heard.runs);
}

TEST(FaultSupervisor, DoesTheOneRunThatIsAskedFor)
{
    const Heard heard = heardOf({planted(5,
                                         [](std::size_t) {
                                             return faults::Result{1, {{Kind::answer, "wrong"}}};
                                         })},
                                std::chrono::seconds(30), "4:fail");

    EXPECT_THAT(heard.findings, ElementsAre("4:fail answer"));
    EXPECT_EQ(1u, heard.runs);
}
