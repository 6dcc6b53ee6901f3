// On Windows the system's own COM keeps no journal and follows no fault plan.
#include "tests/support/clienttest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace sonavit;
using namespace testing;

namespace
{
class WorkerApartment : public support::ClientTest
{
};

TEST_F(WorkerApartment, IsTheMultithreadedOneAroundAllCallsOfAllSystems)
{
    play("desktop");
    simulation().journal().recordReferences(true);
    {
        const System first(options());
        const System second(options());
        static_cast<void>(first.snapshot());
        static_cast<void>(second.snapshot());
    }

    const sim::JournalEntries calls = simulation().journal().entries();
    EXPECT_EQ("CoInitializeEx", calls[0].operation);
    EXPECT_THAT(calls[0].arguments, Contains("0"));
    EXPECT_EQ(1u, calls.of("CoInitializeEx").size());
    EXPECT_EQ(1u, calls.of("CoUninitialize").size());
    EXPECT_EQ("CoUninitialize", calls[calls.size() - 1].operation);
}

TEST_F(WorkerApartment, IsLeftByEachWorkerOfAHundredInTurn)
{
    play("desktop");

    for (int count = 0; count < 100; ++count)
        static_cast<void>(System(options()).snapshot());

    EXPECT_EQ(100u, simulation().journal().count("CoInitializeEx"));
    EXPECT_EQ(100u, simulation().journal().count("CoUninitialize"));
}

TEST_F(WorkerApartment, IsAProblemIfItCannotBeEntered)
{
    play("desktop");
    simulation().faults().fail("CoInitializeEx", E_OUTOFMEMORY);

    const System audio(options());
    const Snapshot snapshot = audio.snapshot();

    EXPECT_THAT(snapshot.cards(), IsEmpty());
    ASSERT_EQ(1u, snapshot.problems().size());
    EXPECT_EQ("CoInitializeEx", snapshot.problems()[0].operation());
    EXPECT_EQ(E_OUTOFMEMORY, snapshot.problems()[0].code());
}

TEST_F(WorkerApartment, IsEnteredBeforeTheProgramsFunction)
{
    play("desktop");
    System::Options given = options();
    std::vector<std::string> before;
    given.onWorkerStart = [&] { before = simulation().journal().operations(); };

    static_cast<void>(System(given).snapshot());

    EXPECT_THAT(before, ElementsAre("CoInitializeEx"));
}
}
