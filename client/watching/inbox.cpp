#include "client/watching/inbox.h"

#include "client/reading/text.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <random>
#include <utility>

namespace sonavit::watching
{
namespace
{
using namespace std::chrono_literals;

constexpr auto levelInterval = 20ms;
constexpr auto quiet = 50ms;
constexpr auto longestWait = 250ms;

std::size_t lengthOf(LPCWSTR id, std::size_t limit) noexcept
{
    std::size_t length = 0;
    while (length < limit && id[length] != 0)
        ++length;
    return length;
}

/// Of a watch, or of an id of @p length units.
std::uint32_t hashOf(std::uint32_t watch, LPCWSTR id, std::size_t length) noexcept
{
    std::uint32_t hash = watch;
    for (std::size_t index = 0; index < length; ++index)
        hash = hash * 31 + id[index];
    return hash ^ hash >> 15;
}
}

Noted allNoted()
{
    Noted noted;
    noted.isEverything = true;
    return noted;
}

Inbox::Inbox(std::shared_ptr<worker::Alarm> alarm, std::shared_ptr<Clock> clock)
    : m_alarm(std::move(alarm)),
      m_clock(std::move(clock))
{
    m_slots.reserve(capacity);
    m_buckets.fill(noSlot);
}

void Inbox::noteEndpoint(LPCWSTR id, unsigned announced) noexcept
{
    const Clock::Time now = m_clock->now();
    std::unique_lock<std::mutex> lock(m_alarm->mutex);
    if (Slot* const slot = slotOf(id, 0))
        slot->announced |= announced;
    markRest(now);
    m_alarm->ring(std::move(lock));
}

void Inbox::noteVolume(LPCWSTR id, const GUID* context) noexcept
{
    noteLevel(id, 0, context);
}

void Inbox::noteHardware(std::uint32_t watch, const GUID* context) noexcept
{
    noteLevel(nullptr, watch, context);
}

void Inbox::noteLevel(LPCWSTR id, std::uint32_t watch, const GUID* context) noexcept
{
    const Clock::Time now = m_clock->now();
    const ChangeToken token = m_context.tokenOf(context);
    std::unique_lock<std::mutex> lock(m_alarm->mutex);
    if (Slot* const slot = slotOf(id, watch))
    {
        slot->announced |= announcedVolume;
        const auto end = slot->tokens.begin() + static_cast<std::ptrdiff_t>(slot->tokenCount);
        if (token == 0)
            slot->isByOther = true;
        else if (std::find(slot->tokens.begin(), end, token) == end && slot->tokenCount < slot->tokens.size())
            slot->tokens[slot->tokenCount++] = token;
        m_firstLevel = std::min(m_firstLevel, now);
    }
    else
    {
        markRest(now);
    }
    m_alarm->ring(std::move(lock));
}

void Inbox::noteDefaults(EDataFlow flow) noexcept
{
    const Clock::Time now = m_clock->now();
    std::unique_lock<std::mutex> lock(m_alarm->mutex);
    m_defaults[0] = m_defaults[0] || flow != eCapture;
    m_defaults[1] = m_defaults[1] || flow != eRender;
    markRest(now);
    m_alarm->ring(std::move(lock));
}

void Inbox::noteEverything() noexcept
{
    const Clock::Time now = m_clock->now();
    std::unique_lock<std::mutex> lock(m_alarm->mutex);
    m_isEverything = true;
    markRest(now);
    m_alarm->ring(std::move(lock));
}

/// The slot of that endpoint or watch, a new one if there is none; null if there is no space, which is noted. The lock
/// is held.
Inbox::Slot* Inbox::slotOf(LPCWSTR id, std::uint32_t watch) noexcept
{
    const std::size_t length = id == nullptr ? 0 : lengthOf(id, longestId);
    const std::uint32_t hash = hashOf(watch, id, length);
    std::size_t bucket = hash % buckets;
    for (; m_buckets[bucket] != noSlot; bucket = (bucket + 1) % buckets)
    {
        Slot& slot = m_slots[m_buckets[bucket]];
        if (slot.hash == hash && slot.length == length && slot.watch == watch &&
            std::equal(slot.id.begin(), slot.id.begin() + static_cast<std::ptrdiff_t>(length), id))
            return &slot;
    }
    const bool isNothing = length == 0 && watch == 0;
    if (isNothing || length == longestId || m_slots.size() == capacity)
    {
        m_isEverything = true;
        return nullptr;
    }
    m_buckets[bucket] = static_cast<std::uint8_t>(m_slots.size());
    Slot& slot = m_slots.emplace_back(); // within the reserved space
    std::copy_n(id, length, slot.id.begin());
    slot.length = length;
    slot.hash = hash;
    slot.watch = watch;
    return &slot;
}

/// After slots have gone. The lock is held.
void Inbox::findBuckets() noexcept
{
    m_buckets.fill(noSlot);
    for (std::size_t index = 0; index < m_slots.size(); ++index)
    {
        std::size_t bucket = m_slots[index].hash % buckets;
        while (m_buckets[bucket] != noSlot)
            bucket = (bucket + 1) % buckets;
        m_buckets[bucket] = static_cast<std::uint8_t>(index);
    }
}

void Inbox::markRest(Clock::Time now) noexcept
{
    m_firstOfRest = std::min(m_firstOfRest, now);
    m_lastOfRest = now;
}

Noted Inbox::take(bool isAll)
{
    std::vector<Slot> taken;
    Noted noted;
    {
        std::unique_lock<std::mutex> lock(m_alarm->mutex);
        while (taken.capacity() < m_slots.size()) // before anything is taken out, and without the lock
        {
            const std::size_t count = m_slots.size();
            lock.unlock();
            taken.reserve(count);
            lock.lock();
        }
        for (Slot& slot : m_slots)
        {
            Slot part = slot;
            if (!isAll)
                part.announced &= announcedVolume;
            slot.announced &= ~part.announced;
            slot.tokenCount = 0;
            slot.isByOther = false;
            if (part.announced != announcedNothing)
                taken.push_back(part);
        }
        const auto isTaken = [](const Slot& slot) { return slot.announced == announcedNothing; };
        m_slots.erase(std::remove_if(m_slots.begin(), m_slots.end(), isTaken), m_slots.end());
        findBuckets();
        m_firstLevel = Clock::never;
        if (isAll)
        {
            noted.defaults = std::exchange(m_defaults, {});
            noted.isEverything = std::exchange(m_isEverything, false);
            m_firstOfRest = Clock::never;
            m_lastOfRest = Clock::never;
        }
    }
    for (const Slot& slot : taken)
    {
        if (slot.length == 0)
            noted.hardware.push_back({slot.watch, causeOf(slot)});
        else
            noted.endpoints.push_back(
                {EndpointId(reading::utf8(slot.id.data(), slot.length)), slot.announced, causeOf(slot)});
    }
    return noted;
}

bool Inbox::isChangedByOther(const EndpointId& endpoint) const
{
    const std::lock_guard<std::mutex> lock(m_alarm->mutex);
    const auto isMeant = [&](const Slot& slot)
    { return slot.isByOther && EndpointId(reading::utf8(slot.id.data(), slot.length)) == endpoint; };
    return std::any_of(m_slots.begin(), m_slots.end(), isMeant);
}

bool Inbox::isChangedByOther(std::uint32_t watch) const
{
    const std::lock_guard<std::mutex> lock(m_alarm->mutex);
    const auto isMeant = [&](const Slot& slot) { return slot.isByOther && slot.length == 0 && slot.watch == watch; };
    return std::any_of(m_slots.begin(), m_slots.end(), isMeant);
}

Cause Inbox::causeOf(const Slot& slot)
{
    Cause cause;
    cause.tokens.assign(slot.tokens.begin(), slot.tokens.begin() + static_cast<std::ptrdiff_t>(slot.tokenCount));
    if (slot.isByOther)
        cause.origin = cause.tokens.empty() ? Origin::other : Origin::both;
    else if (!cause.tokens.empty())
        cause.origin = Origin::own;
    return cause;
}

Inbox::Clock::Time Inbox::levelsDue(Clock::Time lastReading) const
{
    const std::lock_guard<std::mutex> lock(m_alarm->mutex);
    return m_firstLevel == Clock::never ? Clock::never : std::max(m_firstLevel, lastReading + levelInterval);
}

Inbox::Clock::Time Inbox::restDue() const
{
    const std::lock_guard<std::mutex> lock(m_alarm->mutex);
    return m_firstOfRest == Clock::never ? Clock::never : std::min(m_lastOfRest + quiet, m_firstOfRest + longestWait);
}

/// It is unique among the Systems of all processes of the computer with near certainty.
EventContexts::EventContexts()
{
    static std::atomic<std::uint64_t> systems{0};
    std::random_device device;
    const std::uint64_t random = (static_cast<std::uint64_t>(device()) << 32) | device();
    const auto time = static_cast<std::uint64_t>(std::chrono::system_clock::now().time_since_epoch().count());
    m_system = random ^ (time * 0x9E3779B97F4A7C15u) ^ ++systems;
}

GUID EventContexts::of(ChangeToken token) const noexcept
{
    GUID context = {};
    context.Data1 = static_cast<decltype(context.Data1)>(m_system >> 32);
    context.Data2 = static_cast<unsigned short>(m_system >> 16);
    context.Data3 = static_cast<unsigned short>(m_system);
    for (std::size_t index = 0; index < sizeof context.Data4; ++index)
        context.Data4[index] = static_cast<unsigned char>(token >> (8 * index));
    return context;
}

ChangeToken EventContexts::tokenOf(const GUID* context) const noexcept
{
    if (context == nullptr)
        return 0;
    ChangeToken token = 0;
    for (std::size_t index = sizeof context->Data4; index > 0; --index)
        token = (token << 8) | context->Data4[index - 1];
    return *context == of(token) ? token : 0;
}
}
