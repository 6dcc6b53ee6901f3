// Handlers of atexit, which use the library.

#include "tests/ends/library/ways.h"

#include <cstdlib>

namespace ends
{
namespace
{
qor::Array<SoundCard>* cardsOfHandlers = nullptr;

void discoverAtTheEnd()
{
    printNumber(SoundCard::enumerateSystemSoundDevices());
}

void endKeptCards()
{
    delete cardsOfHandlers;
    printLine("cards end");
}

/// The first is called last.
void discoverBeforeAndAfter()
{
    std::atexit(&discoverAtTheEnd);
    cardsOfHandlers = new qor::Array<SoundCard>(discover());
    std::atexit(&endKeptCards);
    std::atexit(&discoverAtTheEnd);
    tellTheEnd();
}

void discoverFirstAtTheEnd()
{
    std::atexit(
        []
        {
            discover();
            tellTheEnd();
        });
}

void exitAfterAnEventInAHandler()
{
    static Teller teller;
    cardsOfHandlers = new qor::Array<SoundCard>(discover());
    observe(*cardsOfHandlers, teller);
    std::atexit(&causeAnEvent);
    tellTheEnd();
    std::exit(0);
}
}

Ways handlers()
{
    return {
        {"handlers_from_before_and_after", Lines{"3 cards", "ends", "3 cards", "cards end", "3 cards"} + regularEnd(3),
         &discoverBeforeAndAfter},
        {"first_discovery_in_a_handler", Lines{"ends", "3 cards"} + regularEnd(), &discoverFirstAtTheEnd},
        {"event_in_a_handler", Lines{"3 cards", "told"} + regularEnd(1, ", cards", 3), &exitAfterAnEventInAHandler},
    };
}
}
