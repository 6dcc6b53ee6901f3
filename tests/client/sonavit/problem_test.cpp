#include "sonavit/problem.h"

#include "sonavit/result.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace sonavit;

namespace
{
constexpr auto accessDenied = static_cast<std::int32_t>(0x80070005);
}

TEST(ReasonText, IsTheCodeAndItsMeaning)
{
    EXPECT_EQ("0x80070005, access denied", reasonText(accessDenied));
    EXPECT_EQ("0x88890010, the audio service is not running", reasonText(static_cast<std::int32_t>(0x88890010)));
    EXPECT_EQ("0x80020005, a value of another type", reasonText(static_cast<std::int32_t>(0x80020005)));
    EXPECT_EQ("0x8007000D, invalid data", reasonText(static_cast<std::int32_t>(0x8007000D)));
    EXPECT_EQ("0xE000020B, no such device instance", reasonText(static_cast<std::int32_t>(0xE000020B)));
}

TEST(ReasonText, IsTheCodeAloneIfItHasNoWords)
{
    EXPECT_EQ("0x8889DEAD", reasonText(static_cast<std::int32_t>(0x8889DEAD)));
    EXPECT_EQ("0x00000002", reasonText(2));
}

TEST(Problem, OfACallNamesTheCallAndTheReason)
{
    const Problem problem = Problem::ofCall("IMMDevice::OpenPropertyStore", "{a}", accessDenied);

    EXPECT_EQ(Problem::Kind::platform, problem.kind());
    EXPECT_EQ("IMMDevice::OpenPropertyStore", problem.operation());
    EXPECT_EQ("{a}", problem.object());
    EXPECT_EQ(accessDenied, problem.code());
    EXPECT_EQ("0x80070005", problem.codeText());
    EXPECT_EQ("IMMDevice::OpenPropertyStore failed: 0x80070005, access denied", problem.sentence());
}

TEST(Problem, OfACallMayHaveASentenceOfItsOwn)
{
    const Problem problem = Problem::ofCall("IMMDevice::GetId", "", accessDenied, "the system cannot name it");

    EXPECT_EQ("the system cannot name it", problem.sentence());
    EXPECT_EQ(accessDenied, problem.code());
}

TEST(Problem, OfAnotherKindHasNoCode)
{
    const Problem problem(Problem::Kind::outOfRange, "setVolume", "{a}", "the range is -96 to 0 dB");

    EXPECT_EQ(Problem::Kind::outOfRange, problem.kind());
    EXPECT_EQ(0, problem.code());
    EXPECT_EQ("", problem.codeText());
    EXPECT_EQ("the range is -96 to 0 dB", problem.sentence());
}

TEST(Problem, IsEqualIfAllOfItIs)
{
    const Problem problem = Problem::ofCall("one", "object", 1, "sentence");

    EXPECT_EQ(problem, Problem::ofCall("one", "object", 1, "sentence"));
    EXPECT_NE(problem, Problem::ofCall("other", "object", 1, "sentence"));
    EXPECT_NE(problem, Problem::ofCall("one", "other", 1, "sentence"));
    EXPECT_NE(problem, Problem::ofCall("one", "object", 2, "sentence"));
    EXPECT_NE(problem, Problem::ofCall("one", "object", 1, "other"));
    EXPECT_NE(Problem(Problem::Kind::notThere, "one", "", "x"), Problem(Problem::Kind::ended, "one", "", "x"));
}

TEST(Problem, IsPrintedAsItsSentence)
{
    std::ostringstream out;
    out << Problem(Problem::Kind::ended, "snapshot", "", "the System is ending");

    EXPECT_EQ("the System is ending", out.str());
}

TEST(Result, HasAValueOrAProblem)
{
    const Result<int> success(3, 17);
    const Result<int> failure(Problem(Problem::Kind::notThere, "find", "", "there is none"));

    ASSERT_TRUE(success);
    EXPECT_EQ(3, *success);
    EXPECT_EQ(17u, success.token());
    ASSERT_FALSE(failure);
    EXPECT_EQ("there is none", failure.problem().sentence());
}

TEST(Result, ThrowsIfItIsAskedForWhatItDoesNotHave)
{
    const Result<int> success(3);
    const Result<int> failure(Problem(Problem::Kind::notThere, "find", "", "there is none"));

    EXPECT_THROW(success.problem(), std::logic_error);
    try
    {
        static_cast<void>(failure.value());
        ADD_FAILURE() << "there is no value";
    }
    catch (const std::logic_error& error)
    {
        EXPECT_STREQ("sonavit::Result: there is none", error.what());
    }
}

TEST(ProblemKind, HasAKeyThatIsPrinted)
{
    std::ostringstream out;
    for (int kind = 0; kind <= 10; ++kind)
        out << static_cast<Problem::Kind>(kind) << ' ';

    EXPECT_EQ(
        "platform notThere ambiguous notSupported outOfRange unreadable noAnswer wouldWait ended internal unknown ",
        out.str());
    EXPECT_STREQ("unknown", keyOf(static_cast<Problem::Kind>(-1)));
}
