// Events of the platform on cards that follow them.
#include "libSonavit/soundcard.h"
#include "libSonavit/soundcardobserver.h"
#include "simulator/core/answeringscope.h"
#include "tests/faults/memory/librarytexts.h"
#include "tests/faults/memory/subject.h"

namespace faults::memory
{
namespace
{
class CountingObserver final : public SoundCardObserver
{
public:
    void onDeviceStateChanged() override { ++calls; }
    void onDeviceAdded() override { ++calls; }
    void onDeviceRemoved() override { ++calls; }

    unsigned int calls = 0;
};

/// Cards with an observer on each side, and the first endpoint of the machine. Events come on this thread, so what a
/// card throws leaves the operation that causes them.
class Followed : public Subject
{
public:
    explicit Followed(sim::Simulation& simulation)
        : m_cards(SoundCard::enumerateSystemSoundDevices()),
          m_simulation(simulation)
    {
        simulation.deliverAtOnce(true);
        const sim::Machine machine = simulation.machine();
        m_id = machine.endpoints.empty() ? std::string() : machine.endpoints[0].id;
        for (unsigned int i = 0; i < m_cards.size(); ++i)
        {
            m_cards[i].registerPlaybackObserver(BorrowedPointer<SoundCardObserver>(&m_observer));
            m_cards[i].registerRecordObserver(BorrowedPointer<SoundCardObserver>(&m_observer));
        }
    }

    std::string answer() override { return textOf(m_cards); }

protected:
    /// @p event is the machine's work; what the cards do in it is not.
    template<class Event>
    void cause(const Event& event)
    {
        const sim::AnsweringScope machine(true);
        if (!m_id.empty())
            event(m_simulation.events(), m_id);
    }

private:
    CountingObserver m_observer; // outlives the cards
    qor::Array<SoundCard> m_cards;
    sim::Simulation& m_simulation;
    std::string m_id;
};

class RemovalAndAddition final : public Followed
{
public:
    using Followed::Followed;

    void work() override
    {
        cause([](sim::Events& events, const std::string& id) { events.remove(id); });
        cause([](sim::Events& events, const std::string& id) { events.add(id); });
    }
};

class ChangesOfState final : public Followed
{
public:
    using Followed::Followed;

    void work() override
    {
        cause([](sim::Events& events, const std::string& id) { events.setState(id, DEVICE_STATE_DISABLED); });
        cause([](sim::Events& events, const std::string& id) { events.setState(id, DEVICE_STATE_UNPLUGGED); });
        cause([](sim::Events& events, const std::string& id) { events.setState(id, DEVICE_STATE_ACTIVE); });
    }
};

class FurtherEvents final : public Followed
{
public:
    using Followed::Followed;

    /// A card of endpoints without a path takes an unknown endpoint for its own until its removal is announced, which
    /// may have failed the time before.
    void work() override
    {
        cause([](sim::Events& events, const std::string&) { events.announceRemoved("unknown"); });
        cause([](sim::Events& events, const std::string&) { events.announceAdded("unknown"); });
        cause([](sim::Events& events, const std::string&) { events.announceRemoved("unknown"); });
        cause([](sim::Events& events, const std::string& id) { events.announceState(id, DEVICE_STATE_ACTIVE); });
        cause([](sim::Events& events, const std::string& id) { events.announceDefault(eRender, eConsole, id); });
    }
};

/// Two cards made by a caller: their updaters, registrations and observers.
class CardsByHand final : public Subject
{
public:
    explicit CardsByHand(sim::Simulation&) {}

    void work() override
    {
        SoundCard first;
        SoundCard second(first);
        second.registerPlaybackObserver(BorrowedPointer<SoundCardObserver>(&m_observer));
        first = SoundCard();
        m_isSame = first == second;
    }

    std::string answer() override { return std::to_string(m_isSame); }

private:
    CountingObserver m_observer;
    bool m_isSame = false;
};
}

std::vector<Case> eventCases()
{
    return {caseOf<RemovalAndAddition>("events: removed and added"), caseOf<ChangesOfState>("events: states"),
            caseOf<FurtherEvents>("events: announcements"), caseOf<CardsByHand>("SoundCard, made and copied")};
}
}
