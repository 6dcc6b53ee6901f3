/// A client that is registered with the bench machine, for the tests of events.
#pragma once

#include "tests/simulator/bench.h"

namespace bench
{
/// The client is unregistered at the end. The machine never touches its references.
class EventsTest : public SimulationTest
{
protected:
    EventsTest() { EXPECT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&client)); }

    ~EventsTest() override
    {
        EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&client));
        EXPECT_EQ(1u, client.references);
    }

    Held<IMMDeviceEnumerator> enumerator{simulation.enumerator()};
    ClientListener client;
};
}
