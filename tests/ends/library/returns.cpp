// The end of main(), and what else ends a process.

#include "tests/ends/library/ways.h"

#include <cstdlib>
#include <exception>
#include <stdexcept>

#if defined(_WIN32)
#include <windows.h>
#endif

namespace ends
{
namespace
{
void returnWithoutCards()
{
    {
        const qor::Array<SoundCard> cards = discover();
    }
    tellTheEnd();
}

void returnWithLivingCards()
{
    static auto* const kept = new qor::Array<SoundCard>(discover());
    static_cast<void>(kept);
    tellTheEnd();
}

void exitWithLivingCards()
{
    const qor::Array<SoundCard> cards = discover();
    tellTheEnd();
    std::exit(0);
}

/// The caller has left COM, and the library has kept it initialized until its end.
void returnWithoutCom()
{
    {
        const qor::Array<SoundCard> cards = discover();
    }
    CoUninitialize();
    tellTheEnd();
}

void returnAfterAFailedDiscovery()
{
    CoInitialize(nullptr);
    machine().faults().fail("CoCreateInstance");
    printNumber(SoundCard::enumerateSystemSoundDevices());
    tellTheEnd();
}

void endAtOnce()
{
    const qor::Array<SoundCard> cards = discover();
    tellTheEnd();
#if defined(_WIN32)
    TerminateProcess(GetCurrentProcess(), 0);
#else
    std::_Exit(0);
#endif
}

void abortWithLivingCards()
{
    const qor::Array<SoundCard> cards = discover();
    tellTheEnd();
    std::abort();
}

void terminateByAnException()
{
    const qor::Array<SoundCard> cards = discover();
    tellTheEnd();
    std::set_terminate(
        []
        {
            printLine("terminates");
            std::abort();
        });
    throw std::runtime_error("of the program");
}

/// As a program may that says goodbye properly.
void exitInTheTerminateHandler()
{
    const qor::Array<SoundCard> cards = discover();
    tellTheEnd();
    std::set_terminate(
        []
        {
            printLine("terminates");
            std::exit(0);
        });
    throw std::runtime_error("of the program");
}

/// An exception that leaves the platform's Release in a destructor while another one is on its way.
void throwFromReleaseWhileAnotherExceptionIsOnItsWay()
{
    std::set_terminate(
        []
        {
            printLine("terminates");
            std::exit(0);
        });
    const qor::Array<SoundCard> cards = discover();
    machine().faults().raise("IMMDevice::Release").at(1);
    tellTheEnd();
    throw std::runtime_error("of the program");
}

#if !defined(_WIN32)
void endQuickly()
{
    const qor::Array<SoundCard> cards = discover();
    tellTheEnd();
    std::at_quick_exit([] { printLine("quick"); });
    std::quick_exit(0);
}
#endif
}

Ways returns()
{
    Ways ways = {
        {"return_without_cards", Lines{"3 cards", "ends"} + regularEnd(), &returnWithoutCards},
        {"return_with_living_cards", Lines{"3 cards", "ends"} + regularEnd(1, ", cards"), &returnWithLivingCards},
        {"exit_with_living_cards", Lines{"3 cards"} + regularEnd(1, ", cards"), &exitWithLivingCards},
        {"return_without_com", Lines{"3 cards", "ends"} + regularEnd(), &returnWithoutCom},
        {"return_after_a_failed_discovery", {"0 cards", "ends", "left: 0 strings"}, &returnAfterAFailedDiscovery},
        {"end_at_once", {"3 cards"}, &endAtOnce},
        {"abort_with_living_cards", {"3 cards"}, &abortWithLivingCards, aborted},
        {"terminate_by_an_exception", {"3 cards", "terminates"}, &terminateByAnException, aborted},
        {"exit_in_the_terminate_handler", Lines{"3 cards", "terminates"} + regularEnd(1, ", cards"),
         &exitInTheTerminateHandler},
        {"release_that_throws_during_an_exception", Lines{"3 cards", "terminates"} + regularEnd(1, ", cards"),
         &throwFromReleaseWhileAnotherExceptionIsOnItsWay},
    };
#if !defined(_WIN32)
    ways.push_back({"end_quickly", {"3 cards", "quick"}, &endQuickly});
#endif
    return ways;
}
}
