#include "tests/client/capturing/surveytest.h"

#include "simulator/machine/file/machinefile.h"

namespace
{
class SurveyEndpoints : public SurveyTest
{
};

TEST_F(SurveyEndpoints, RecordsThemInTheOrderOfTheMachine)
{
    const sim::Machine machine = machineWithoutHardware("desktop");
    start(machine);

    const capturing::Survey found = survey();

    std::vector<std::string> ids;
    for (std::size_t index = 0; index < machine.endpoints.size(); ++index)
        EXPECT_EQ(machine.endpoints[index].id, found.machine.endpoints[index].id);
    EXPECT_THAT(found.failures, testing::IsEmpty());
}
}
