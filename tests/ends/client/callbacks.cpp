// exit() where the layer calls the program. The System ends as a static object, on the thread of the call.

#include "tests/ends/client/ways.h"

#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <thread>

using namespace sonavit;

namespace ends
{
namespace
{
constexpr std::chrono::seconds longPatience(20);

std::optional<System> staticSystem;
std::optional<Subscription> staticSubscription;

[[noreturn]] void exitHere()
{
    printLine("exits");
    tellWhatIsLeft();
    std::exit(0);
}

/// The System could end its part only on this thread, which has to end the process.
[[noreturn]] void exitOnTheWorker()
{
    printLine("exits");
    std::exit(0);
}

/// The main thread does nothing until the process ends.
[[noreturn]] void waitForTheEnd()
{
    for (;;)
        std::this_thread::sleep_for(std::chrono::hours(1));
}

void begin(System::Options options)
{
    machine();
    staticSystem.emplace(std::move(options));
    read(*staticSystem);
}

void exitInASubscriber()
{
    begin(withPatience(longPatience));
    staticSubscription.emplace(staticSystem->subscribe([](const Change&) { exitHere(); }));
    causeAnEvent();
    waitForTheEnd();
}

/// Nothing of the layer ends.
void exitInASubscriberOfALivingSystem()
{
    static System& living = *beginSystem().release();
    staticSubscription.emplace(living.subscribe(
        [](const Change&)
        {
            printLine("exits");
            std::exit(0);
        }));
    causeAnEvent();
    waitForTheEnd();
}

void exitInTheHandlerOfExceptions()
{
    System::Options options = withPatience(longPatience);
    options.onException = [](const std::exception_ptr&) { exitHere(); };
    begin(std::move(options));
    staticSubscription.emplace(
        staticSystem->subscribe([](const Change&) { throw std::runtime_error("of the subscriber"); }));
    causeAnEvent();
    waitForTheEnd();
}

void exitInWake()
{
    System::Options options = withPatience(longPatience);
    options.delivery = Delivery::poll;
    options.wake = [] { exitOnTheWorker(); };
    begin(std::move(options));
    staticSubscription.emplace(staticSystem->subscribe(&ignore));
    causeAnEvent();
    waitForTheEnd();
}

void exitInPoll()
{
    System::Options options = withPatience(longPatience);
    options.delivery = Delivery::poll;
    begin(std::move(options));
    staticSubscription.emplace(staticSystem->subscribe([](const Change&) { exitHere(); }));
    causeAnEvent();
    while (staticSystem->poll(longPatience) == 0)
        continue;
}

/// While the main thread waits for its first snapshot.
void exitOnWorkerStart()
{
    System::Options options = withPatience(longPatience);
    options.onWorkerStart = [] { exitOnTheWorker(); };
    begin(std::move(options));
}

/// In the middle of a reading.
void exitInACallOfThePlatform()
{
    machine().faults().run("IPropertyStore::GetValue", [] { exitOnTheWorker(); }).at(20);
    begin(withPatience(longPatience));
}
}

Ways callbacks()
{
    const Lines inOrder = {"exits", "left: nothing", "the former format"};
    return {
        {"exit_in_a_subscriber", Lines{"3 cards"} + inOrder, &exitInASubscriber},
        {"exit_in_a_subscriber_of_a_living_system", {"3 cards", "exits"}, &exitInASubscriberOfALivingSystem},
        {"exit_in_the_handler_of_exceptions", Lines{"3 cards"} + inOrder, &exitInTheHandlerOfExceptions},
        {"exit_in_wake", {"3 cards", "exits"}, &exitInWake},
        {"exit_in_poll", Lines{"3 cards"} + inOrder, &exitInPoll},
        {"exit_on_worker_start", {"exits"}, &exitOnWorkerStart},
        {"exit_in_a_call_of_the_platform", {"exits"}, &exitInACallOfThePlatform},
    };
}
}
