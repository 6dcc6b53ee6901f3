// Threads that end before the process, or with it.

#include "tests/ends/client/ways.h"

#include "platform/coreaudio.h"

#include <atomic>
#include <cstdlib>
#include <thread>
#include <vector>

#if !defined(_WIN32)
#include <pthread.h>
#endif

using namespace sonavit;

namespace ends
{
namespace
{
/// The thread that has made the System, in an apartment of its own.
void endTheThreadThatBeganIt()
{
    static std::unique_ptr<System> system;
    std::thread(
        []
        {
            CoInitialize(nullptr);
            system = beginSystem();
        })
        .join();
    tellWhatIsLeft();
    causeAnEventAndWait(*system);
    printLine("told");
}

void exitOnAnotherThread()
{
    static const std::unique_ptr<System> system = beginSystem();
    tellWhatIsLeft();
    std::thread([] { std::exit(0); }).join();
}

void endTheMainThreadFirst()
{
    static const std::unique_ptr<System> system = beginSystem();
    tellWhatIsLeft();
    std::thread(
        []
        {
            printLine("goes on");
            std::exit(0);
        })
        .detach();
#if defined(_WIN32)
    ExitThread(0);
#else
    pthread_exit(nullptr);
#endif
}

constexpr unsigned kindsOfOperations = 5;

void perform(System& system, unsigned operation)
{
    switch (operation % kindsOfOperations)
    {
    case 0:
        static_cast<void>(system.refresh(Depth::everything));
        break;
    case 1:
        static_cast<void>(system.setVolume(speakersId(), Percent(operation % 100)));
        break;
    case 2:
        static_cast<void>(explain(system, speakersId()));
        break;
    case 3:
        static_cast<void>(diagnose(system));
        break;
    default:
        static_cast<void>(capture(system));
        break;
    }
}

/// Threads use a System that does not end, through the end of the process.
void returnWhileThreadsAsk()
{
    static std::atomic<unsigned> done{0};
    System& system = *beginSystem().release();
    static_cast<void>(new Subscription(system.subscribe(&ignore)));
    machine().faults().fail("IPart::GetName");
    machine().journal().record(false);
    for (unsigned first = 0; first < kindsOfOperations; ++first)
        std::thread(
            [&system, first]
            {
                for (unsigned operation = first;; ++operation, ++done)
                    perform(system, operation);
            })
            .detach();
    while (done < 2 * kindsOfOperations)
        std::this_thread::yield();
}

[[noreturn]] void makeEvents()
{
    const std::string endpoint = speakers();
    for (unsigned i = 0;; ++i)
    {
        machine().events().setState(endpoint, i % 2 == 0 ? sim::stateUnplugged : sim::stateActive);
        machine().events().waitForClients();
    }
}

void returnWhileEventsArrive()
{
    System& system = *beginSystem().release();
    static_cast<void>(new Subscription(system.subscribe(&ignore)));
    machine().journal().record(false);
    std::thread(&makeEvents).detach();
    causeAnEventAndWait(system);
}

void endAStaticSystemWhileEventsArrive()
{
    static const std::unique_ptr<System> system = beginSystem();
    static const Subscription heard = system->subscribe(&ignore);
    machine().journal().record(false);
    std::thread(&makeEvents).detach();
    causeAnEventAndWait(*system);
}

/// Its listener is kept for good, and hears nothing any more.
void causeEventsAfterARefusedUnregistration()
{
    {
        const std::unique_ptr<System> system = beginSystem();
        const Subscription heard = system->subscribe(&ignore);
        machine().faults().fail("IMMDeviceEnumerator::UnregisterEndpointNotificationCallback");
        machine().faults().fail("IAudioEndpointVolume::UnregisterControlChangeNotify");
    }
    machine().events().unplug(speakers());
    causeAnEvent();
    printLine("events");
}
}

Ways endingThreads()
{
    const Lines inOrder = {"left: nothing", "the former format"};
    return {
        {"end_of_the_thread_that_began_the_system", Lines{"3 cards", "told", "ends"} + inOrder,
         &endTheThreadThatBeganIt},
        {"exit_on_another_thread", Lines{"3 cards"} + inOrder, &exitOnAnotherThread},
        {"end_of_the_main_thread_first", Lines{"3 cards", "goes on"} + inOrder, &endTheMainThreadFirst},
        {"return_while_threads_ask", {"3 cards", "ends"}, &returnWhileThreadsAsk, 0, true},
        {"return_while_events_arrive", {"3 cards", "ends"}, &returnWhileEventsArrive, 0, true},
        {"end_of_a_static_system_while_events_arrive",
         {"3 cards", "ends"},
         &endAStaticSystemWhileEventsArrive,
         0,
         true},
        {"events_after_a_refused_unregistration",
         {"3 cards", "events", "ends"},
         &causeEventsAfterARefusedUnregistration},
    };
}
}
