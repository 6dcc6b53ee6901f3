#include "tools/sonavit/choice.h"
#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/eventwriter.h"
#include "tools/sonavit/output/text.h"

#include <algorithm>
#include <chrono>
#include <set>
#include <vector>

namespace sonavit::program
{
namespace
{
using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds slice(100);

EventKind kindOf(const Event& event)
{
    switch (event.kind)
    {
    case Event::Kind::endpointAdded:
    case Event::Kind::endpointReappeared:
    case Event::Kind::cardAdded:
        return EventKind::added;
    case Event::Kind::endpointRemoved:
    case Event::Kind::cardRemoved:
        return EventKind::removed;
    case Event::Kind::defaultChanged:
        return EventKind::defaults;
    case Event::Kind::hardwareChanged:
        return EventKind::hardware;
    case Event::Kind::serviceChanged:
        return EventKind::service;
    case Event::Kind::endpointChanged:
        break;
    default:
        return EventKind::other;
    }
    switch (event.field.value_or(EndpointField::problems))
    {
    case EndpointField::state:
        return EventKind::state;
    case EndpointField::volume:
        return EventKind::volume;
    case EndpointField::description:
    case EndpointField::interfaceName:
        return EventKind::name;
    case EndpointField::format:
        return EventKind::format;
    default:
        return EventKind::other;
    }
}

/// Shows the changes that the user wants to see.
class Monitor
{
public:
    Monitor(const Context& context, const Snapshot& start);

    void show(const Change& change);
    bool isOutputLost() const { return m_writer.isOutputLost(); }

private:
    bool isWanted(const Event& event) const;

    const Arguments& m_arguments;
    std::set<EndpointId> m_endpoints; ///< those that the user names; all if there are none
    EventWriter m_writer;
};

Monitor::Monitor(const Context& context, const Snapshot& start)
    : m_arguments(context.arguments),
      m_writer(context.environment, context.arguments.isJson, context.session.machineName())
{
    for (const std::string& name : m_arguments.endpoints)
        m_endpoints.insert(endpointNamed(start, name).endpoint.id());
    for (const Card& card : start.cards())
    {
        for (const Endpoint& endpoint : card.endpoints())
        {
            if (m_endpoints.empty() || m_endpoints.count(endpoint.id()) > 0)
                m_writer.expect(card, endpoint);
        }
    }
}

/// An endpoint that is disabled or gone has no volume any more, which its state says well enough.
bool isVolumeOfState(const Event& event)
{
    return event.kind == Event::Kind::endpointChanged && event.field == EndpointField::volume &&
           event.before->state() != event.after->state() && (!event.before->volume() || !event.after->volume());
}

/// Without a choice of kinds nothing is shown of what only the layer's bookkeeping needs.
bool Monitor::isWanted(const Event& event) const
{
    const EventKind kind = kindOf(event);
    if (m_arguments.eventKinds.empty() && isVolumeOfState(event))
        return false;
    const bool isKind =
        m_arguments.eventKinds.empty() ? kind != EventKind::other : m_arguments.eventKinds.count(kind) > 0;
    if (!isKind || m_endpoints.empty())
        return isKind;
    const auto isNamed = [&](const std::optional<Endpoint>& endpoint)
    { return endpoint && m_endpoints.count(endpoint->id()) > 0; };
    return isNamed(event.before) || isNamed(event.after);
}

void Monitor::show(const Change& change)
{
    for (const Event& event : change.events())
    {
        if (isWanted(event))
            m_writer.write(event, change);
    }
}

/// Shows changes until the requested end, the end of the duration, or the loss of the output.
void listen(const Context& context, const Monitor& monitor)
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
        const bool isOver = pause.count() <= 0 || context.environment.pause(pause) || monitor.isOutputLost();
        if (isOver)
            break;
        context.session.audio().poll();
    }
    static_cast<void>(context.session.audio().refresh()); // what has been announced until now is shown, too
    context.session.audio().poll();
}

/// The hardware of all cards, if the user wants to see its changes: reading it takes long.
std::vector<Watch> watchHardware(const Context& context, const Snapshot& snapshot)
{
    std::vector<Watch> watches;
    if (context.arguments.eventKinds.count(EventKind::hardware) == 0)
        return watches;
    for (const Card& card : snapshot.cards())
    {
        Result<Watch> watch = context.session.audio().watch(card.id());
        if (!watch)
            raise(watch.problem(), "the hardware of " + inQuotes(card.title()) + " cannot be watched");
        watches.push_back(*std::move(watch));
    }
    return watches;
}

/// Throws OperationFailure if the system does not report changes.
void requireEvents(const Snapshot& snapshot)
{
    const std::vector<Problem>& problems = snapshot.problems();
    const auto isOfEvents = [](const Problem& problem)
    { return problem.operation() == "IMMDeviceEnumerator::RegisterEndpointNotificationCallback"; };
    if (std::any_of(problems.begin(), problems.end(), isOfEvents))
        throw OperationFailure("the system does not report changes of its endpoints");
}

void announce(const Context& context, const Snapshot& snapshot)
{
    if (!context.environment.isTerminal)
        return;
    const std::size_t endpoints =
        context.arguments.endpoints.empty() ? snapshot.endpoints().size() : context.arguments.endpoints.size();
    context.environment.err << "Listening to " << counted(endpoints, "endpoint") << " on "
                            << counted(snapshot.cards().size(), "card") << "; Ctrl-C ends it.\n";
}

void playEvents(const Context& context)
{
    sim::Simulation* const simulation = context.session.simulation();
    if (simulation == nullptr)
        return;
    if (!context.arguments.isJson && simulation->machine().script.empty())
        context.environment.err << "This machine has no events.\n" << std::flush;
    simulation->events().playScript();
}
}

void runMonitor(Context& context)
{
    const Snapshot snapshot = readSnapshot(context);
    requireEvents(snapshot);
    reportDenied(context, snapshot.cards());
    const std::vector<Watch> watches = watchHardware(context, snapshot);
    const std::shared_ptr<void> deferral = context.environment.deferEnd();
    Monitor monitor(context, snapshot);
    {
        const Subscription subscription =
            context.session.audio().subscribe([&](const Change& change) { monitor.show(change); });
        announce(context, snapshot);
        playEvents(context);
        listen(context, monitor);
    }
    if (!context.environment.out && context.environment.pause(std::chrono::milliseconds(0)))
        throw Interrupted(); // the reader of the output has gone, and nobody is left to tell
}
}
