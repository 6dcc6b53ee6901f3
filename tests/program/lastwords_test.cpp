#include "tests/program/programtest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>

namespace
{
/// Set in a process whose Release throws: what its owner had still to free is lost then.
bool isReleaseThrown = false;

/// The small machine, on which the @p release -th Release throws.
sim::Machine throwingMachine(std::uint32_t release)
{
    sim::Machine machine = support::smallMachine();
    sim::FaultRule rule;
    rule.operation = "Release";
    rule.outcome = sim::FaultRule::Outcome::thrown;
    rule.call = release;
    machine.faults.push_back(rule);
    return machine;
}

/// Runs a command as the program does and ends the process; both of its streams go to standard error, which the test
/// can see.
[[noreturn]] void runProgram(std::vector<std::string> words, std::uint32_t release)
{
    isReleaseThrown = true;
    sonavit::program::Environment environment{std::cerr, std::cerr};
    environment.findMachine = [release](const std::string&) { return throwingMachine(release); };
    words.insert(words.end(), {"--machine", "throwing"});
    std::exit(sonavit::program::run(words, environment));
}

/// The sentence about an exception that left some interface's Release.
testing::Matcher<const std::string&> saysWhatWasThrown()
{
    return testing::AllOf(testing::HasSubstr("sonavit: the simulated machine threw an exception: planned: I"),
                          testing::EndsWith("::Release\n"));
}

/// What a throwing Release leaves of the process depends on where the Release happens.
class ProgramLastWords : public testing::TestWithParam<std::uint32_t>
{
};
}

extern "C"
{
    int __lsan_is_turned_off()
    {
        return isReleaseThrown ? 1 : 0;
    }

    /// A listener whose registration cannot be ended is kept on purpose and counted: the platform may still call it.
    const char* __lsan_default_suppressions()
    {
        return "leak:sonavit::watching::registerFor";
    }
}

TEST_P(ProgramLastWords, AreOneSentenceAndExitCode1)
{
    EXPECT_EXIT(runProgram({"get-volume", "Speakers", "--via", "model"}, GetParam()), testing::ExitedWithCode(1),
                saysWhatWasThrown());
    EXPECT_EXIT(runProgram({"show", "Speakers", "--via", "model"}, GetParam()), testing::ExitedWithCode(1),
                saysWhatWasThrown());
}

TEST_P(ProgramLastWords, AreTheOnlyObjectInJson)
{
    const testing::Matcher<const std::string&> isAnObjectAndTheSentence = testing::AllOf(
        testing::StartsWith("{\"schemaVersion\":2,\"error\":\"the simulated machine threw an exception: planned: I"),
        testing::HasSubstr("::Release\",\"exitCode\":1}\nsonavit: "), testing::EndsWith("::Release\n"));

    EXPECT_EXIT(runProgram({"list", "--json", "--via", "model"}, GetParam()), testing::ExitedWithCode(1),
                isAnObjectAndTheSentence);
}

namespace
{
/// Whether the program ended with its answer or with exit code 1.
bool endedInOrder(int status)
{
    return testing::ExitedWithCode(0)(status) || testing::ExitedWithCode(1)(status);
}
}

/// The client layer goes on without the object whose Release throws, where that is possible.
TEST_P(ProgramLastWords, AreTheAnswerOrOneSentenceOfTheClientLayer)
{
    const testing::Matcher<const std::string&> isAnswerOrSentence = testing::AnyOf(
        testing::HasSubstr("\nSpeakers (Analog Audio): 72% (-18.00 dB)\n"), testing::ContainsRegex("\nsonavit: .+\n$"));

    EXPECT_EXIT(runProgram({"get-volume", "Speakers"}, GetParam()), endedInOrder, isAnswerOrSentence);
}

namespace
{
/// Runs the command on a computer whose drivers throw in the last Release of it, which the end of the session makes.
[[noreturn]] void runProgramUntilItsEndThrows(const std::vector<std::string>& words)
{
    isReleaseThrown = true;
    sim::Simulation simulation(support::smallMachine());
    support::meet(simulation);
    const sonavit::program::Environment environment{std::cerr, std::cerr};
    if (sonavit::program::run(words, environment) != 0) // what is kept for good is made once
        std::exit(2);
    sim::PlannedFault counting = simulation.faults().raise("Release");
    counting.at(0xFFFFFFFF);
    if (sonavit::program::run(words, environment) != 0 || counting.met() == 0)
        std::exit(2);
    simulation.faults().raise("Release").at(counting.met());
    std::exit(sonavit::program::run(words, environment));
}
}

TEST(ProgramLastWord, OfTheEndOfTheSessionIsOneSentenceAndExitCode1)
{
    EXPECT_EXIT(runProgramUntilItsEndThrows({"list", "--via", "model"}), testing::ExitedWithCode(1),
                testing::EndsWith("::Release\n"));
}

INSTANTIATE_TEST_SUITE_P(Releases, ProgramLastWords, testing::Values(1, 2, 5, 20, 50));
