#include "client/watching/registrations.h"
#include "tests/client/watching/watchtest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

using namespace sonavit;
using namespace testing;

namespace
{
class SystemSnapshot : public support::WatchTest
{
};

TEST_F(SystemSnapshot, HasAllEndpointsOfTheComputer)
{
    watch("desktop");

    const Snapshot snapshot = audio().snapshot();

    const auto isInstalled = [](const sim::Endpoint& endpoint) { return endpoint.installed; };
    const std::vector<sim::Endpoint> endpoints = simulation().machine().endpoints;
    EXPECT_EQ(std::count_if(endpoints.begin(), endpoints.end(), isInstalled),
              static_cast<std::ptrdiff_t>(snapshot.endpoints().size()));
    EXPECT_EQ(1u, snapshot.generation());
    EXPECT_THAT(snapshot.problems(), IsEmpty());
}

TEST_F(SystemSnapshot, AsksThePlatformOnceForAllCalls)
{
    watch("desktop");
    callsSince();

    static_cast<void>(audio().snapshot());
    static_cast<void>(audio().defaultEndpoint(Flow::output));

    EXPECT_EQ(0u, callsSince());
}

TEST_F(SystemSnapshot, ReleasesEverythingOnTheWorkerAtTheEndOfTheSystem)
{
    watch("studio");
    const std::size_t kept = watching::keptListeners();
    simulation().journal().recordReferences(true);
    simulation().journal().clear();

    endSystem();

    EXPECT_TRUE(simulation().census().empty()) << simulation().census();
    const sim::JournalEntries calls = simulation().journal().entries();
    ASSERT_FALSE(calls.empty());
    EXPECT_EQ(calls.size(), calls.onThread(calls[0].thread).size());
    EXPECT_NE(std::this_thread::get_id(), calls[0].thread);
    EXPECT_EQ(kept, watching::keptListeners());
}
}
