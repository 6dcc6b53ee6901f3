#include "tests/client/watching/watchtest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

using namespace sonavit;
using namespace testing;

namespace
{
/// On Windows it is the system, not the simulated machine, that knows the parents of devices.
using ParentOfACard = support::WatchTest;

TEST_F(ParentOfACard, IsAskedForAgainWhenEverythingIsRead)
{
    watch("desktop");
    const std::vector<Card> usual = audio().snapshot().cards();
    ASSERT_TRUE(std::any_of(usual.begin(), usual.end(), [](const Card& card) { return card.parent().has_value(); }));
    simulation().faults().fail("getParentDeviceInstanceId");

    ASSERT_TRUE(audio().refresh(Depth::everything));

    for (const Card& card : audio().snapshot().cards())
        EXPECT_EQ(std::nullopt, card.parent()) << card;
    simulation().faults().clear();
    ASSERT_TRUE(audio().refresh(Depth::everything));
    EXPECT_THAT(audio().snapshot().cards(), ElementsAreArray(usual));
}
}
