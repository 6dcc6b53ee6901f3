#include "tests/fuzz/support/clientrun.h"

#include "simulator/simulation.h"
#include "sonavit/client.h"
#include "tests/fuzz/support/check.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace fuzz
{
namespace
{
using namespace sonavit;

/// The values of an endpoint that do not depend on what has happened before.
Endpoint withoutPast(const Endpoint& endpoint)
{
    Endpoint::Content content = endpoint.content();
    content.incarnation = 0;
    return Endpoint(std::move(content));
}

Snapshot withoutPast(const Snapshot& snapshot)
{
    Snapshot::Content content = snapshot.content();
    content.hardware.clear(); // of watched cards alone
    for (Card& card : content.cards)
    {
        Card::Content changed = card.content();
        for (Endpoint& endpoint : changed.endpoints)
            endpoint = withoutPast(endpoint);
        card = Card(std::move(changed));
    }
    return Snapshot(std::move(content));
}

/// A program that follows all changes.
class Program
{
public:
    explicit Program(sim::Simulation& simulation)
        : m_simulation(simulation),
          m_audio(polled()),
          m_heard(m_audio.subscribe([this](const Change& change) { hear(change); })),
          m_told(m_heard.initial())
    {
    }

    void run(const std::vector<Step>& steps)
    {
        for (const Step& step : steps)
            take(step);
    }

    /// Nothing that was announced is left out, and each change has led from one snapshot to the next.
    void checkEnd()
    {
        m_holds.clear();
        m_watches.clear();
        m_simulation.events().waitForClients();
        const bool isAllAsked = m_wasServiceStopped || keepsNames();
        check(static_cast<bool>(m_audio.refresh(isAllAsked ? Depth::everything : Depth::noted)),
              "the computer can be read");
        const Snapshot last = m_audio.snapshot();
        while (m_audio.poll() > 0)
        {
        }
        check(m_told == last, "the subscriber was told every change");
        const System fresh;
        check(withoutPast(fresh.snapshot()) == withoutPast(last), "the last snapshot is the truth");
    }

private:
    static System::Options polled()
    {
        System::Options options;
        options.delivery = Delivery::poll;
        return options;
    }

    /// Whether the names of an endpoint that goes are out of reach: the snapshot keeps those it has.
    bool keepsNames() const { return m_simulation.machine().notPresentNames == sim::NotPresentNames::failing; }

    void hear(const Change& change)
    {
        check(change.before() == m_told, "a change begins where the last one ended");
        check(sonavit::apply(m_told, change.events()) == change.after(), "the events lead to the snapshot afterwards");
        check(difference(m_told, change.after()).empty() == change.events().empty(), "there are events if it differs");
        m_told = change.after();
    }

    void take(const Step& step)
    {
        if (step.kind == Step::Kind::event)
        {
            m_wasServiceStopped = m_wasServiceStopped || step.event.kind == sim::ScriptEvent::Kind::serviceStop;
            m_simulation.events().play(step.event);
            return;
        }
        const std::vector<Endpoint> endpoints = m_audio.snapshot().endpoints();
        if (endpoints.empty())
            return;
        use(step, endpoints[step.endpoint % endpoints.size()]);
    }

    /// Whatever the platform answers, it is a value or a problem with a sentence.
    template<class T>
    void checkResult(const Result<T>& result)
    {
        check(result || isOneLine(result.problem().sentence()), "a problem is one sentence");
    }

    void use(const Step& step, const Endpoint& endpoint)
    {
        const EndpointId& id = endpoint.id();
        switch (step.kind)
        {
        case Step::Kind::event:
            break;
        case Step::Kind::setVolume:
            setVolume(id, step.number);
            break;
        case Step::Kind::setMute:
            setMute(id, step.number % 2 == 0);
            break;
        case Step::Kind::setControl:
            setControl(id, step.number);
            break;
        case Step::Kind::select:
            select(id, step.number);
            break;
        case Step::Kind::restore:
            restore();
            break;
        case Step::Kind::holdFormat:
            holdFormat(id, step.number);
            break;
        case Step::Kind::watch:
            watch(id);
            break;
        case Step::Kind::refresh:
            checkResult(m_audio.refresh(step.number % 4 == 0 ? Depth::everything : Depth::noted));
            break;
        case Step::Kind::poll:
            m_audio.poll();
            break;
        }
    }

    void setVolume(const EndpointId& id, std::uint8_t number)
    {
        const LevelChange change = number < 128 ? LevelChange(Percent(number)) : LevelChange(Decibels(128.0 - number));
        const Result<Volume> volume = m_audio.setVolume(id, change);
        checkResult(volume);
        const std::optional<Endpoint> now = m_audio.endpoint(id);
        check(!volume || (now && now->volume() == *volume), "the snapshot shows the volume that was set");
    }

    void setMute(const EndpointId& id, bool isMuted)
    {
        const Result<Volume> volume = m_audio.setMute(id, isMuted);
        checkResult(volume);
        check(!volume || !volume->isMuted || *volume->isMuted == isMuted, "the endpoint is muted as it was set");
    }

    void setControl(const EndpointId& id, std::uint8_t number)
    {
        const Result<std::vector<Control>> controls = m_audio.controls(id);
        checkResult(controls);
        if (controls && !controls->empty())
            checkResult(
                m_audio.setControl(id, (*controls)[number % controls->size()].id, LevelChange(Percent(number))));
    }

    void select(const EndpointId& id, std::uint8_t number)
    {
        const std::optional<Card> card = m_audio.snapshot().cardOf(id);
        if (!card)
            return;
        const Result<std::vector<Selector>> selectors = m_audio.selectors(card->id());
        checkResult(selectors);
        if (selectors && !selectors->empty())
            checkResult(m_audio.select(card->id(), selectors->front().id.text(), std::to_string(number % 8)));
    }

    void restore()
    {
        const Result<Settings> settings = m_audio.settings();
        checkResult(settings);
        if (settings)
            checkResult(m_audio.restore(*settings));
    }

    void holdFormat(const EndpointId& id, std::uint8_t number)
    {
        const std::optional<Endpoint> endpoint = m_audio.endpoint(id);
        if (!endpoint || !endpoint->format())
            return;
        Format format = *endpoint->format();
        format.rate = number % 2 == 0 ? 44100 : 96000;
        Result<FormatHold> hold = m_audio.holdFormat(id, format);
        checkResult(hold);
        if (hold)
            m_holds.push_back(std::move(*hold));
    }

    void watch(const EndpointId& id)
    {
        const std::optional<Card> card = m_audio.snapshot().cardOf(id);
        if (!card)
            return;
        Result<Watch> watched = m_audio.watch(card->id());
        checkResult(watched);
        if (watched)
            m_watches.push_back(std::move(*watched));
    }

    sim::Simulation& m_simulation;
    System m_audio;
    Subscription m_heard;
    Snapshot m_told;
    std::vector<Watch> m_watches;
    std::vector<FormatHold> m_holds;
    bool m_wasServiceStopped = false;
};

void checkNothingIsHeld(sim::Simulation& simulation)
{
    simulation.events().waitForClients();
    check(simulation.census().empty(), "the client layer holds nothing of the machine");
    check(simulation.comUnderflows() == 0, "no thread leaves COM too often");
    check(simulation.violations().empty(), "no callback does what Windows forbids");
}
}

sim::Machine checkClient(const sim::Machine& machine, const std::vector<Step>& steps)
{
    sim::Simulation simulation(machine);
    simulation.deliverAtOnce(true);
    simulation.journal().record(false);
    {
        Program program(simulation);
        program.run(steps);
        program.checkEnd();
    }
    checkNothingIsHeld(simulation);
    return simulation.machine();
}

support::Answers clientsAnswers(const sim::Machine& machine)
{
    sim::Simulation simulation(machine);
    simulation.journal().record(false);
    std::optional<support::Answers> answers;
    {
        const System audio;
        answers = support::askAll(audio);
    }
    checkNothingIsHeld(simulation);
    return *answers;
}
}
