#include "tools/sonavit/commands.h"
#include "tools/sonavit/monitor.h"
#include "tools/sonavit/text.h"

#include <algorithm>
#include <chrono>

namespace sonavit
{
namespace
{
using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds slice(100);

/// Waits for the end that the user wants, and meanwhile sees to what has come.
void waitForEnd(const Context& context, Monitor& monitor)
{
    const Clock::time_point start = Clock::now();
    for (;;)
    {
        std::chrono::milliseconds pause = slice;
        if (context.arguments.duration)
        {
            const auto passed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
            pause = std::min(slice, *context.arguments.duration - passed);
        }
        if (pause.count() <= 0 || context.environment.pause(pause))
            return;
        monitor.lookAfterNewcomers();
    }
}
}

void runMonitor(Context& context)
{
    std::vector<Card> cards = readCards();
    std::size_t endpoints = 0;
    for (const Card& card : cards)
        endpoints += card.endpoints.size();
    const auto monitor =
        std::make_shared<Monitor>(context.environment, context.arguments.isJson, context.session.machineName(), cards);
    monitor->start(cards);
    if (context.environment.isTerminal)
    {
        context.environment.err << "Listening to " << counted(endpoints, "endpoint") << " on "
                                << counted(cards.size(), "card") << "; Ctrl-C ends it.\n";
    }
    if (context.session.simulation() != nullptr)
        context.session.simulation()->events().playScript();
    waitForEnd(context, *monitor);
    monitor->stop();
    context.session.close(); // while the cards are still there, as the platform's threads may be at work on their lists
}
}
