#include "tests/program/programtest.h"

namespace
{
class ProgramCardTree : public support::ProgramTest
{
};
}

TEST_F(ProgramCardTree, BreaksTheLegendOfTheMarksBetweenWords)
{
    width = 60;

    const std::vector<std::string> lines = call({"list", "--machine", "desktop"}).lines();

    EXPECT_THAT(lines, testing::Contains("3 cards, 10 endpoints, * default, m default for multimedia,"));
    EXPECT_THAT(lines, testing::Contains("c default for communications"));
}
