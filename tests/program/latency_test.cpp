#include "tests/program/programtest.h"
#include "tools/sonavit/session.h"

using std::chrono::milliseconds;
using testing::HasSubstr;

namespace
{
class ProgramLatency : public support::ProgramTest
{
protected:
    /// How long an audio client takes on the machine of a command with these words.
    static milliseconds clientTime(const std::vector<std::string>& words)
    {
        std::ostringstream out;
        std::ostringstream err;
        const sonavit::program::Environment environment{out, err};
        sonavit::program::Session session(environment, sonavit::program::readCommandLine(words).arguments);
        const auto cost = session.simulation()->latency().cost("IMMDevice::Activate", "IAudioClient");
        session.close();
        return std::chrono::duration_cast<milliseconds>(cost);
    }
};

TEST_F(ProgramLatency, IsThatOfTheMachineUnlessChosen)
{
    EXPECT_EQ(milliseconds(0), clientTime({"list", "--machine", "desktop"}));
}

TEST_F(ProgramLatency, CanBePutOnAnyMachine)
{
    EXPECT_EQ(milliseconds(100), clientTime({"list", "--machine", "desktop", "--latency", "windows"}));
}

TEST_F(ProgramLatency, ChangesNothingThatIsPrinted)
{
    EXPECT_EQ(call({"list", "--machine", "laptop"}).out,
              call({"--latency", "windows", "list", "--machine", "laptop"}).out);
}

TEST_F(ProgramLatency, IsPartOfTheHelp)
{
    EXPECT_THAT(call({"--help"}).out, HasSubstr("--latency PRESET"));
    EXPECT_THAT(call({"list", "--help"}).out, HasSubstr("--latency"));
    EXPECT_EQ(2, call({"list", "--machine", "desktop", "--latency", "slow"}).code);
}
}
