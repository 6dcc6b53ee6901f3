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

TEST_F(ProgramCardTree, ShowsAllMarksInTheNarrowestTerminal)
{
    sim::MachineBuilder builder("marks");
    sim::CardBuilder card = builder.card("Analog Audio");
    card.speaker("Front").defaultFor(eConsole);
    card.speaker("Rear").defaultFor(eMultimedia).defaultFor(eCommunications);
    run(builder.build());
    width = 10;

    const std::vector<std::string> lines = call({"list"}).lines();

    EXPECT_THAT(lines, testing::Contains(testing::StartsWith("mc Re")));
}
