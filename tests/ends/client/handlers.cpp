// Handlers of atexit, which use the layer.

#include "tests/ends/client/ways.h"

#include <cstdlib>

using namespace sonavit;

namespace ends
{
namespace
{
System* systemOfHandlers = nullptr;

/// All kinds of operations; those that diagnose find calls that fail.
void useIt()
{
    const bool isRead =
        systemOfHandlers->refresh(Depth::everything) && systemOfHandlers->graph() && systemOfHandlers->settings();
    const bool isChanged =
        systemOfHandlers->setVolume(speakersId(), Percent(40)) && systemOfHandlers->toggleMute(speakersId());
    const Result<Capture> captured = capture(*systemOfHandlers);
    const auto reasons = explain(*systemOfHandlers, speakersId());
    const auto findings = diagnose(*systemOfHandlers);
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
    systemOfHandlers = beginSystem().release();
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
    systemOfHandlers = beginSystem().release();
    tellWhatIsLeft();
    std::atexit([] { delete systemOfHandlers; });
}

void hearInAHandler()
{
    systemOfHandlers = beginSystem().release();
    tellWhatIsLeft();
    std::atexit(
        []
        {
            causeAnEventAndWait(*systemOfHandlers);
            printLine("told");
            delete systemOfHandlers;
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
