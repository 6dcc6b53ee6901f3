/// @file
/// What the platform has announced and the worker has not read yet.
#pragma once

#include "client/watching/causes.h"
#include "client/worker/alarm.h"
#include "client/worker/clock.h"
#include "platform/coreaudio.h"
#include "sonavit/ids.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace sonavit::watching
{
/// What was announced of an endpoint; a set of bits.
enum Announced : unsigned
{
    announcedNothing = 0,
    announcedArrival = 1,   ///< it was added
    announcedRemoval = 2,   ///< it was removed
    announcedState = 4,     ///< its state changed
    announcedAbsence = 8,   ///< its state was not present, or it was removed: even if it is back by now
    announcedProperty = 16, ///< a property changed
    announcedVolume = 32,   ///< its volume changed
    announcedAll = announcedArrival | announcedRemoval | announcedState | announcedProperty | announcedVolume
};

/// One step of what was noted, for the worker.
struct Noted
{
    struct OfEndpoint
    {
        EndpointId id;
        unsigned announced = announcedNothing;
        Cause cause;          ///< of the change of volume
        bool isRetry = false; ///< it was announced earlier, and could not be read then
    };
    struct OfHardware
    {
        std::uint32_t watch = 0;
        Cause cause;
        bool isRetry = false;
    };

    std::vector<OfEndpoint> endpoints;
    std::vector<OfHardware> hardware;
    std::array<bool, 2> defaults = {}; ///< by flow: a default changed
    bool isEverything = false;         ///< more was announced than can be noted
    bool isRetryOfComputer = false;    ///< the list, the defaults or the numbers could not be read earlier

    bool isEmpty() const noexcept
    {
        return endpoints.empty() && hardware.empty() && !defaults[0] && !defaults[1] && !isEverything;
    }
};

/// As if more had been announced than can be noted.
Noted allNoted();

/// Names the changes that one System makes: the platform hands the GUID on with the events that follow.
class EventContexts
{
public:
    EventContexts();
    GUID of(ChangeToken token) const noexcept;
    /// @return the token of a change of this System, 0 for the change of another program
    ChangeToken tokenOf(const GUID* context) const noexcept;

private:
    std::uint64_t m_system;
};

/// The bounded set of what was announced. The platform's threads write into it, from callbacks: that takes no platform
/// call and no memory, and holds one short lock, that of the worker's alarm, which it rings. The worker takes it out.
class Inbox
{
public:
    static constexpr std::size_t capacity = 160;
    static constexpr std::size_t longestId = 112;
    using Clock = worker::Clock;

    Inbox(std::shared_ptr<worker::Alarm> alarm, std::shared_ptr<Clock> clock);

    // For callbacks.
    void noteEndpoint(LPCWSTR id, unsigned announced) noexcept;
    void noteVolume(LPCWSTR id, const GUID* context) noexcept;
    void noteHardware(std::uint32_t watch, const GUID* context) noexcept;
    void noteDefaults(EDataFlow flow) noexcept;

    // For the worker.
    void noteEverything() noexcept;
    const EventContexts& context() const noexcept { return m_context; }
    /// All that is noted, or only what concerns levels.
    Noted take(bool isAll);
    /// Whether another program has changed that volume or that hardware since it was read.
    bool isChangedByOther(const EndpointId& endpoint) const;
    bool isChangedByOther(std::uint32_t watch) const;
    /// When levels have to be read, and the rest; Clock::never if nothing is noted.
    Clock::Time levelsDue(Clock::Time lastReading) const;
    Clock::Time restDue() const;

private:
    /// One endpoint, or the hardware of one watched card. Its tokens are those of the last changes only: who makes a
    /// change publishes it, too, and tells the token then.
    struct Slot
    {
        std::array<WCHAR, longestId> id;
        std::size_t length; ///< of the id; 0 for hardware
        std::uint32_t hash;
        std::uint32_t watch;
        unsigned announced;
        bool isByOther;
        std::array<ChangeToken, 8> tokens;
        std::size_t tokenCount;
    };

    /// Positions in m_slots, by hash: a table with open addresses, so that a burst of notifications for all endpoints
    /// costs each of them the same.
    static constexpr std::size_t buckets = 512;
    static constexpr std::uint8_t noSlot = 0xFF;
    static_assert(capacity < noSlot && 2 * capacity < buckets);

    Slot* slotOf(LPCWSTR id, std::uint32_t watch) noexcept;
    void findBuckets() noexcept;
    void noteLevel(LPCWSTR id, std::uint32_t watch, const GUID* context) noexcept;
    void markRest(Clock::Time now) noexcept;
    static Cause causeOf(const Slot& slot);

    const std::shared_ptr<worker::Alarm> m_alarm;
    const std::shared_ptr<Clock> m_clock;
    const EventContexts m_context;

    // Guarded by the alarm's mutex.
    std::vector<Slot> m_slots; ///< of fixed capacity
    std::array<std::uint8_t, buckets> m_buckets;
    std::array<bool, 2> m_defaults = {};
    bool m_isEverything = false;
    Clock::Time m_firstLevel = Clock::never;
    Clock::Time m_firstOfRest = Clock::never;
    Clock::Time m_lastOfRest = Clock::never;
};
}
