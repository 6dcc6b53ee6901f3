#include "tools/sonavit/monitor.h"

#include "libSonavit/volumechangenotification.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/monitorlisteners.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/text.h"

#include <algorithm>
#include <utility>

namespace sonavit::program
{
namespace
{
EventSubject subjectOf(const std::string& cardId, const std::string& cardName, const Endpoint& endpoint)
{
    const std::string title = endpoint.description.value_or(titleWords(endpoint));
    return {cardId, cardName, endpoint.id, endpoint.name(), title, endpoint.flow};
}

template<class Known>
const Known* find(const std::vector<Known>& endpoints, const std::string& id)
{
    const auto found = std::find_if(endpoints.begin(), endpoints.end(),
                                    [&](const Known& known) { return equalNoCase(known.subject.endpointId, id); });
    return found == endpoints.end() ? nullptr : &*found;
}
}

/// The volume of one endpoint: a device of its own, so that nothing else holds the registration of its controller, and
/// an interface to read from.
struct Monitor::Watch
{
    EventSubject subject;
    AudioDevice device;
    EndpointVolume volume;
    EndpointLevel level;
};

Monitor::Monitor(const Environment& environment, bool isJson, std::optional<std::string> machine,
                 const std::vector<Card>& cards)
    : m_writer(environment, isJson, std::move(machine))
{
    if (!m_enumerator.isInitialized())
        throw OperationFailure("Core Audio cannot be reached");
    for (const Card& card : cards)
    {
        KnownCard known{card.card.deviceId(), card.name, true, {}};
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
        SoundCardObserver& playback = makeCardListener(weak_from_this(), i, eRender);
        SoundCardObserver& record = makeCardListener(weak_from_this(), i, eCapture);
        cards[i].card.registerPlaybackObserver(BorrowedPointer<SoundCardObserver>(&playback));
        cards[i].card.registerRecordObserver(BorrowedPointer<SoundCardObserver>(&record));
    }
    IMMNotificationClient& listener = makeSystemListener(weak_from_this());
    if (FAILED(m_enumerator.enumerator()->RegisterEndpointNotificationCallback(&listener)))
        throw OperationFailure("the system does not report changes of its endpoints");
    m_systemListener = &listener;
}

/// Registers with the volume of @p device, if it has one; an earlier registration ends.
void Monitor::watch(const AudioDevice& device, const EventSubject& subject)
{
    const std::unique_ptr<Watch> before = takeWatch(subject.endpointId);
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
    VolumeListener& listener = makeVolumeListener(weak_from_this(), number);
    const COMPtr<VolumeChangeNotification>::pointer notification(new VolumeChangeNotification);
    notification->setCallbackFunction(VolumeListener::pass, &listener);
    own.volumeControl()->registerVolumeChangeNotification(notification);
}

/// Removes and returns the watch of that endpoint; its destructor unregisters.
std::unique_ptr<Monitor::Watch> Monitor::takeWatch(const std::string& endpointId)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (std::unique_ptr<Watch>& watch : m_watches)
    {
        if (watch != nullptr && equalNoCase(watch->subject.endpointId, endpointId))
            return std::move(watch);
    }
    return nullptr;
}

void Monitor::watchNewEndpoints()
{
    std::vector<EventSubject> subjects;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        subjects.swap(m_newEndpoints);
    }
    for (const EventSubject& subject : subjects)
        watch(AudioDevice(qor::String::fromUtf8(subject.endpointId)), subject);
}

bool Monitor::isOutputLost()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_writer.isOutputLost();
}

void Monitor::stop()
{
    if (m_systemListener != nullptr)
        m_enumerator.enumerator()->UnregisterEndpointNotificationCallback(m_systemListener);
    std::vector<std::unique_ptr<Watch>> watches; // destroyed after the lock is released
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isStopped = true;
    watches.swap(m_watches);
}

void Monitor::endpointsChanged(std::size_t card, EDataFlow flow)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_isStopped)
        compare(m_cards[card], flow, readEndpoints(m_enumerator, flow));
}

/// Cards that were added later have no observer: their changes are found here.
void Monitor::systemChanged()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_isStopped)
        return;
    for (const EDataFlow flow : {eRender, eCapture})
    {
        const std::vector<Endpoint> endpoints = readEndpoints(m_enumerator, flow);
        addNewCards(endpoints);
        for (KnownCard& card : m_cards)
        {
            if (!card.isObserved)
                compare(card, flow, endpoints);
        }
    }
}

void Monitor::addNewCards(const std::vector<Endpoint>& endpoints)
{
    for (const Endpoint& endpoint : endpoints)
    {
        const qor::String& path = endpoint.device.deviceProperty().instancePath;
        const bool isKnown =
            std::any_of(m_cards.begin(), m_cards.end(), [&](const KnownCard& card) { return card.path == path; });
        if (!isKnown)
            m_cards.push_back({path, endpoint.friendlyName.value_or("Unnamed card"), false, {}});
    }
}

/// Reports the differences between the known and the current endpoints of one flow of @p known, and records them.
void Monitor::compare(KnownCard& known, EDataFlow flow, const std::vector<Endpoint>& endpoints)
{
    std::vector<KnownEndpoint> now;
    for (const Endpoint& endpoint : endpoints)
    {
        if (endpoint.device.deviceProperty().instancePath == known.path)
            now.push_back({subjectOf(known.path.toUtf8(), known.name, endpoint), flow, endpoint.state});
    }
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
            m_newEndpoints.push_back(endpoint.subject);
        kept.push_back(endpoint);
    }
    known.endpoints = std::move(kept);
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

void Monitor::defaultChanged(EDataFlow flow, ERole role, const std::string& endpointId)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_isStopped)
        return;
    MonitorEvent event;
    event.kind = MonitorEvent::Kind::defaultChanged;
    event.time = std::chrono::system_clock::now();
    event.flow = flow;
    event.role = role;
    event.subject.endpointId = endpointId;
    for (const KnownCard& card : m_cards)
    {
        const KnownEndpoint* const known = find(card.endpoints, endpointId);
        event.subject = known != nullptr ? known->subject : event.subject;
    }
    m_writer.write(event);
}

void Monitor::volumeChanged(std::size_t watch)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_isStopped || m_watches[watch] == nullptr)
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
