/// @file
/// One stream without sound: its buffer, its position and its periods as functions of the time.
#pragma once

#include "simulator/core/sampleformat.h"
#include "simulator/mutex.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace sim
{
/// Time since the epoch of std::chrono::steady_clock.
using StreamTime = std::chrono::nanoseconds;

/// What IAudioClient::Initialize has agreed on.
struct StreamPlan
{
    bool captures = false; ///< recorded or looped back, otherwise rendered
    bool isExclusive = false;
    bool usesEvents = false;
    SampleFormat format;
    std::uint32_t bufferFrames = 0;
    std::uint32_t periodFrames = 0;

    /// Whether each pass handles the whole buffer: GetBuffer takes no other size.
    bool handlesWholeBuffers() const { return isExclusive && usesEvents; }
};

/// A packet of a capture stream.
struct StreamPacket
{
    BYTE* data = nullptr;
    std::uint32_t frames = 0;
    DWORD flags = 0;
    std::uint64_t position = 0; ///< frames of the stream before it
    StreamTime time = {};       ///< of its first frame
};

/// A rendered frame is swallowed when its time has come; a captured one is silent. While the stream runs, a render
/// stream plays what its buffer contains, and its position stops when the buffer is empty. Thread-safe. The results are
/// those of the platform's operations of the same purpose.
class AudioStream
{
public:
    AudioStream(const StreamPlan& plan, std::shared_ptr<void> lease);

    const StreamPlan& plan() const { return m_plan; }

    HRESULT start(StreamTime now);
    /// Waits until the signal that runs has returned, because the client may close the event after that; in a signal of
    /// this stream it does not.
    HRESULT stop(StreamTime now);
    HRESULT reset();
    bool isRunning() const;
    /// How often it was started.
    unsigned run() const;

    /// Frames that are written and not played, or captured and not read.
    std::uint32_t padding(StreamTime now);
    /// Frames played or captured since the last reset.
    std::uint64_t position(StreamTime now);

    HRESULT takeBuffer(StreamTime now, std::uint32_t frames, BYTE*& data);
    HRESULT releaseBuffer(std::uint32_t frames, DWORD flags);

    HRESULT takePacket(StreamTime now, StreamPacket& packet);
    HRESULT releasePacket(std::uint32_t frames);
    /// Frames of the next packet; 0 if none is complete.
    std::uint32_t nextPacket(StreamTime now);

    /// Calls @p action with the level of each channel, under a lock; returns what it returns.
    template<class Action>
    HRESULT withLevels(const Action& action)
    {
        const std::lock_guard<Mutex> lock(m_mutex);
        return action(m_levels);
    }

    HRESULT setEvent(HANDLE event);
    /// The first end of a period after @p time; no value unless the stream runs and has an event.
    std::optional<StreamTime> nextPeriod(StreamTime time) const;
    /// Calls @p signal with the event if the stream runs, without a lock.
    void signal(const std::function<void(HANDLE)>& signal);

private:
    struct Signalling;

    std::uint64_t framesRun(StreamTime now) const;
    std::uint64_t update(StreamTime now);
    std::uint32_t packetFrames() const;
    std::uint64_t capacity() const;
    std::uint64_t readable(StreamTime now);

    const StreamPlan m_plan;
    const std::shared_ptr<void> m_lease; ///< the stream's place at the endpoint
    mutable Mutex m_mutex;
    std::condition_variable_any m_hasSignalled;
    std::vector<std::thread::id> m_signalling; ///< the threads that signal the event, once for each signal
    std::vector<BYTE> m_data;
    std::vector<float> m_levels; ///< 0 to 1
    HANDLE m_event = nullptr;
    bool m_isRunning = false;
    unsigned m_run = 0;
    StreamTime m_startedAt = {};
    std::uint64_t m_runBefore = 0; ///< frames of earlier runs since the last reset
    std::uint64_t m_seen = 0;      ///< frames that update() has dealt with
    StreamTime m_seenAt = {};      ///< the time at which that many frames had run
    std::uint64_t m_done = 0;      ///< played, or read by the client
    std::uint64_t m_written = 0;
    std::optional<std::uint32_t> m_taken; ///< frames of the buffer or packet that the client has
    bool m_hasGap = false;
};

/// The time that @p frames take at @p rate, rounded up.
StreamTime durationOf(std::uint64_t frames, std::uint32_t rate);
/// The frames that begin in @p time at @p rate.
std::uint64_t framesIn(StreamTime time, std::uint32_t rate);
/// A time in the unit of counter positions, 100 nanoseconds.
inline UINT64 counterUnits(StreamTime time)
{
    return static_cast<UINT64>(time.count()) / 100;
}
}
