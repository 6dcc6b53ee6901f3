/// A client that is registered with the bench machine, for the tests of events.
#pragma once

#include "tests/simulator/bench.h"

namespace bench
{
/// The client is unregistered at the end, and the machine may hold no reference on it then.
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
