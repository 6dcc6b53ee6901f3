/// COM on the thread that calls the program. On Windows it is the system's own, which does not fail by a plan.
#include "tests/program/programtest.h"

namespace
{
using ProgramApartment = support::ProgramTest;

void expectComAsBefore()
{
    EXPECT_EQ(S_FALSE, CoInitialize(nullptr)); // the test has initialised it, once
    CoUninitialize();
}
}

TEST_F(ProgramApartment, IsAsBeforeIfItCannotBeEntered)
{
    run(support::smallMachine());
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"list"}, {"list", "--via", "model"}, {"ask", support::smallInstanceId()}})
    {
        simulation().faults().fail("CoInitialize").at(1);

        const support::Answer answer = call(words);

        EXPECT_EQ(0, answer.code) << words.front() << ": " << answer.err;
        simulation().faults().clear();
        expectComAsBefore();
    }
}

TEST_F(ProgramApartment, IsAskedForBeforeTheHelperIs)
{
    run(support::smallMachine());
    simulation().faults().fail("CoInitialize").at(2);

    const support::Answer answer = call({"ask", support::smallInstanceId()});

    EXPECT_EQ(1, answer.code);
    EXPECT_EQ("sonavit: the system's audio cannot be reached: 0x80004005, unspecified error\n", answer.err);
}
