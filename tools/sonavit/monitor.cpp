#include "tools/sonavit/monitor.h"

#include "libSonavit/volumechangenotification.h"
#include "tools/sonavit/text.h"

#include <algorithm>
#include <utility>

namespace sonavit
{
namespace
{
/// Nothing can be taken off a card, and a call may be under way when a registration ends: so what the platform's
/// threads call lives as long as the process.
template<class Listener>
Listener& keptForGood(std::unique_ptr<Listener> listener)
{
    static std::mutex mutex;
    static auto* const all = new std::vector<std::unique_ptr<Listener>>;
    const std::lock_guard<std::mutex> lock(mutex);
    all->push_back(std::move(listener));
    return *all->back();
}

/// Hears of one side of one card.
class CardListener final : public SoundCardObserver
{
public:
    CardListener(std::weak_ptr<Monitor> monitor, std::size_t card, EDataFlow flow)
        : m_monitor(std::move(monitor)),
          m_card(card),
          m_flow(flow)
    {
    }

    void onDeviceStateChanged() override { pass(); }
    void onDeviceAdded() override { pass(); }
    void onDeviceRemoved() override { pass(); }

private:
    void pass()
    {
        if (const std::shared_ptr<Monitor> monitor = m_monitor.lock())
            monitor->endpointsChanged(m_card, m_flow);
    }

    std::weak_ptr<Monitor> m_monitor;
    std::size_t m_card;
    EDataFlow m_flow;
};

/// Hears of the volume of one endpoint.
struct VolumeListener
{
    std::weak_ptr<Monitor> monitor;
    std::size_t watch;

    static void pass(void* listener)
    {
        const VolumeListener& self = *static_cast<VolumeListener*>(listener);
        if (const std::shared_ptr<Monitor> monitor = self.monitor.lock())
            monitor->volumeChanged(self.watch);
    }
};

EventSubject subjectOf(const std::string& cardId, const std::string& cardName, const Endpoint& endpoint)
{
    const std::string title = endpoint.description.value_or(endpoint.title());
    return {cardId, cardName, endpoint.id, endpoint.name(), title};
}

template<class Known>
const Known* find(const std::vector<Known>& endpoints, const std::string& id)
{
    const auto found = std::find_if(endpoints.begin(), endpoints.end(),
                                    [&](const Known& known) { return equalNoCase(known.subject.endpointId, id); });
    return found == endpoints.end() ? nullptr : &*found;
}
}

/// The volume of one endpoint: a device of our own, whose controller nobody else holds, and an interface to read from.
struct Monitor::Watch
{
    EventSubject subject;
    AudioDevice device;
    EndpointVolume volume;
    EndpointLevel level;
};

Monitor::Monitor(const Environment& environment, bool isJson, const std::vector<Card>& cards)
    : m_writer(environment, isJson)
{
    for (const Card& card : cards)
    {
        KnownCard known{card.card.deviceId(), card.name, {}};
        for (const Endpoint& endpoint : card.endpoints)
        {
            known.endpoints.push_back({subjectOf(card.id, card.name, endpoint), endpoint.flow, endpoint.state});
            m_writer.expect(known.endpoints.back().subject);
        }
        m_cards.push_back(std::move(known));
    }
}

Monitor::~Monitor() = default;

void Monitor::start(std::vector<Card>& cards)
{
    for (std::size_t i = 0; i < cards.size(); ++i)
    {
        for (const Endpoint& endpoint : cards[i].endpoints)
        {
            const AudioDevice own(endpoint.device.deviceProperty().deviceId);
            watch(own, subjectOf(cards[i].id, cards[i].name, endpoint));
        }
        auto& playback = keptForGood(std::make_unique<CardListener>(weak_from_this(), i, eRender));
        auto& record = keptForGood(std::make_unique<CardListener>(weak_from_this(), i, eCapture));
        cards[i].card.registerPlaybackObserver(BorrowedPointer<SoundCardObserver>(&playback));
        cards[i].card.registerRecordObserver(BorrowedPointer<SoundCardObserver>(&record));
    }
}

/// Registers with the volume of @p device, where it has one, in place of an earlier registration.
void Monitor::watch(const AudioDevice& device, const EventSubject& subject)
{
    const std::unique_ptr<Watch> before = retired(subject.endpointId);
    AudioDevice own = device;
    std::optional<EndpointVolume> volume = EndpointVolume::open(own);
    if (!volume)
        return;
    const EndpointLevel level = volume->read();
    std::size_t number = 0;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        number = m_watches.size();
        m_watches.push_back(std::make_unique<Watch>(Watch{subject, own, *volume, level}));
    }
    VolumeListener& listener = keptForGood(std::make_unique<VolumeListener>(VolumeListener{weak_from_this(), number}));
    const COMPtr<VolumeChangeNotification>::pointer notification(new VolumeChangeNotification);
    notification->setCallbackFunction(VolumeListener::pass, &listener);
    own.volumeControl()->registerVolumeChangeNotification(notification);
}

