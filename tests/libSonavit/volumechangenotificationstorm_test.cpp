// Many changes of volume on the platform's thread.
#include "libSonavit/volumechangenotification.h"
#include "tests/support/librarytest.h"
#include "tests/support/storm.h"

#include <atomic>
#include <thread>

namespace
{
class VolumeChangeNotificationStorm : public support::LibraryTest
{
protected:
    sim::MachineBuilder bench;
    sim::EndpointBuilder speaker = bench.card("Codec").speaker();
};
}

TEST_F(VolumeChangeNotificationStorm, CallsTheFunctionForEachChangeWhileOtherThreadsCountReferences)
{
    run(bench.build());
    simulation().deliverAtOnce(false);
    std::atomic<unsigned> calls{0};
    COMPtr<VolumeChangeNotification>::pointer notification(new VolumeChangeNotification);
    notification->setCallbackFunction([](void* context) { ++*static_cast<std::atomic<unsigned>*>(context); }, &calls);
    COMPtr<IAudioEndpointVolume>::pointer volume(simulation().endpointVolume(speaker.id()));
    ASSERT_EQ(S_OK, volume->RegisterControlChangeNotify(notification.get()));
    std::atomic<bool> isOver{false};
    const auto count = [&]
    {
        while (!isOver)
        {
            notification->AddRef();
            notification->Release();
        }
    };
    std::thread others[] = {std::thread(count), std::thread(count)};

    const unsigned events = support::stormEvents(1000);
    for (unsigned event = 0; event < events; ++event)
        simulation().events().setVolume(speaker.id(), -static_cast<float>(1 + event % 30), event % 2 == 0);
    simulation().events().waitForClients();
    isOver = true;
    for (std::thread& other : others)
        other.join();

    EXPECT_EQ(events, calls.load());
    EXPECT_EQ(S_OK, volume->UnregisterControlChangeNotify(notification.get()));
    EXPECT_EQ(2u, notification->AddRef());
    EXPECT_EQ(1u, notification->Release());
}
