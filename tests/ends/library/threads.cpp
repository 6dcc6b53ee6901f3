// Threads that end before the process, or with it.

#include "tests/ends/library/ways.h"

#include <atomic>
#include <cstdlib>
#include <thread>

#if defined(_WIN32)
#include <windows.h>
#else
#include <pthread.h>
#endif

namespace ends
{
namespace
{
/// The thread on which the shared enumerator has initialized COM.
void endTheThreadThatInitializedCom()
{
    static qor::Array<SoundCard> cards;
    static Teller teller;
    std::thread([] { cards = discover(); }).join();
    CoInitialize(nullptr);
    observe(cards, teller);
    causeAnEvent();
    printNumber(SoundCard::enumerateSystemSoundDevices());
    tellTheEnd();
}

/// Here COM is uninitialized on a thread that has never initialized it.
void neverInitializeComHere()
{
    std::thread([] { discover(); }).join();
    tellTheEnd();
}

void exitOnAnotherThread()
{
    static const qor::Array<SoundCard> cards = discover();
    std::thread(
        []
        {
            CoInitialize(nullptr);
            tellTheEnd();
            std::exit(0);
        })
        .join();
}

void endTheMainThreadFirst()
{
    static const qor::Array<SoundCard> cards = discover();
    std::thread(
        [] // it waits for nothing: whichever thread ends last ends the process
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

std::atomic<bool> isHanging{false};

[[noreturn]] void hang()
{
    isHanging = true;
    for (;;)
        std::this_thread::sleep_for(std::chrono::hours(1));
}

void returnWhileAnotherThreadHangsInTheDriver()
{
    {
        const qor::Array<SoundCard> cards = discover();
    }
    machine().faults().run("IMMDevice::Activate", [] { hang(); }).at(3);
    std::thread([] { discover(); }).detach();
    while (!isHanging)
        std::this_thread::yield();
    printLine("hangs");
    tellTheEnd();
}

void causeEventsAfterTheLastCard()
{
    static Teller teller;
    {
        qor::Array<SoundCard> cards = discover();
        observe(cards, teller);
    }
    causeAnEvent();
    tellTheEnd();
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
    static const qor::Array<SoundCard> cards = discover();
    machine().journal().record(false);
    std::thread(&makeEvents).detach();
    for (int i = 0; i < 100; ++i)
        std::this_thread::yield();
}
}

Ways endingThreads()
{
    return {
        {"end_of_the_thread_that_initialized_com", Lines{"3 cards", "told", "3 cards", "ends"} + regularEnd(2, "", 3),
         &endTheThreadThatInitializedCom},
        {"end_on_a_thread_without_com", Lines{"3 cards", "ends"} + regularEnd(), &neverInitializeComHere},
        {"exit_on_another_thread", Lines{"3 cards"} + regularEnd(), &exitOnAnotherThread},
        {"end_of_the_main_thread_first", Lines{"3 cards", "goes on"}, &endTheMainThreadFirst},
        {"return_while_another_thread_hangs_in_the_driver",
         Lines{"3 cards", "hangs", "ends"} + regularEnd(1, ", cards", 1), &returnWhileAnotherThreadHangsInTheDriver},
        {"events_after_the_last_card", Lines{"3 cards", "told", "ends"} + regularEnd(1, "", 3),
         &causeEventsAfterTheLastCard},
        {"return_while_events_arrive", Lines{"3 cards", "ends"}, &returnWhileEventsArrive, 0, true},
    };
}
}
