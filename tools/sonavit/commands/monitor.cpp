#include "tools/sonavit/monitor.h"

#include "tools/sonavit/accountrights.h"
#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/text.h"

#include <algorithm>
#include <chrono>

namespace sonavit::program
{
namespace
{
using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds slice(100);

/// Ends the session before the cards go, as the platform's threads may be using their lists.
class SessionEnd
{
public:
    explicit SessionEnd(Session& session) : m_session(session) {}
    ~SessionEnd() { m_session.close(); }
    SessionEnd(const SessionEnd&) = delete;
    SessionEnd& operator=(const SessionEnd&) = delete;

private:
    Session& m_session;
};

/// Watches new endpoints until the requested end, the end of the duration, or the loss of the output.
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
        if (pause.count() <= 0 || context.environment.pause(pause) || monitor.isOutputLost())
            return;
        monitor.watchNewEndpoints();
    }
}
}

void runMonitor(Context& context)
{
    std::vector<Card> cards = readCards();
    reportUnreadable(context, cards);
    const SessionEnd sessionEnd(context.session);
    std::size_t endpoints = 0;
    for (const Card& card : cards)
        endpoints += card.endpoints.size();
    const std::shared_ptr<void> deferral = context.environment.deferEnd();
    const auto monitor =
        std::make_shared<Monitor>(context.environment, context.arguments.isJson, context.session.machineName(), cards);
    monitor->start(cards);
    if (context.environment.isTerminal)
    {
        context.environment.err << "Listening to " << counted(endpoints, "endpoint") << " on "
                                << counted(cards.size(), "card") << "; Ctrl-C ends it.\n";
    }
    if (context.session.simulation() != nullptr)
    {
        if (!context.arguments.isJson && context.session.simulation()->machine().script.empty())
            context.environment.err << "This machine has no events.\n" << std::flush;
        context.session.simulation()->events().playScript();
    }
    waitForEnd(context, *monitor);
    monitor->stop();
    context.session.close(); // first, so that no thread of the platform holds the monitor's last reference
    if (!context.environment.out && context.environment.pause(std::chrono::milliseconds(0)))
        throw Interrupted(); // the reader of the output has gone, and nobody is left to tell
}
}
