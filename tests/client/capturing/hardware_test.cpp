#include "client/capturing/hardware.h"

#include "simulator/machine/file/machinefile.h"
#include "tests/client/capturing/supporthardware.h"
#include "tests/support/clienttest.h"
#include "tests/support/pace.h"
#include "tests/support/randomconnections.h"
#include "tests/support/randommachine.h"

#include <algorithm>
#include <cstdint>
#include <string>

namespace
{
using namespace sonavit;
using testing::IsEmpty;

/// The shipped machines.
class SurveyHardwareOfAMachine : public support::ClientTest, public testing::WithParamInterface<const char*>
{
};

TEST_P(SurveyHardwareOfAMachine, RecordsTheTopologiesThatTheMachineHas)
{
    sim::Machine machine = sim::findMachine(GetParam());
    machine.faults.clear();
    play(machine);
    const auto com = support::comOnThisThread();

    const capturing::Survey survey = support::surveyedHardware();

    EXPECT_THAT(support::hardwareDifferences(machine, survey.machine), IsEmpty());
    EXPECT_THAT(support::textsOf(survey.failures), testing::IsEmpty());
    EXPECT_THAT(survey.notes, IsEmpty());
}

TEST_P(SurveyHardwareOfAMachine, IsTheSameForTheMachineThatItRecords)
{
    play(GetParam());
    const auto com = support::comOnThisThread();
    const capturing::Survey survey = support::surveyedHardware();

    const capturing::Survey again = support::surveyedHardwareOf(support::replayOf(survey));

    EXPECT_TRUE(survey.machine == again.machine);
    EXPECT_EQ(support::textsOf(survey.failures), support::textsOf(again.failures));
    EXPECT_TRUE(survey.failures == again.failures);
}

INSTANTIATE_TEST_SUITE_P(Machines, SurveyHardwareOfAMachine,
                         testing::Values("bluetooth", "broken", "crowded", "desktop", "empty", "laptop", "laptop-user",
                                         "published", "remote-desktop", "studio", "virtual", "waking"),
                         [](const testing::TestParamInfo<const char*>& machine)
                         {
                             std::string name = machine.param;
                             name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
                             return name;
                         });

/// Machines of chance.
class SurveyHardwareAtRandom : public support::ClientTest, public testing::WithParamInterface<std::uint32_t>
{
protected:
    void expectItsHardware(const sim::Machine& machine)
    {
        const auto com = support::comOnThisThread();

        const capturing::Survey survey = support::surveyedHardwareOf(machine);
        const capturing::Survey again = support::surveyedHardwareOf(support::replayOf(survey));

        EXPECT_THAT(support::hardwareDifferences(machine, survey.machine), IsEmpty());
        EXPECT_TRUE(survey.machine == again.machine);
        EXPECT_EQ(support::textsOf(survey.failures), support::textsOf(again.failures));
    }
};

TEST_P(SurveyHardwareAtRandom, RecordsTheHardwareOfCards)
{
    expectItsHardware(support::randomMachine(GetParam()));
}

TEST_P(SurveyHardwareAtRandom, RecordsAnyConnections)
{
    expectItsHardware(support::randomConnections(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Seeds, SurveyHardwareAtRandom, testing::Range(std::uint32_t{1}, 1 + support::cases(50, 15)));
}
