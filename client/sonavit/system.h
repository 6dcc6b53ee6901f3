/// @file
/// The sound hardware of this computer.
#pragma once

#include "sonavit/change.h"
#include "sonavit/control.h"
#include "sonavit/export.h"
#include "sonavit/format.h"
#include "sonavit/formathold.h"
#include "sonavit/graph.h"
#include "sonavit/ids.h"
#include "sonavit/levelchange.h"
#include "sonavit/reference.h"
#include "sonavit/result.h"
#include "sonavit/settings.h"
#include "sonavit/snapshot.h"
#include "sonavit/volume.h"

#include <chrono>
#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sonavit
{
inline namespace v1
{
/// What a refresh reads anew.
enum class Depth : int
{
    noted,     ///< what the platform has announced
    everything ///< all of it, whatever was announced
};

/// On which thread subscribers are called.
enum class Delivery : int
{
    thread, ///< on a thread of the System
    poll    ///< on the thread that calls System::poll()
};

/// Receives the changes of a System until its end. Movable; an empty one does nothing. It may outlive its System: after
/// that it is inactive. Any thread may use it, but only one at a time may move it.
class SONAVIT_CLIENT_API Subscription
{
public:
    Subscription() noexcept; ///< of nothing
    Subscription(Subscription&& other) noexcept;
    Subscription& operator=(Subscription&& other) noexcept; ///< ends the former one as the destructor does
    /// Calls stop() and waits for a call under way, unless it runs inside one: do not hold a lock that the callback
    /// takes.
    ~Subscription();

    /// The state that the first Change has as its before(): what the subscriber knows without any call.
    Snapshot initial() const;
    /// Ends the subscription without waiting: no call begins after this has returned, and what waits is dropped.
    void stop() noexcept;
    /// Whether calls may still come.
    bool isActive() const noexcept;
    /// Why it has ended by itself: an exception left the callback and there is no Options::onException.
    std::optional<Problem> lastProblem() const;

private:
    friend class System;
    struct State;
    explicit Subscription(std::shared_ptr<State> state) noexcept;

    std::shared_ptr<State> m_state;
};

/// Keeps the hardware of a card in the snapshots, so that subscribers learn of its changes. Movable; an empty one does
/// nothing. It may outlive its System, and continues when the card goes and comes back. Any thread may use it, but only
/// one at a time may end or move it.
class SONAVIT_CLIENT_API Watch
{
public:
    Watch() noexcept;
    Watch(Watch&& other) noexcept;
    Watch& operator=(Watch&& other) noexcept;
    /// Calls stop().
    ~Watch();

    /// Ends it without waiting; the worker unregisters from the hardware afterwards. A second call does nothing.
    void stop() noexcept;

private:
    friend class System;
    struct State;
    explicit Watch(std::shared_ptr<State> state) noexcept;

    std::shared_ptr<State> m_state;
};

/// The sound hardware of this computer.
///
/// Any thread may use it, with COM in any apartment or without COM: all calls to the platform are made by one worker
/// thread in the multithreaded apartment, which all Systems of a process share. Nothing is asked before the first
/// question. An ordinary account sees everything; only a change of format needs an administrator. It does not choose
/// the default endpoints and does not switch endpoints on or off: for that the platform has no documented operation.
///
/// Reading the newest snapshot costs a short lock and no platform call, whatever the operation. The operations that
/// wait say so; on the thread of a window they can block it for as long as the devices take, often milliseconds, after
/// the computer has woken up seconds.
///
/// Operations report failures as Problem and write nothing anywhere. They throw std::bad_alloc, std::logic_error for a
/// mistake of the caller, and std::system_error if there can be no thread. An operation that waits for the platform
/// does so for at most Options::patience and then returns Problem::Kind::noAnswer. On the worker's thread, where
/// Options::onWorkerStart and Options::wake may run, it returns Problem::Kind::wouldWait. Subscribers may call
/// everything.
///
/// End it on a thread of the program, not in one of its own subscribers, and on Windows not where the lock of the
/// loader is held: in DllMain, as a static object of a DLL, or as a thread_local one. There the destructor may wait in
/// vain, though for no longer than Options::patience and two seconds, and the thread may never end after it. Snapshots
/// and all other values stay valid. In a child process after fork() every operation returns Problem::Kind::ended.
class SONAVIT_CLIENT_API System
{
public:
    struct Options
    {
        Delivery delivery = Delivery::thread;
        /// Called when poll() has something to do, on a thread of the layer; it must not wait. Typical is PostMessage.
        /// It is called again only after a poll(), which does everything that waits; a call may come for which nothing
        /// waits any more.
        std::function<void()> wake = {};
        /// Receives the exceptions that leave subscribers, on their thread; the subscription then goes on.
        std::function<void(std::exception_ptr)> onException = {};
        /// Called on the worker after it has entered its apartment and before its first call to Core Audio; for tests
        /// with a simulated machine on Windows, which register it there. Only that of the System counts that starts the
        /// worker.
        std::function<void()> onWorkerStart = {};
        /// How long an operation waits for the platform. With 0 none waits: the first snapshot() then has no cards,
        /// and what is read comes as changes; what changes something returns Problem::Kind::noAnswer and still happens.
        std::chrono::milliseconds patience = std::chrono::seconds(10);
    };

    System();
    explicit System(Options options);
    /// Ends all subscriptions and watches, puts held formats back and waits for that, at most Options::patience.
    ~System();
    System(const System&) = delete;
    System& operator=(const System&) = delete;

    // --- Reading ---------------------------------------------------------------------------------------------------

    /// The newest state. The first operation registers for events, reads everything and waits for it; after that
    /// snapshot() returns at once. If the platform does not answer, or if the audio service does not run, the snapshot
    /// has no cards, problems() says why, and what can be read later comes as a change.
    Snapshot snapshot() const;
    /// Waits for a state that contains everything that the platform has announced before the call, or everything there
    /// is. A program that asks once and ends uses it in place of snapshot(): Problem::Kind::noAnswer then differs from
    /// a computer without cards.
    Result<Snapshot> refresh(Depth depth = Depth::noted);

    // The same of the newest snapshot.
    std::optional<Endpoint> endpoint(const EndpointId& id) const;
    std::optional<Endpoint> defaultEndpoint(Flow flow, Role role = Role::console) const;
    std::vector<Match> find(std::string_view id) const;
    Result<Reference> refer(const EndpointId& endpoint) const;
    Resolution resolve(const Reference& reference) const;

    // These ask the hardware and wait for it. Problem::Kind::notThere for an endpoint or a card that does not exist; if
    // the platform fails to list all endpoints, the Problem names that call. What a failing call hides from the walk is
    // missing in both lists; the problems of graph() and of a watched card name that call.

    /// The levels in the hardware that act on an endpoint, those next to its jack first.
    Result<std::vector<Control>> controls(const EndpointId& endpoint) const;
    /// The input selectors of a card.
    Result<std::vector<Selector>> selectors(const CardId& card) const;
    /// The hardware of one card, of some, or of all.
    Result<Graph> graph(const CardId& card) const;
    Result<Graph> graph(const std::vector<CardId>& cards) const;
    Result<Graph> graph() const;

    // --- Events ----------------------------------------------------------------------------------------------------

    /// Calls @p subscriber with each change after Subscription::initial(), one call at a time. A subscriber that is
    /// slow gets the changes that it has missed as one. If nothing has been read yet, it waits as snapshot() does.
    /// Throws std::invalid_argument, a std::logic_error, if @p subscriber is empty.
    [[nodiscard]] Subscription subscribe(std::function<void(const Change&)> subscriber);
    /// With Delivery::poll: calls the subscribers on this thread with what waits for them; if nothing waits, waits for
    /// at most @p timeout first. Call it on one thread at a time, and not in a subscriber. Exceptions of subscribers do
    /// not leave it. Throws std::logic_error with Delivery::thread.
    /// @return the number of calls
    std::size_t poll(std::chrono::milliseconds timeout = std::chrono::milliseconds(0));
    /// Reads the controls, selectors and jacks of a card into each snapshot, for as long as the result lives; waits for
    /// the first reading. Problem::Kind::notThere for a card that does not exist; if a failing call may hide it, the
    /// Problem names that call.
    Result<Watch> watch(const CardId& card);

    // --- Changing --------------------------------------------------------------------------------------------------
    // Each waits for the platform and returns what it reports afterwards, which may differ from what was asked for:
    // devices round to their steps. Then snapshot() shows it, too. The token of the result is in the events that
    // follow. A Problem says which call was refused and why; Problem::Kind::notThere stands for an endpoint, card,
    // control, selector or input that does not exist, Kind::ambiguous for a name that fits several. If a failing call
    // may hide what is missing, the Problem names that call.

    /// Problem::Kind::outOfRange, with the range, for decibels outside the range or a channel that does not exist;
    /// Kind::notSupported for an endpoint without volume.
    Result<Volume> setVolume(const EndpointId& endpoint, LevelChange change);
    Result<Volume> setMute(const EndpointId& endpoint, bool isMuted);
    Result<Volume> toggleMute(const EndpointId& endpoint);

    /// Without a channel, a new level is that of each channel; a step keeps the differences between them, and ends
    /// where the first of them reaches an end of its range.
    /// Problem::Kind::outOfRange as for setVolume(); Kind::notSupported for setControlMute() of a control without mute.
    /// @param control its ControlId, the name of its node or of its connector, or a part of one that no other has
    Result<Control> setControl(const EndpointId& endpoint, std::string_view control, LevelChange change);
    Result<Control> setControl(const EndpointId& endpoint, const ControlId& control, LevelChange change);
    Result<Control> setControlMute(const EndpointId& endpoint, std::string_view control, bool isMuted);
    Result<Control> setControlMute(const EndpointId& endpoint, const ControlId& control, bool isMuted);

    /// @param selector its SelectorId, its name, or a part of one that no other selector of the card has
    /// @param input its number, its name, that of its connector, or a part of one that no other has
    Result<Selector> select(const CardId& card, std::string_view selector, std::string_view input);
    /// The same among the selectors of all cards.
    Result<Selector> select(std::string_view selector, std::string_view input);

    /// Sets a device format for as long as the result lives. Only administrators may; Problem::code() is E_ACCESSDENIED
    /// otherwise, unless the endpoint has that format already: then nothing is written. The platform does not say
    /// whether the device can do it. A format that cannot be read is not changed: Problem::Kind::notSupported.
    /// Kind::outOfRange for a format that no device can have.
    Result<FormatHold> holdFormat(const EndpointId& endpoint, const Format& format);

    /// All levels, mutes, hardware controls and selections now.
    Result<Settings> settings() const;
    /// Puts them back; endpoints are found by their references. Settings that cannot be restored are in the report and
    /// keep nothing else from being restored.
    /// A Problem instead of a report only if nothing could be tried, as without an answer of the platform.
    Result<RestoreReport> restore(const Settings& settings);

private:
    friend struct SystemAccess;
    struct State;
    std::shared_ptr<State> m_state;
};
}
}
