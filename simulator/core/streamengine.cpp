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
    std::unique_lock<Mutex> lock(m_mutex);
    waitForSignals(lock);
}

StreamTime StreamEngine::now() const
{
    const Lock lock(m_mutex);
    return m_driven ? *m_driven : StreamTime(std::chrono::steady_clock::now().time_since_epoch());
}

void StreamEngine::drive()
{
    const StreamTime time = now();
    std::unique_lock<Mutex> lock(m_mutex);
    if (!m_driven)
        m_driven = time;
    waitForSignals(lock);
}

void StreamEngine::signalWith(Signal signal)
{
    std::unique_lock<Mutex> lock(m_mutex);
    m_signal.swap(signal);
    waitForSignals(lock);
}

void StreamEngine::waitForSignals(std::unique_lock<Mutex>& lock)
{
    const auto isHere = [](std::thread::id thread) { return thread == std::this_thread::get_id(); };
    if (std::none_of(m_signalling.begin(), m_signalling.end(), isHere))
        m_hasSignalled.wait(lock, [this] { return m_signalling.empty() || Mutex::otherThreadsAreGone(); });
}

void StreamEngine::advance(StreamTime step)
{
    const StreamTime target = now() + step;
    for (auto due = dueNext(target); !due.empty(); due = dueNext(target))
    {
        for (const auto& stream : due)
            signal(*stream, true);
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
    *m_driven = std::max(*m_driven, next); // a signal may have moved the clock past the end
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
                       if (!running || running->run() != run)
                           return;
                       signal(*running, false);
                       schedule(running, run);
                   });
}

/// The end of a signal, even if it throws.
struct StreamEngine::Signalling
{
    StreamEngine& engine;

    ~Signalling()
    {
        {
            const Lock lock(engine.m_mutex);
            std::vector<std::thread::id>& threads = engine.m_signalling;
            threads.erase(std::find(threads.begin(), threads.end(), std::this_thread::get_id()));
        }
        engine.m_hasSignalled.notify_all();
    }
};

/// Does nothing unless @p byDriver says what moves the clock now.
void StreamEngine::signal(AudioStream& stream, bool byDriver)
{
    Signal own;
    {
        const Lock lock(m_mutex);
        if (m_driven.has_value() != byDriver)
            return;
        own = m_signal;
        m_signalling.push_back(std::this_thread::get_id());
    }
    const Signalling signalling{*this};
    stream.signal(own ? own : Signal(setSystemEvent));
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
