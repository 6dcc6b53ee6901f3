// Hot plug.
#include "libSonavit/soundcardupdater.h"
#include "tests/libSonavit/portable/supportnotes.h"
#include "tests/libSonavit/portable/supportoperations.h"
#include "tests/libSonavit/soundcard/supporthotplug.h"

#include <list>

namespace support
{
namespace
{
constexpr unsigned int fewCards = 3; ///< of which the transcripts note observers and lists, and ask the updaters

class NotingObserver final : public SoundCardObserver
{
public:
    NotingObserver(Transcript& transcript, std::string name) : m_transcript(transcript), m_name(std::move(name)) {}

    void onDeviceStateChanged() override { m_transcript.note(m_name + " changed its state"); }
    void onDeviceAdded() override { m_transcript.note(m_name + " has one more"); }
    void onDeviceRemoved() override { m_transcript.note(m_name + " has one less"); }

private:
    Transcript& m_transcript;
    std::string m_name;
};

class ObservedCards
{
public:
    explicit ObservedCards(Transcript& transcript)
        : m_transcript(transcript),
          m_cards(SoundCard::enumerateSystemSoundDevices())
    {
        for (unsigned int i = 0; i < m_cards.size(); ++i)
        {
            m_cards[i].registerPlaybackObserver(observer("playback " + std::to_string(i)));
            m_cards[i].registerRecordObserver(observer("record " + std::to_string(i)));
        }
    }

    void noteLists() const
    {
        for (unsigned int i = 0; i < m_cards.size() && i < fewCards; ++i)
        {
            noteIds(*m_cards[i].m_playbackDevices);
            noteIds(*m_cards[i].m_recordDevices);
        }
    }

    /// What the updaters themselves answer about @p id.
    void askUpdaters(const std::string& id)
    {
        const IdText text(id);
        for (unsigned int i = 0; i < m_cards.size() && i < fewCards; ++i)
        {
            SoundCard::SoundCardDeviceUpdater& updater = *m_cards[i].m_updater;
            noteAnswer([&] { return updater.OnDeviceStateChanged(text, DEVICE_STATE_ACTIVE); });
            noteAnswer([&] { return updater.OnDeviceRemoved(text); });
            noteAnswer([&] { return updater.OnDeviceRemoved(text); });
            noteAnswer([&] { return updater.OnDeviceStateChanged(text, DEVICE_STATE_UNPLUGGED); });
            noteAnswer([&] { return updater.OnDeviceAdded(text); });
            noteAnswer([&] { return updater.OnDefaultDeviceChanged(eRender, eConsole, text); });
            noteAnswer([&] { return updater.OnPropertyValueChanged(text, sim::keys::deviceDescription); });
        }
    }

private:
    BorrowedPointer<SoundCardObserver> observer(const std::string& name)
    {
        m_observers.emplace_back(m_transcript, name);
        return BorrowedPointer<SoundCardObserver>(&m_observers.back());
    }

    void noteIds(const qor::Array<AudioDevice>& devices) const
    {
        std::string ids = "list of " + std::to_string(devices.capacity()) + ":";
        for (unsigned int i = 0; i < devices.size(); ++i)
            ids += " " + devices[i].m_properties.deviceId.toUtf8() + "/" +
                   std::to_string(devices[i].m_properties.deviceState);
        m_transcript.note(ids);
    }

    template<class Call>
    void noteAnswer(const Call& call)
    {
        noteThrown(m_transcript, [&] { m_transcript.note("answer " + std::to_string(call())); });
    }

    Transcript& m_transcript;
    std::list<NotingObserver> m_observers; // outlive the updaters' last event
    qor::Array<SoundCard> m_cards;
};

/// The first endpoint, one in the middle, and the last one.
std::vector<sim::Endpoint> someEndpoints(const sim::Machine& machine)
{
    const std::size_t count = machine.endpoints.size();
    std::vector<sim::Endpoint> some;
    for (const std::size_t index : {std::size_t{0}, count / 2, count - 1})
    {
        if (index < count && (some.empty() || some.back().id != machine.endpoints[index].id))
            some.push_back(machine.endpoints[index]);
    }
    return some;
}

void changeEndpoint(sim::Events& events, const sim::Endpoint& endpoint)
{
    events.unplug(endpoint.id);
    events.plug(endpoint.id);
    events.setState(endpoint.id, endpoint.state);
    events.remove(endpoint.id);
    events.add(endpoint.id);
    events.announceAdded(endpoint.id);
    events.announceRemoved(endpoint.id);
    events.setDefault(endpoint.id, eConsole);
    events.setProperty(endpoint.id, sim::keys::deviceDescription, sim::PropertyValue::ofText("Renamed"));
}
}

void followEvents(sim::Simulation& simulation, Transcript& transcript)
{
    ObservedCards cards(transcript);
    transcript.begin();
    for (const sim::Endpoint& endpoint : someEndpoints(simulation.machine()))
    {
        transcript.note("events of " + endpoint.id);
        noteThrown(transcript, [&] { changeEndpoint(simulation.events(), endpoint); });
        cards.noteLists();
        cards.askUpdaters(endpoint.id);
        cards.noteLists();
        transcript.noteCensus();
    }
    simulation.events().announceAdded("unknown");
    simulation.events().announceState("", DEVICE_STATE_ACTIVE);
    simulation.events().announceRemoved("unknown");
    cards.askUpdaters("unknown");
    cards.noteLists();
    transcript.note("the cards go");
}
}
