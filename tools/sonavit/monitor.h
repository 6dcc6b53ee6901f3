#pragma once

#include "libSonavit/endpointdeviceenumerator.h"
#include "tools/sonavit/endpoint.h"
#include "tools/sonavit/output/eventwriter.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace sonavit::program
{
/// Receives change notifications of cards and endpoints and shows them.
///
/// The library notifies that something changed, not what, on the platform's threads, while the lists of its cards may
/// be changing: so the monitor reads the endpoints itself and compares them with the last known ones. One lock guards
/// all that the platform's threads use here; it is never held during a registration.
class Monitor : public std::enable_shared_from_this<Monitor>
{
public:
    /// Records the current state. @p cards is not used after that. Throws OperationFailure if the system does not give
    /// the monitor an enumerator of its own.
    /// @param machine name of the simulated machine, for JSON
    Monitor(const Environment& environment, bool isJson, std::optional<std::string> machine,
            const std::vector<Card>& cards);
    ~Monitor();

    /// Registers with the cards and with the volume of each endpoint. The caller must not use the cards until the
    /// platform has stopped its notifications. Throws OperationFailure if the system accepts no listener.
    void start(std::vector<Card>& cards);

    /// Registers with the volume of endpoints that were added since. Call it on the thread that called start().
    void watchNewEndpoints();

    /// Whether a line could not be written; no later line is written then.
    bool isOutputLost();

    /// Unregisters from the volumes; nothing is shown after that. Call it on the thread that called start().
    void stop();

    /// On a thread of the platform: endpoints of @p flow on a card have changed.
    void endpointsChanged(std::size_t card, EDataFlow flow);

    /// On a thread of the platform: the volume of watch number @p watch has changed.
    void volumeChanged(std::size_t watch);

    /// On a thread of the platform: some endpoint has changed.
    void systemChanged();

    /// On a thread of the platform: another endpoint is the default now; an empty id means none.
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
        bool isObserved; ///< a card of the library notifies its changes
        std::vector<KnownEndpoint> endpoints;
    };

    struct Watch;

    void watch(const AudioDevice& device, const EventSubject& subject);
    std::unique_ptr<Watch> takeWatch(const std::string& endpointId);
    void addNewCards(const std::vector<Endpoint>& endpoints);
    void compare(KnownCard& known, EDataFlow flow, const std::vector<Endpoint>& endpoints);
    void report(MonitorEvent::Kind kind, const KnownEndpoint& endpoint, const std::optional<unsigned>& previousState);

    std::mutex m_mutex;
    EventWriter m_writer;
    libSonavit::EndpointDeviceEnumerator m_enumerator; ///< created on the thread that calls start(), which has COM
    std::vector<KnownCard> m_cards;
    std::vector<std::unique_ptr<Watch>> m_watches; ///< by their numbers, which are not reused; null after its end
    std::vector<EventSubject> m_newEndpoints;
    IMMNotificationClient* m_systemListener = nullptr; ///< never destroyed
    bool m_isStopped = false;
};
}
