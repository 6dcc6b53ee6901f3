#include "client/watching/registrations.h"
#include "simulator/machine/file/machinefile.h"
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

TEST_F(SystemSnapshot, KeepsTheNamesOfAnEndpointThatGoesWhereTheyCannotBeReadAnyMore)
{
    sim::Machine machine = sim::findMachine("desktop");
    machine.notPresentNames = sim::NotPresentNames::failing;
    watch(std::move(machine));
    const EndpointId id = audio().defaultEndpoint(Flow::output)->id();
    const std::optional<std::string> name = audio().endpoint(id)->name();
    ASSERT_TRUE(name);

    simulation().events().unplugUsb(id.text());
    const Snapshot afterwards = audio().refresh().value();
    const Snapshot anew = audio().refresh(Depth::everything).value();

    EXPECT_EQ(State::notPresent, afterwards.endpoint(id)->state());
    EXPECT_EQ(name, afterwards.endpoint(id)->name());
    EXPECT_EQ(std::nullopt, anew.endpoint(id)->name());
    EXPECT_TRUE(anew.endpoint(id)->problemWith(EndpointField::description));
}

/// Of two ids that differ in case alone, which are one id, the platform's list has the first one's endpoint.
class SnapshotOfTwoCases : public SystemSnapshot
{
protected:
    static constexpr const char* lower = "{0.0.0.00000000}.{ff85b6a4-df35-4427-b365-431a7da80d5e}";
    static constexpr const char* upper = "{0.0.0.00000000}.{FF85B6A4-DF35-4427-B365-431A7DA80D5E}";

    /// The id as the snapshot writes it.
    static std::string written(const Snapshot& snapshot)
    {
        const std::optional<Endpoint> endpoint = snapshot.endpoint(EndpointId(lower));
        return endpoint ? endpoint->id().text() : "none";
    }

    void failTheFirstOnesItem() { simulation().faults().fail("IMMDeviceCollection::Item").with("4"); }
};

TEST_F(SnapshotOfTwoCases, HasTheFirstOneAsSoonAsTheListHasItAgain)
{
    play("broken").deliverAtOnce(true);
    failTheFirstOnesItem();
    System audio(polledOptions());
    EXPECT_EQ(upper, written(audio.snapshot()));
    simulation().faults().clear();

    const Snapshot again = audio.refresh(Depth::everything).value();

    EXPECT_EQ(lower, written(again));
    const Snapshot other = System(polledOptions()).snapshot();
    EXPECT_EQ(other.endpoint(EndpointId(lower)), again.endpoint(EndpointId(lower)));
}

TEST_F(SnapshotOfTwoCases, KeepsTheFirstOneWhileTheListLacksIt)
{
    watch("broken");
    ASSERT_EQ(lower, written(audio().snapshot()));
    failTheFirstOnesItem();

    EXPECT_EQ(lower, written(audio().refresh(Depth::everything).value()));
}
}
