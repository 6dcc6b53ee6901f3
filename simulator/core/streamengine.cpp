#include "simulator/core/streamengine.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace sim
{
namespace
{
using Lock = std::lock_guard<Mutex>;
}

void StreamEngine::prepare(std::weak_ptr<void> owner)
{
    m_timer.prepare(
        std::move(owner), [] {}, [] {});
}

void StreamEngine::stop()
{
    m_timer.stop();
}

StreamTime StreamEngine::now() const
{
    const Lock lock(m_mutex);
    return m_driven ? *m_driven : StreamTime(std::chrono::steady_clock::now().time_since_epoch());
}

void StreamEngine::drive()
{
    const StreamTime time = now();
    const Lock lock(m_mutex);
    if (!m_driven)
        m_driven = time;
}

void StreamEngine::signalWith(Signal signal)
{
    const Lock lock(m_mutex);
    m_signal = std::move(signal);
}

void StreamEngine::advance(StreamTime step)
{
    const StreamTime target = now() + step;
    for (auto due = dueNext(target); !due.empty(); due = dueNext(target))
    {
        for (const auto& stream : due)
            signal(*stream);
    }
}

/// Moves the driven clock to the next end of a period, but not past @p until; returns the streams whose period it is.
std::vector<std::shared_ptr<AudioStream>> StreamEngine::dueNext(StreamTime until)
{
    const Lock lock(m_mutex);
    StreamTime next = until;
    std::vector<std::shared_ptr<AudioStream>> due;
    for (const auto& weak : m_streams)
    {
        const std::shared_ptr<AudioStream> stream = weak.lock();
        const std::optional<StreamTime> end = stream ? stream->nextPeriod(*m_driven) : std::nullopt;
        if (!end || *end > next)
            continue;
        if (*end < next)
            due.clear();
        next = *end;
        due.push_back(stream);
    }
    *m_driven = next;
    return due;
}

void StreamEngine::started(const std::shared_ptr<AudioStream>& stream)
{
    {
        const Lock lock(m_mutex);
        const auto isGone = [](const std::weak_ptr<AudioStream>& weak) { return weak.expired(); };
        m_streams.erase(std::remove_if(m_streams.begin(), m_streams.end(), isGone), m_streams.end());
        const auto isSame = [&](const std::weak_ptr<AudioStream>& weak) { return weak.lock() == stream; };
        if (std::none_of(m_streams.begin(), m_streams.end(), isSame))
            m_streams.push_back(stream);
    }
    schedule(stream, stream->run());
}

bool StreamEngine::isDriven() const
{
    const Lock lock(m_mutex);
    return m_driven.has_value();
}

/// Queues the signal at the end of the current period, which queues the next one, until that run of the stream ends.
void StreamEngine::schedule(const std::shared_ptr<AudioStream>& stream, unsigned run)
{
    const std::optional<StreamTime> end = stream->nextPeriod(now());
    if (isDriven() || !end)
        return;
    const auto due =
        std::chrono::steady_clock::time_point(std::chrono::duration_cast<std::chrono::steady_clock::duration>(*end));
    m_timer.postAt(due,
                   [this, run, weak = std::weak_ptr<AudioStream>(stream)]
                   {
                       const std::shared_ptr<AudioStream> running = weak.lock();
                       if (!running || running->run() != run || isDriven())
                           return;
                       signal(*running);
                       schedule(running, run);
                   });
}

void StreamEngine::signal(const AudioStream& stream) const
{
    Signal own;
    {
        const Lock lock(m_mutex);
        own = m_signal;
    }
    const bool isSystem = !own;
    stream.signal(isSystem ? Signal(setSystemEvent) : own, isSystem);
}

std::shared_ptr<void> StreamEngine::occupy(const std::string& endpoint, bool isExclusive)
{
    const Lock lock(m_places->mutex);
    if (m_places->exclusive[endpoint] > 0 || (isExclusive && m_places->streams[endpoint] > 0))
        return nullptr;
    ++m_places->streams[endpoint];
    m_places->exclusive[endpoint] += isExclusive ? 1 : 0;
    const auto leave = [places = m_places, endpoint, isExclusive](void*)
    {
        const Lock leaving(places->mutex);
        --places->streams[endpoint];
        places->exclusive[endpoint] -= isExclusive ? 1 : 0;
    };
    return {this, leave};
}
}
