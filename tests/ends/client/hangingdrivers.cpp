// A driver that does not answer, however long the process lasts.

#include "tests/ends/client/ways.h"

#include <atomic>
#include <cstdlib>
#include <thread>

using namespace sonavit;

namespace ends
{
namespace
{
constexpr std::chrono::milliseconds shortPatience(50);

std::atomic<bool> isAsked{false};

/// The worker asks, and gets no answer.
void hang()
{
    machine().faults().run("IMMDevice::GetState",
                           []
                           {
                               isAsked = true;
                               for (;;)
                                   std::this_thread::sleep_for(std::chrono::hours(1));
                           });
    machine().events().setState(speakers(), sim::stateUnplugged);
    while (!isAsked)
        std::this_thread::yield();
    printLine("hangs");
}

void begin(System& system)
{
    read(system);
    hang();
}

void returnWithALivingSystem()
{
    machine();
    begin(*new System(withPatience(shortPatience)));
}

/// It ends when its patience does.
void returnWithAStaticSystem()
{
    machine();
    static System system(withPatience(shortPatience));
    static const Subscription heard = system.subscribe(&ignore);
    begin(system);
}

void returnAfterTheSystem()
{
    machine();
    {
        System system(withPatience(shortPatience));
        begin(system);
    }
    printLine("the system ends");
}

/// The second one has a worker of its own.
void returnAfterASecondSystem()
{
    returnAfterTheSystem();
    System second(withPatience(shortPatience));
    second.snapshot();
    printLine("the second ends");
}

/// Ends the process while the main thread waits for an answer.
void exitWhileTheMainThreadWaits()
{
    machine();
    static System& system = *new System(withPatience(std::chrono::minutes(10)));
    begin(system);
    std::thread([] { std::exit(0); }).detach();
    static_cast<void>(system.refresh());
}
}

Ways hangingDrivers()
{
    return {
        {"hanging_driver_and_a_living_system", {"3 cards", "hangs", "ends"}, &returnWithALivingSystem},
        {"hanging_driver_and_a_static_system", {"3 cards", "hangs", "ends"}, &returnWithAStaticSystem},
        {"hanging_driver_and_an_ended_system", {"3 cards", "hangs", "the system ends", "ends"}, &returnAfterTheSystem},
        {"hanging_driver_and_two_ended_systems",
         {"3 cards", "hangs", "the system ends", "the second ends", "ends"},
         &returnAfterASecondSystem},
        {"hanging_driver_and_a_thread_that_waits", {"3 cards", "hangs"}, &exitWhileTheMainThreadWaits},
    };
}
}
