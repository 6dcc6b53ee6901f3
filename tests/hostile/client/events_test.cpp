// What the client layer makes of events for what is not there, or not any more.
#include "simulator/machine/propertykeys.h"
#include "tests/client/watching/watchtest.h"
#include "tests/hostile/client/hostileclienttest.h"

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace
{
using namespace sonavit;
using hostile::honest;
using testing::SizeIs;

class ClientEvents : public hostile::HostileClientTest
{
protected:
    void SetUp() override
    {
        HostileClientTest::SetUp();
        sim::Machine machine = honest().machine;
        machine.removedEndpoints = sim::RemovedEndpoints::unknown;
        begin(machine);
        m_before = audio().snapshot();
    }

    /// Nothing has changed when everything that was announced has been read.
    void expectNothingHasChanged()
    {
        const Result<Snapshot> now = audio().refresh();
        ASSERT_TRUE(now);
        EXPECT_EQ(support::withoutPast(m_before), support::withoutPast(*now));
    }

private:
    Snapshot m_before;
};
}

TEST_F(ClientEvents, WithoutIdReadEverythingAndChangeNothing)
{
    simulation().journal().clear();

    simulation().events().announceAdded(std::nullopt);
    simulation().events().announceState(std::nullopt, 0xFFFFFFFF);
    simulation().events().announceProperty(std::nullopt, sim::keys::friendlyName);
    simulation().events().announceRemoved(std::nullopt);

    expectNothingHasChanged();
    EXPECT_LT(0u, simulation().journal().count("IMMDeviceEnumerator::EnumAudioEndpoints"));
}

TEST_F(ClientEvents, ForUnknownIdsChangeNothing)
{
    for (const std::string& id :
         {std::string(), std::string("{unknown}"), std::string(0x10000, 'x'), std::string("\xEF\xBF\xBD")})
    {
        simulation().events().announceAdded(id);
        simulation().events().announceState(id, 1);
        simulation().events().announceDefault(eRender, eConsole, id);
        simulation().events().announceRemoved(id);
    }

    expectNothingHasChanged();
}

TEST_F(ClientEvents, OfUnknownFlowsAndRolesReadTheDefaults)
{
    simulation().journal().clear();

    simulation().events().announceDefault(static_cast<EDataFlow>(77), static_cast<ERole>(-1), std::nullopt);

    expectNothingHasChanged();
    EXPECT_EQ(6u, simulation().journal().count("IMMDeviceEnumerator::GetDefaultAudioEndpoint"));
}

TEST_F(ClientEvents, ForAnEndpointThatVanishesBeforeItIsOpenedLeaveItOut)
{
    simulation().faults().run("IMMDeviceEnumerator::GetDevice",
                              [this] {
                                  simulation().change([](sim::Machine& machine)
                                                      { machine.endpoint(honest().earphone)->installed = false; });
                              });

    simulation().events().remove(honest().earphone);
    ASSERT_TRUE(audio().refresh());
    simulation().events().announceAdded(honest().earphone);
    ASSERT_TRUE(audio().refresh());

    EXPECT_THAT(audio().snapshot().endpoints(), SizeIs(2));
}

/// Under a sanitizer for threads this is a race that the layer has to stand.
TEST_F(ClientEvents, FromSeveralThreadsMayComeWhileSubscriptionsAndSystemsEnd)
{
    simulation().deliverAtOnce(true);
    std::atomic<bool> isOver{false};
    std::vector<std::thread> callers;
    for (const sim::Text& id : {sim::Text(honest().speaker), sim::Text("{unknown}"), sim::Text()})
    {
        callers.emplace_back(
            [this, id, &isOver]
            {
                while (!isOver)
                {
                    simulation().events().announceAdded(id);
                    simulation().events().announceState(id, 4);
                    simulation().events().announceRemoved(id);
                    std::this_thread::yield();
                }
            });
    }
    for (int round = 0; round < 10; ++round)
    {
        System other(options());
        const Subscription subscription = other.subscribe([](const Change&) {});
        const Result<Watch> watch = other.watch(other.snapshot().cards().front().id());
        EXPECT_TRUE(other.refresh());
    }
    isOver = true;
    for (std::thread& caller : callers)
        caller.join();

    expectNothingHasChanged();
}
