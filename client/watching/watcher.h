/// @file
/// What one System knows of the computer and how it keeps up with it.
#pragma once

#include "client/reading/endpointreading.h"
#include "client/reading/grouping.h"
#include "client/watching/endpointlist.h"
#include "client/watching/hub.h"
#include "client/watching/inbox.h"
#include "client/watching/recentwalk.h"
#include "client/watching/registrations.h"
#include "client/watching/retries.h"
#include "client/watching/watches.h"
#include "client/worker/worker.h"
#include "sonavit/result.h"
#include "sonavit/snapshot.h"
#include "sonavit/system.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sonavit::watching
{
/// Reads the computer for one System, is notified of its changes, and publishes them in the hub.
///
/// It lives on the worker: all operations run there, and so does the release of every platform object. Only
/// the inbox, which contains what was announced, is shared with the platform's threads.
class Watcher final : public worker::Member, public std::enable_shared_from_this<Watcher>
{
public:
    using Clock = worker::Clock;

    Watcher(std::shared_ptr<worker::Worker> worker, std::shared_ptr<Hub> hub);
    ~Watcher() noexcept override;
    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;

    /// Registers for events, reads everything and publishes it, unless it has done so.
    void start();
    /// Runs the actions of atEnd(), ends all registrations and releases everything. Nothing else may be called then.
    void end() noexcept;
    Clock::Time step(Clock::Time now) noexcept override;
    /// The same as end(), at the next turn of the worker: any thread may call it, and it needs no memory.
    void endSoon() noexcept;
    /// After an exception it is not known how far a reading or a change has come: everything is read soon.
    void startAgainLater() noexcept;
    /// Looks soon whether the audio service is still there, if @p problem is one that the service has when it ends.
    void judge(const Problem& problem) noexcept;
    void judge(const std::vector<Problem>& problems) noexcept;

    /// Reads what has been noted, or everything, and publishes it. @return the newest state
    Result<Snapshot> refresh(Depth depth);

    // --- For questions and changes ---------------------------------------------------------------------------------

    const std::shared_ptr<worker::Worker>& worker() const noexcept { return m_worker; }
    const Snapshot& latest() const noexcept { return m_latest; }
    /// Null without the audio service.
    IMMDeviceEnumerator* enumerator() const noexcept { return m_enumerator.get(); }
    /// @p problem as it is, unless it misses something (Problem::Kind::notThere) that an endpoint may have which the
    /// platform fails to list: then that failure.
    Problem orUnlisted(const Problem& problem) const;
    /// The reading of an endpoint of the newest state, with its platform objects; Problem::Kind::notThere.
    Result<reading::EndpointReading*> endpoint(const std::string& operation, const EndpointId& id);
    /// The card of the newest state; Problem::Kind::notThere.
    Result<Card> card(const std::string& operation, const CardId& id) const;
    /// A new walk through the hardware of these cards.
    Result<std::shared_ptr<reading::HardwareWalk>> walk(const std::string& operation, const std::vector<Card>& cards);
    /// A walk through the hardware of one card for questions about it: the last one, if it is recent and nothing was
    /// announced since.
    Result<std::shared_ptr<reading::HardwareWalk>> recentWalk(const std::string& operation, const Card& card);
    /// The next question walks anew.
    void forgetWalk() noexcept { m_recentWalk.release(); }

    /// A number for a change that is about to be made, and the context to hand to the platform with it.
    ChangeToken newToken() noexcept { return ++m_lastToken; }
    GUID contextOf(ChangeToken token) const noexcept { return m_inbox->context().of(token); }
    /// After a change of an endpoint whose reading shows it already: publishes it as a change of this System's, so that
    /// latest() and System::snapshot() have it. With the token 0, what the reading shows is not from this System.
    void publishChange(const EndpointId& endpoint, ChangeToken token);
    /// After a change of a card's hardware: reads the volumes of its endpoints and, if it is watched, its hardware, and
    /// publishes that in the same way.
    void publishHardwareChange(const CardId& card, ChangeToken token);

    /// Watches the hardware of a card, and publishes it. @return the number of the watch
    Result<std::uint64_t> watch(const CardId& id);
    void unwatch(std::uint64_t number) noexcept;

    /// Runs @p action at the end of the System, in reverse order of the calls. @return a number for cancelAtEnd()
    std::uint64_t atEnd(std::function<void()> action);
    void cancelAtEnd(std::uint64_t number);

private:
    /// Who caused what a publication tells.
    struct Authors
    {
        std::map<EndpointId, Cause> volumes;   ///< of changes of volume
        std::map<EndpointId, Cause> endpoints; ///< of all changes of an endpoint that this System has changed
        std::map<CardId, Cause> hardware;
    };

    // watcher.cpp
    void dropObjects() noexcept;
    void ring() const noexcept; ///< lets the worker call step(), whose result may have changed

    // keepingup.cpp: when something is read
    void keepUp(Clock::Time now);
    Clock::Time nextDue() const noexcept;
    void noteRetries(Clock::Time now, bool areAll, Noted& noted);

    // noted.cpp: what is read
    void read(const Noted& noted);
    void readParts(const Noted& noted);
    void letChangesPass();
    void noteCause(const Noted::OfEndpoint& noted);
    void readHardware(const Noted::OfHardware& noted);
    std::vector<EndpointId> readVolumesOf(const CardId& id, const Cause& cause, Authors& authors);
    void readEverything();
    std::optional<std::vector<std::size_t>> readList();
    void keepUnlisted(std::vector<reading::EndpointReading>& listed) const;
    bool readNewOnes();
    std::optional<Flow> readNoted(const Noted::OfEndpoint& noted);
    void readWaveIds(const std::array<bool, 2>& flows);
    bool readDefaults();

    // judging.cpp: what has to be tried again
    void judgeAbsence(const Noted::OfEndpoint& noted);
    void judgeComputer(const Noted& noted);
    void judgeReading(std::size_t index, const std::vector<EndpointProblem>& former,
                      unsigned announced = announcedNothing);
    void judgeHardware();

    // service.cpp: the audio service
    void connect();
    bool registerForEvents();
    void lookForService();
    bool isServiceLost(const std::vector<Problem>& problems);
    void doubtService() noexcept;
    static bool isOfService(const Problem& problem) noexcept;
    void loseService(const Problem& problem);

    // publishing.cpp
    void publishRead();
    Snapshot::Content regrouped();
    Snapshot::Content patched(const std::vector<EndpointId>& changed) const;
    void patch(Snapshot::Content& content, const EndpointId& changed) const;
    Snapshot::Content withoutService() const;
    void publish(Snapshot::Content content, const Authors& authors);
    static void tellCauses(std::vector<Event>& events, const Authors& authors);

    const std::shared_ptr<worker::Worker> m_worker;
    const std::shared_ptr<Hub> m_hub;
    const std::shared_ptr<Inbox> m_inbox;

    reading::Enumerator m_enumerator;
    DeviceRegistration m_registration;
    EndpointList m_endpoints;
    Watches m_watches;
    RecentWalk m_recentWalk;
    std::vector<Problem> m_listProblems;
    std::vector<Problem> m_computerProblems; ///< those of the list, the defaults and the numbers at their last reading
    bool m_isComputerRead = false;           ///< the reading that runs has read one of them
    reading::Defaults m_defaults;
    std::array<reading::WaveIds, 2> m_waveIds; ///< by flow
    reading::Parents m_parents;
    Snapshot m_latest;
    bool m_isStarted = false;
    std::atomic<bool> m_isToEnd{false};

    // What the reading that runs has changed.
    std::vector<EndpointId> m_changed; ///< endpoints that were read, for a publication that keeps the grouping
    bool m_isRegrouping = false;       ///< the cards have to be put together anew
    Authors m_authors;
    std::map<EndpointId, ChangeToken> m_publishedChanges; ///< the last change by us that was published, by endpoint
    std::map<CardId, ChangeToken> m_publishedHardwareChanges;

    Clock::Time m_lastLevels{};
    Retries<EndpointId> m_retries; ///< that of the empty id is for the computer as a whole
    Retries<CardId> m_hardwareRetries;
    Service m_service = Service::running;
    std::optional<Problem> m_serviceProblem;
    bool m_isServiceDoubted = false; ///< an endpoint has answered as it does without the service
    std::optional<Problem> m_registrationProblem;
    Clock::Time m_serviceLostAt{};
    Clock::Time m_serviceDue = Clock::never;
    Clock::Time m_afterFailure = Clock::never; ///< when to go on after an exception

    ChangeToken m_lastToken = 0;
    std::uint64_t m_lastAction = 0;
    std::vector<std::pair<std::uint64_t, std::function<void()>>> m_actions;
};
}
