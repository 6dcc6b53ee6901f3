#include "tests/client/watching/watchtest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

using namespace sonavit;
using namespace std::chrono_literals;

namespace
{
using EndpointWhoseStateCannotBeRead = support::WatchTest;

TEST_F(EndpointWhoseStateCannotBeRead, HasNotVanishedAndComeBack)
{
    watch("desktop");
    const EndpointId id = audio().defaultEndpoint(Flow::output)->id();
    support::Receiver receiver(audio());
    const sim::PlannedFault fault = simulation().faults().fail("IMMDevice::GetState", E_ACCESSDENIED);
    ASSERT_TRUE(audio().refresh(Depth::everything));
    ASSERT_LT(0u, fault.fired());
    const std::optional<Endpoint> unread = audio().endpoint(id);
    simulation().faults().clear();

    ASSERT_TRUE(audio().refresh(Depth::everything));

    ASSERT_TRUE(unread);
    EXPECT_EQ(std::nullopt, unread->state());
    EXPECT_EQ(State::active, audio().endpoint(id)->state());
    EXPECT_EQ(0u, audio().endpoint(id)->incarnation());
    for (const Event& event : receiver.events())
        EXPECT_NE(Event::Kind::endpointReappeared, event.kind) << event;
}
}