/// The watch of that endpoint, taken out; its end unregisters.
std::unique_ptr<Monitor::Watch> Monitor::retired(const std::string& endpointId)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (std::unique_ptr<Watch>& watch : m_watches)
    {
        if (watch != nullptr && equalNoCase(watch->subject.endpointId, endpointId))
            return std::move(watch);
    }
    return nullptr;
}

void Monitor::lookAfterNewcomers()
{
    std::vector<EventSubject> newcomers;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        newcomers.swap(m_newcomers);
    }
    for (const EventSubject& newcomer : newcomers)
        watch(AudioDevice(qor::String::fromUtf8(newcomer.endpointId)), newcomer);
}

void Monitor::stop()
{
    std::vector<std::unique_ptr<Watch>> watches; // end here, behind the lock
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isOver = true;
    watches.swap(m_watches);
}

void Monitor::endpointsChanged(std::size_t card, EDataFlow flow)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_isOver)
        return;
    KnownCard& known = m_cards[card];
    const std::vector<KnownEndpoint> now = present(known, flow);
    std::vector<KnownEndpoint> kept;
    for (const KnownEndpoint& before : known.endpoints)
    {
        if (before.flow != flow)
            kept.push_back(before);
        else if (find(now, before.subject.endpointId) == nullptr)
            report(MonitorEvent::Kind::removed, before, before.state);
    }
    for (const KnownEndpoint& endpoint : now)
    {
        const KnownEndpoint* const before = find(known.endpoints, endpoint.subject.endpointId);
        if (before == nullptr)
            report(MonitorEvent::Kind::added, endpoint, std::nullopt);
        else if (before->state != endpoint.state)
            report(MonitorEvent::Kind::stateChanged, endpoint, before->state);
        const bool isActive = endpoint.state == std::optional<unsigned>(DEVICE_STATE_ACTIVE);
        if (before == nullptr || (isActive && before->state != endpoint.state))
            m_newcomers.push_back(endpoint.subject);
        kept.push_back(endpoint);
    }
    known.endpoints = std::move(kept);
}

/// The endpoints of one side of a card as the system has them now.
std::vector<Monitor::KnownEndpoint> Monitor::present(const KnownCard& card, EDataFlow flow) const
{
    std::vector<KnownEndpoint> result;
    for (const Endpoint& endpoint : readEndpoints(m_enumerator, flow))
    {
        if (endpoint.device.deviceProperty().instancePath == card.path)
            result.push_back({subjectOf(card.path.toUtf8(), card.name, endpoint), flow, endpoint.state});
    }
    return result;
}

void Monitor::report(MonitorEvent::Kind kind, const KnownEndpoint& endpoint,
                     const std::optional<unsigned>& previousState)
{
    MonitorEvent event;
    event.kind = kind;
    event.time = std::chrono::system_clock::now();
    event.subject = endpoint.subject;
    event.state = endpoint.state;
    event.previousState = previousState;
    m_writer.write(event);
}

void Monitor::volumeChanged(std::size_t watch)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_isOver || m_watches[watch] == nullptr)
        return;
    Watch& watched = *m_watches[watch];
    MonitorEvent event;
    event.kind = MonitorEvent::Kind::volumeChanged;
    event.time = std::chrono::system_clock::now();
    event.subject = watched.subject;
    event.previousLevel = watched.level;
    event.level = watched.volume.read();
    watched.level = event.level;
    m_writer.write(event);
}
}
