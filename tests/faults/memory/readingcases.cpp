// The client layer: snapshots, events, walks, captures.
#include "tests/faults/memory/clientsubject.h"

#include <chrono>
#include <sstream>

namespace faults::memory
{
using namespace sonavit;

namespace
{
/// The first endpoint that fits; the last resort is one that does not exist.
CardEndpoint choose(const Snapshot& snapshot)
{
    for (const Card& card : snapshot.cards())
    {
        for (const Endpoint& endpoint : card.endpoints())
        {
            if (endpoint.volume())
                return {card, endpoint};
        }
    }
    return {};
}
}

ClientSubject::ClientSubject(sim::Simulation& simulation, System& audio)
    : m_simulation(simulation),
      m_audio(audio),
      m_endpoint(""),
      m_card("")
{
    const CardEndpoint chosen = choose(audio.snapshot());
    m_endpoint = chosen.endpoint.id();
    m_card = chosen.card.id();
}

System::Options polledOptions()
{
    System::Options options;
    options.delivery = Delivery::poll;
    options.patience = std::chrono::seconds(30);
    return options;
}

namespace
{
class FirstSnapshot final : public ClientSubject
{
public:
    using ClientSubject::ClientSubject;

    void work() override
    {
        System::Options options = polledOptions();
        options.patience = std::chrono::milliseconds(300); // a worker without any memory answers nothing
        const System late(options);
        static_cast<void>(late.snapshot());
    }
};

class Refresh final : public ClientSubject
{
public:
    using ClientSubject::ClientSubject;

    void work() override { static_cast<void>(audio().refresh(Depth::everything)); }
};

class EventsOfVolume final : public ClientSubject
{
public:
    using ClientSubject::ClientSubject;

    void work() override
    {
        cause([](sim::Events& events, const std::string& id) { events.setVolume(id, -20.0F, true); });
        static_cast<void>(audio().refresh());
        cause([](sim::Events& events, const std::string& id) { events.setVolume(id, -10.0F, false); });
        static_cast<void>(audio().refresh());
    }
};

class EventsOfEndpoints final : public ClientSubject
{
public:
    using ClientSubject::ClientSubject;

    void work() override
    {
        cause([](sim::Events& events, const std::string& id) { events.remove(id); });
        static_cast<void>(audio().refresh());
        cause([](sim::Events& events, const std::string& id) { events.add(id); });
        cause([](sim::Events& events, const std::string& id) { events.setState(id, sim::stateDisabled); });
        static_cast<void>(audio().refresh());
        cause([](sim::Events& events, const std::string& id) { events.setState(id, sim::stateActive); });
        static_cast<void>(audio().refresh());
    }
};

class Subscribing final : public ClientSubject
{
public:
    using ClientSubject::ClientSubject;

    void work() override
    {
        const Subscription heard =
            audio().subscribe([this](const Change& change) { m_events += change.events().size(); });
        cause([](sim::Events& events, const std::string& id) { events.setVolume(id, -30.0F); });
        static_cast<void>(audio().refresh());
        audio().poll();
        cause([](sim::Events& events, const std::string& id) { events.setVolume(id, -10.0F); });
        static_cast<void>(audio().refresh());
        audio().poll();
    }

private:
    std::size_t m_events = 0;
};

class Questions final : public ClientSubject
{
public:
    using ClientSubject::ClientSubject;

    void work() override
    {
        static_cast<void>(audio().endpoint(endpoint()));
        static_cast<void>(audio().defaultEndpoint(Flow::output));
        static_cast<void>(audio().find("a"));
        const Result<Reference> reference = audio().refer(endpoint());
        if (reference)
            static_cast<void>(audio().resolve(*reference));
        std::ostringstream text;
        text << audio().snapshot();
    }
};

class Walk final : public ClientSubject
{
public:
    using ClientSubject::ClientSubject;

    void work() override
    {
        static_cast<void>(audio().controls(endpoint()));
        static_cast<void>(audio().selectors(card()));
        static_cast<void>(audio().graph(card()));
        static_cast<void>(audio().graph());
    }
};

class WatchOfCard final : public ClientSubject
{
public:
    using ClientSubject::ClientSubject;

    void work() override
    {
        const Result<Watch> watched = audio().watch(card());
        cause([](sim::Events& events, const std::string& id) { events.setVolume(id, -30.0F); });
        cause([](sim::Events& events, const std::string& id) { events.setVolume(id, -10.0F); });
        static_cast<void>(audio().refresh());
    }
};

class Capturing final : public ClientSubject
{
public:
    using ClientSubject::ClientSubject;

    void work() override { static_cast<void>(capture(audio())); }
};

class AnonymousCapturing final : public ClientSubject
{
public:
    using ClientSubject::ClientSubject;

    void work() override
    {
        CaptureOptions options;
        options.isAnonymous = true;
        options.names = {"Speakers"};
        static_cast<void>(capture(audio(), options));
    }
};

class Diagnosing final : public ClientSubject
{
public:
    using ClientSubject::ClientSubject;

    void work() override
    {
        static_cast<void>(diagnose(audio()));
        static_cast<void>(explain(audio(), endpoint()));
    }
};
}

std::vector<ClientCase> readingCases()
{
    return {clientCaseOf<FirstSnapshot>("first snapshot"),
            clientCaseOf<Refresh>("refresh"),
            clientCaseOf<EventsOfVolume>("events of a volume"),
            clientCaseOf<EventsOfEndpoints>("events of an endpoint"),
            clientCaseOf<Subscribing>("subscription"),
            clientCaseOf<Questions>("questions to a snapshot"),
            clientCaseOf<Walk>("controls, selectors, graph"),
            clientCaseOf<WatchOfCard>("watch"),
            clientCaseOf<Capturing>("capture"),
            clientCaseOf<AnonymousCapturing>("anonymous capture"),
            clientCaseOf<Diagnosing>("diagnosis")};
}
}
