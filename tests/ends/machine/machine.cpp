#include "tests/ends/machine/machine.h"

#include "simulator/machine/builder/machinebuilder.h"
#include "tests/ends/machine/lastwords.h"
#include "tests/ends/machine/preparation.h"

#include <algorithm>

namespace ends
{
namespace
{
constexpr const char* unregisters = "IMMDeviceEnumerator::UnregisterEndpointNotificationCallback";
constexpr const char* leavesCom = "CoUninitialize";
constexpr unsigned cardCount = 3;
constexpr unsigned endpointCount = 6;

sim::Machine threeCards()
{
    sim::MachineBuilder builder("three");
    for (const char* const name : {"First", "Second", "Third"})
    {
        sim::CardBuilder card = builder.card(name);
        card.speaker().hardwareVolume({-96.0f, 0.0f, 1.5f, -30.0f});
        card.microphone();
    }
    return builder.build();
}

/// Strings, lists of parts and clients; whether there is anything else is said in a word.
std::string left()
{
    const sim::Census census = machine().census();
    const long lists = census.references("IPartsList");
    std::string text = "left: " + std::to_string(census.taskBlocks()) + " strings";
    if (lists != 0)
        text += ", " + std::to_string(lists) + " lists of parts";
    if (census.references() != lists)
        text += ", cards";
    if (!census.clients.empty())
        text += ", clients";
    return text;
}

void tell()
{
    for (const std::string& operation : machine().journal().operations())
        if (operation == unregisters || operation == leavesCom)
            printLine(operation.c_str());
#if defined(_WIN32)
    printLine(leavesCom); // the system's own, which calls this, and which the journal does not see
#endif
    printLine(left().c_str());
}
}

sim::Simulation& machine()
{
    static sim::Simulation& only = []() -> sim::Simulation&
    {
        prepareForTheMachine();
        return *new sim::Simulation(threeCards());
    }();
    return only;
}

std::string speakers()
{
    return machine().machine().endpoints.front().id;
}

void tellTheEnd()
{
    machine().journal().clear();
    sayAtTheVeryEnd(&tell);
}

Lines regularEnd(unsigned discoveries, const std::string& more, unsigned readings)
{
    Lines lines(cardCount * std::max(discoveries, 1U), unregisters);
    lines.emplace_back(leavesCom);
    lines.push_back("left: " + std::to_string(endpointCount * 2 * discoveries + readings) + " strings" + more);
    return lines;
}
}
