#pragma once

#include "libSonavit/endpointdeviceenumerator.h"
#include "tools/sonavit/endpoint.h"
#include "tools/sonavit/monitorevent.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace sonavit
{
/// Hears of what happens to cards and endpoints and shows it.
///
/// The library tells that something happened, not what, and tells it on the platform's threads, where its cards' lists
/// may be changing: so the monitor asks the system itself and compares with what was before. All that the platform's
/// threads touch here is behind one lock, which is never held while something is registered or unregistered.
class Monitor : public std::enable_shared_from_this<Monitor>
{
public:
    /// Takes down how things are. @p cards is not touched any more afterwards.
    Monitor(const Environment& environment, bool isJson, std::optional<std::string> machine,
            const std::vector<Card>& cards);
    ~Monitor();

    /// Registers with the cards and with the volume of each endpoint. The cards must not be touched from now on until
    /// the platform tells nobody any more.
    void start(std::vector<Card>& cards);

    /// Registers with the volume of endpoints that have come since. Belongs to the thread that started.
    void lookAfterNewcomers();

    /// Shows nothing any more, and takes the volume registrations back. Belongs to the thread that started.
    void stop();

    /// On a thread of the platform: endpoints of @p flow on a card have changed.
    void endpointsChanged(std::size_t card, EDataFlow flow);

    /// On a thread of the platform: the volume that is watched as number @p watch has changed.
    void volumeChanged(std::size_t watch);

    /// On a thread of the platform: something has happened to some endpoint.
    void systemChanged();

    /// On a thread of the platform: another endpoint is a default now; an empty id stands for none.
    void defaultChanged(EDataFlow flow, ERole role, const std::string& endpointId);

private:
    struct KnownEndpoint
    {
        EventSubject subject;
        EDataFlow flow;
        std::optional<unsigned> state;
    };

    struct KnownCard
    {
        qor::String path;
        std::string name;
        bool isObserved; ///< by the library's card
        std::vector<KnownEndpoint> endpoints;
    };

    struct Watch;

    void watch(const AudioDevice& device, const EventSubject& subject);
    std::unique_ptr<Watch> retired(const std::string& endpointId);
    void addNewCards(const std::vector<Endpoint>& endpoints);
    void compare(KnownCard& known, EDataFlow flow, const std::vector<Endpoint>& endpoints);
    void report(MonitorEvent::Kind kind, const KnownEndpoint& endpoint, const std::optional<unsigned>& previousState);

    std::mutex m_mutex;
    EventWriter m_writer;
    libSonavit::EndpointDeviceEnumerator m_enumerator; ///< made on the thread that starts, which has COM
    std::vector<KnownCard> m_cards;
    std::vector<std::unique_ptr<Watch>> m_watches; ///< a number is never used again; null for one that is over
    std::vector<EventSubject> m_newcomers;
    IMMNotificationClient* m_systemListener = nullptr; ///< never destroyed
    bool m_isOver = false;
};
}
