// Handlers of atexit, which use the layer.

#include "tests/ends/client/ways.h"

#include <cstdlib>

using namespace sonavit;

namespace ends
{
namespace
{
System* kept = nullptr;

/// All kinds of operations; those that diagnose find calls that fail.
void useIt()
{
    const bool isRead = kept->refresh(Depth::everything) && kept->graph() && kept->settings();
    const bool isChanged = kept->setVolume(speakersId(), Percent(40)) && kept->toggleMute(speakersId());
    const Result<Capture> captured = capture(*kept);
    const auto reasons = explain(*kept, speakersId());
    const auto findings = diagnose(*kept);
    printLine(isRead && isChanged && captured && reasons && findings ? "all used" : "some failed");
}

void failSomeCalls()
{
    machine().faults().fail("IPart::GetName");
    machine().faults().fail("IMMDevice::Activate").with("IAudioClient");
}

/// The first is called last, when all that the layer has made in main() has ended.
void useItBeforeAndAfter()
{
    std::atexit(&useIt);
    kept = beginSystem().release();
    failSomeCalls();
    useIt();
    std::atexit(&useIt);
}

void beginInAHandler()
{
    std::atexit([] { beginSystem(); });
    machine();
    tellWhatIsLeft();
}

void endInAHandler()
{
    kept = beginSystem().release();
    tellWhatIsLeft();
    std::atexit([] { delete kept; });
}

void hearInAHandler()
{
    kept = beginSystem().release();
    tellWhatIsLeft();
    std::atexit(
        []
        {
            causeAnEventAndWait(*kept);
            printLine("told");
            delete kept;
        });
}
}

Ways handlers()
{
    const Lines inOrder = {"left: nothing", "the former format"};
    return {
        {"operations_in_handlers", {"3 cards", "all used", "ends", "all used", "all used"}, &useItBeforeAndAfter},
        {"first_system_in_a_handler", Lines{"ends", "3 cards"} + inOrder, &beginInAHandler},
        {"end_of_the_system_in_a_handler", Lines{"3 cards", "ends"} + inOrder, &endInAHandler},
        {"events_in_a_handler", Lines{"3 cards", "ends", "told"} + inOrder, &hearInAHandler},
    };
}
}
