#include "tests/faults/engine/report.h"

#include "tests/faults/engine/options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

using testing::HasSubstr;
using testing::Not;

namespace
{
using faults::Excuse;
using faults::Kind;
using faults::Part;
using faults::Place;
using faults::Report;

const Place place = {"part", "operation", "machine", "12:null", "IPart::GetName() on x"};

Part partWith(std::vector<Excuse> excuses)
{
    return {"part", {}, std::move(excuses)};
}
}

TEST(FaultReport, SaysHowToRepeatARun)
{
    std::ostringstream output;
    Report report({partWith({})}, output);

    report.onRun(place, 1, {{Kind::answer, "wrong"}});

    EXPECT_THAT(output.str(),
                HasSubstr("sonavit-faults part --machine 'machine' --operation 'operation' --call 12 --mode null"));
    EXPECT_FALSE(report.isClean());
}

TEST(FaultReport, CountsRunsByWhatTheyFind)
{
    std::ostringstream output;
    Report report({partWith({})}, output);

    report.onRun(place, 2, {});
    report.onRun(place, 1, {{Kind::crash, "signal 6"}});
    report.onRun(place, 1, {{Kind::references, "one"}, {Kind::log, "none"}});
    report.onRun(place, 0, {});

    EXPECT_EQ("3 runs with a failing call, 1 crashes, 0 hangs, 1 unexplained references, 1 wrong results, "
              "0 outside the contract",
              report.total().sentence());
}

TEST(FaultReport, CountsAnExcusedRunAsOutsideTheContract)
{
    std::ostringstream output;
    Report report({partWith({{"oper*", "*", "*:null", "IPart::GetName(*", Kind::crash, "a reason"}})}, output);

    report.onRun(place, 1, {{Kind::crash, "signal 6"}});
    report.conclude("part", true);

    EXPECT_TRUE(report.isClean());
    EXPECT_EQ(1u, report.total().excused);
}

TEST(FaultReport, ExcusesNoOtherKindOfFinding)
{
    std::ostringstream output;
    Report report({partWith({{"*", "*", "*", "*", Kind::crash, "a reason"}})}, output);

    report.onRun(place, 1, {{Kind::crash, "signal 6"}, {Kind::answer, "wrong"}});

    EXPECT_FALSE(report.isClean());
}

TEST(FaultReport, ExcusesNoFindingWithAnotherText)
{
    std::ostringstream output;
    Report report({partWith({{"*", "*", "*", "*", Kind::crash, "a reason", "signal 6*"}})}, output);

    report.onRun(place, 1, {{Kind::crash, "signal 6, after a throw"}});
    EXPECT_TRUE(report.isClean());

    report.onRun(place, 1, {{Kind::crash, "signal 11"}});
    EXPECT_FALSE(report.isClean());
}

TEST(FaultReport, TellsAnExcuseThatNoRunNeeds)
{
    std::ostringstream output;
    Report report({partWith({{"*", "other", "*", "*", Kind::crash, "a reason"}})}, output);

    report.onRun(place, 1, {});
    report.conclude("part", true);

    EXPECT_THAT(output.str(), HasSubstr("an excuse that no run needs"));
    EXPECT_FALSE(report.isClean());
}

TEST(FaultReport, TellsAnExcuseOfRunsThatFindNothing)
{
    std::ostringstream output;
    Report report({partWith({{"*", "*", "*", "*", Kind::crash, "a reason"}})}, output);

    report.onCalls("part", {"operation", "machine", {}}, 20000, 60);
    report.onRun(place, 1, {});
    report.conclude("part", true);

    EXPECT_FALSE(report.isClean());
}

TEST(FaultReport, TellsNoExcuseOfCallsThatHaveNotFailed)
{
    std::ostringstream output;
    Report report({partWith({{"*", "machine", "*", "another call*", Kind::crash, "a reason"}})}, output);

    report.onCalls("part", {"operation", "machine", {}}, 20000, 60);
    report.onRun(place, 1, {});
    report.conclude("part", true);

    EXPECT_TRUE(report.isClean());
}

TEST(FaultReport, NeedsNoExcuseIfOnlySomeRunsAreAskedFor)
{
    std::ostringstream output;
    Report report({partWith({{"*", "other", "*", "*", Kind::crash, "a reason"}})}, output);

    report.onRun(place, 1, {});
    report.conclude("part", false);

    EXPECT_TRUE(report.isClean());
}

TEST(FaultReport, SaysOnWhichMachinesNotAllCallsFail)
{
    std::ostringstream output;
    Report report({partWith({})}, output);

    report.onCalls("part", {"operation", "crowded", {}}, 20000, 60);
    report.onCalls("part", {"operation", "empty", {}}, 5, 5);
    report.conclude("part", true);

    EXPECT_THAT(output.str(), HasSubstr("part on crowded: 60 of 20,000 calls fail"));
    EXPECT_THAT(output.str(), Not(HasSubstr("part on empty")));
}

TEST(FaultOptions, NameOneRun)
{
    const faults::Options options = faults::parse(
        {"library", "--machine", "desktop", "--operation", "AudioPart", "--call", "12,15", "--mode", "fail,null"});

    EXPECT_EQ("12,15:fail,null", options.run);
    EXPECT_EQ("desktop", options.machine);
    EXPECT_EQ("AudioPart", options.operation);
    EXPECT_EQ(std::vector<std::string>{"library"}, options.parts);
    EXPECT_FALSE(options.isWhole());
}

TEST(FaultOptions, AreTheWholeOfAPartWithoutAny)
{
    EXPECT_TRUE(faults::parse({"library"}).isWhole());
}

TEST(FaultOptions, AreRefusedIfTheyAreIncomplete)
{
    EXPECT_THROW(faults::parse({"--call", "12"}), std::invalid_argument);
    EXPECT_THROW(faults::parse({"--machine"}), std::invalid_argument);
    EXPECT_THROW(faults::parse({"--processes", "none"}), std::invalid_argument);
    EXPECT_THROW(faults::parse({"--unknown", "x"}), std::invalid_argument);
}

TEST(FaultPattern, HasStarsForAnyText)
{
    EXPECT_TRUE(faults::isLike("IPart::GetName() on x", "IPart::*) on *"));
    EXPECT_TRUE(faults::isLike("abcabd", "*abd"));
    EXPECT_TRUE(faults::isLike("", "*"));
    EXPECT_FALSE(faults::isLike("abc", "ab"));
    EXPECT_FALSE(faults::isLike("ab", "abc"));
    EXPECT_FALSE(faults::isLike("xabc", "ab*"));
}
