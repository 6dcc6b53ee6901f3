#include "simulator/machine/builder/machinebuilder.h"
#include "tests/client/watching/watchtest.h"

#include <gtest/gtest.h>

#include <string>

using namespace sonavit;
using namespace std::chrono_literals;

namespace
{
/// Questions about the hardware of one card with three outputs.
class SystemControls : public support::WatchTest
{
protected:
    void SetUp() override
    {
        WatchTest::SetUp();
        sim::MachineBuilder builder;
        sim::CardBuilder card = builder.card("Card");
        m_first = card.speaker("First").hardwareVolume({-96.0F, 0.0F, 1.5F, -30.0F}).id();
        card.speaker("Second").hardwareVolume({-96.0F, 0.0F, 1.5F, -30.0F});
        card.speaker("Third").hardwareVolume({-96.0F, 0.0F, 1.5F, -30.0F});
        watch(builder.build());
    }

    std::vector<Control> first() { return audio().controls(EndpointId(m_first)).value(); }

    /// How many devices the question opens.
    std::size_t openedByFirst()
    {
        simulation().journal().clear();
        EXPECT_EQ(1u, first().size());
        return simulation().journal().count("IMMDeviceEnumerator::GetDevice");
    }

    std::string m_first;
};

TEST_F(SystemControls, OfAllEndpointsOfACardWalksThroughItsHardwareOnce)
{
    const std::size_t ofOne = openedByFirst();

    simulation().journal().clear();
    for (const Endpoint& endpoint : audio().snapshot().endpoints())
        EXPECT_EQ(1u, audio().controls(endpoint.id())->size());

    EXPECT_GT(ofOne, 0u);
    EXPECT_EQ(0u, simulation().journal().count("IMMDeviceEnumerator::GetDevice"));
}

TEST_F(SystemControls, HaveTheLevelsOfNow)
{
    const Control before = first().at(0);
    const std::string part = before.id.text();
    IAudioVolumeLevel* const level = simulation().volumeLevel(part);
    ASSERT_NE(nullptr, level);
    ASSERT_EQ(S_OK, level->SetLevelUniform(-12.0F, nullptr));
    level->Release();

    const Control after = first().at(0);

    EXPECT_EQ(before.id, after.id);
    EXPECT_NE(before, after);
}

TEST_F(SystemControls, AreWalkedToAnewAfterASecondAndNothingIsHeldUntilThen)
{
    const sim::Census before = simulation().census();
    openedByFirst();
    EXPECT_NE(before, simulation().census());

    advance(1s);

    EXPECT_EQ(before, simulation().census()) << simulation().census() - before;
    EXPECT_GT(openedByFirst(), 0u);
}

TEST_F(SystemControls, AreWalkedToAnewAfterAnAnnouncement)
{
    openedByFirst();

    simulation().events().setState(m_first, DEVICE_STATE_DISABLED);
    EXPECT_GT(openedByFirst(), 0u);
    static_cast<void>(audio().refresh());

    EXPECT_GT(openedByFirst(), 0u);
}

TEST_F(SystemControls, AreWalkedToAnewAfterAFailure)
{
    const std::size_t ofOne = openedByFirst();
    advance(1s);
    simulation().faults().fail("IMMDeviceEnumerator::GetDevice").at(1);
    static_cast<void>(first());

    EXPECT_EQ(ofOne, openedByFirst());
}
}
