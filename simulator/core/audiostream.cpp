#include "simulator/core/audiostream.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace sim
{
namespace
{
constexpr std::uint64_t nanosecondsPerSecond = 1000000000;
/// HRESULT_FROM_WIN32(ERROR_INVALID_NAME)
constexpr HRESULT secondEvent = static_cast<HRESULT>(0x8007007Bu);
using Lock = std::lock_guard<Mutex>;
}

StreamTime durationOf(std::uint64_t frames, std::uint32_t rate)
{
    const std::uint64_t seconds = frames / rate;
    const std::uint64_t rest = frames % rate;
    return StreamTime(seconds * nanosecondsPerSecond + (rest * nanosecondsPerSecond + rate - 1) / rate);
}

std::uint64_t framesIn(StreamTime time, std::uint32_t rate)
{
    const auto ticks = static_cast<std::uint64_t>(std::max(time, StreamTime(0)).count());
    return ticks / nanosecondsPerSecond * rate + ticks % nanosecondsPerSecond * rate / nanosecondsPerSecond;
}

AudioStream::AudioStream(const StreamPlan& plan, std::shared_ptr<void> lease)
    : m_plan(plan),
      m_lease(std::move(lease)),
      m_data(std::size_t{plan.bufferFrames} * plan.format.frameBytes()),
      m_levels(plan.format.channels, 1.0f)
{
}

HRESULT AudioStream::start(StreamTime now)
{
    const Lock lock(m_mutex);
    if (m_isRunning)
        return AUDCLNT_E_NOT_STOPPED;
    if (m_plan.usesEvents && m_event == nullptr)
        return AUDCLNT_E_EVENTHANDLE_NOT_SET;
    m_isRunning = true;
    ++m_run;
    m_startedAt = now;
    return S_OK;
}

HRESULT AudioStream::stop(StreamTime now)
{
    std::unique_lock<Mutex> lock(m_mutex);
    const bool wasRunning = m_isRunning;
    if (wasRunning)
        m_runBefore = update(now);
    m_isRunning = false;
    const auto isHere = [](std::thread::id thread) { return thread == std::this_thread::get_id(); };
    if (std::none_of(m_signalling.begin(), m_signalling.end(), isHere))
        m_hasSignalled.wait(lock, [this] { return m_signalling.empty() || Mutex::otherThreadsAreGone(); });
    return wasRunning ? S_OK : S_FALSE;
}

HRESULT AudioStream::reset()
{
    const Lock lock(m_mutex);
    if (m_isRunning)
        return AUDCLNT_E_NOT_STOPPED;
    if (m_taken)
        return AUDCLNT_E_BUFFER_OPERATION_PENDING;
    m_runBefore = m_seen = m_done = m_written = 0;
    m_hasGap = false;
    return S_OK;
}

bool AudioStream::isRunning() const
{
    const Lock lock(m_mutex);
    return m_isRunning;
}

unsigned AudioStream::run() const
{
    const Lock lock(m_mutex);
    return m_run;
}

std::uint32_t AudioStream::padding(StreamTime now)
{
    const Lock lock(m_mutex);
    if (m_plan.captures)
        return static_cast<std::uint32_t>(readable(now));
    update(now);
    return static_cast<std::uint32_t>(m_written - m_done);
}

std::uint64_t AudioStream::position(StreamTime now)
{
    const Lock lock(m_mutex);
    const std::uint64_t run = update(now);
    return m_plan.captures ? run : m_done;
}

HRESULT AudioStream::takeBuffer(StreamTime now, std::uint32_t frames, BYTE*& data)
{
    const Lock lock(m_mutex);
    if (m_taken)
        return AUDCLNT_E_OUT_OF_ORDER;
    if (frames == 0)
        return S_OK;
    if (m_plan.handlesWholeBuffers() && frames != m_plan.bufferFrames)
        return AUDCLNT_E_BUFFER_SIZE_ERROR;
    update(now);
    if (m_written - m_done + frames > capacity())
        return AUDCLNT_E_BUFFER_TOO_LARGE;
    m_taken = frames;
    data = m_data.data();
    return S_OK;
}

HRESULT AudioStream::releaseBuffer(std::uint32_t frames, DWORD flags)
{
    const Lock lock(m_mutex);
    if ((flags & ~DWORD{AUDCLNT_BUFFERFLAGS_SILENT}) != 0)
        return E_INVALIDARG;
    if (frames == 0)
    {
        m_taken.reset();
        return S_OK;
    }
    if (!m_taken)
        return AUDCLNT_E_OUT_OF_ORDER;
    if (frames > *m_taken)
        return AUDCLNT_E_INVALID_SIZE;
    if (m_plan.handlesWholeBuffers() && frames != m_plan.bufferFrames)
        return AUDCLNT_E_BUFFER_SIZE_ERROR;
    m_written += frames;
    m_taken.reset();
    return S_OK;
}

HRESULT AudioStream::takePacket(StreamTime now, StreamPacket& packet)
{
    const Lock lock(m_mutex);
    if (m_taken)
        return AUDCLNT_E_OUT_OF_ORDER;
    if (readable(now) == 0)
        return AUDCLNT_S_BUFFER_EMPTY;
    const BYTE silence = m_plan.format.containerBits == 8 ? 0x80 : 0;
    std::fill(m_data.begin(), m_data.end(), silence); // the client may have written into the packet before
    packet.data = m_data.data();
    packet.frames = packetFrames();
    packet.flags = AUDCLNT_BUFFERFLAGS_SILENT | (m_hasGap ? AUDCLNT_BUFFERFLAGS_DATA_DISCONTINUITY : 0);
    packet.position = m_done;
    packet.time = m_seenAt - durationOf(m_seen - m_done, m_plan.format.rate);
    m_taken = packet.frames;
    return S_OK;
}

HRESULT AudioStream::releasePacket(std::uint32_t frames)
{
    const Lock lock(m_mutex);
    if (frames == 0) // the client gets the same packet again
    {
        m_taken.reset();
        return S_OK;
    }
    if (!m_taken)
        return AUDCLNT_E_OUT_OF_ORDER;
    if (frames != *m_taken)
        return AUDCLNT_E_INVALID_SIZE;
    m_done += frames;
    m_hasGap = false;
    m_taken.reset();
    return S_OK;
}

std::uint32_t AudioStream::nextPacket(StreamTime now)
{
    const Lock lock(m_mutex);
    return readable(now) == 0 ? 0 : packetFrames();
}

HRESULT AudioStream::setEvent(HANDLE event)
{
    const Lock lock(m_mutex);
    if (event == nullptr)
        return E_INVALIDARG;
    if (!m_plan.usesEvents)
        return AUDCLNT_E_EVENTHANDLE_NOT_EXPECTED;
    if (m_event != nullptr)
        return secondEvent;
    m_event = event;
    return S_OK;
}

std::optional<StreamTime> AudioStream::nextPeriod(StreamTime time) const
{
    const Lock lock(m_mutex);
    if (!m_isRunning || m_event == nullptr)
        return std::nullopt;
    const std::uint32_t rate = m_plan.format.rate;
    const std::uint64_t passed = framesIn(time - m_startedAt, rate) / m_plan.periodFrames;
    return m_startedAt + durationOf((passed + 1) * m_plan.periodFrames, rate);
}

/// The end of a signal, even if it throws.
struct AudioStream::Signalling
{
    AudioStream& stream;

    ~Signalling()
    {
        {
            const Lock lock(stream.m_mutex);
            std::vector<std::thread::id>& threads = stream.m_signalling;
            threads.erase(std::find(threads.begin(), threads.end(), std::this_thread::get_id()));
        }
        stream.m_hasSignalled.notify_all();
    }
};

void AudioStream::signal(const std::function<void(HANDLE)>& signal)
{
    std::unique_lock<Mutex> lock(m_mutex);
    if (!m_isRunning || m_event == nullptr)
        return;
    const HANDLE event = m_event;
    m_signalling.push_back(std::this_thread::get_id());
    lock.unlock();
    const Signalling signalling{*this};
    signal(event);
}

std::uint64_t AudioStream::framesRun(StreamTime now) const
{
    return m_runBefore + (m_isRunning ? framesIn(now - m_startedAt, m_plan.format.rate) : 0);
}

/// Plays what is due; returns the frames of time since the last reset.
std::uint64_t AudioStream::update(StreamTime now)
{
    const std::uint64_t run = std::max(framesRun(now), m_seen);
    if (!m_plan.captures)
        m_done += std::min(run - m_seen, m_written - m_done);
    m_seen = run;
    if (m_isRunning)
        m_seenAt = now;
    return run;
}

std::uint32_t AudioStream::packetFrames() const
{
    return m_plan.handlesWholeBuffers() ? m_plan.bufferFrames : m_plan.periodFrames;
}

/// With whole buffers one is played while the client fills the other.
std::uint64_t AudioStream::capacity() const
{
    return std::uint64_t{m_plan.bufferFrames} * (m_plan.handlesWholeBuffers() ? 2 : 1);
}

/// Frames of complete packets. If the client came too late, the oldest packets are lost.
std::uint64_t AudioStream::readable(StreamTime now)
{
    const std::uint64_t packet = packetFrames();
    const std::uint64_t complete = update(now) / packet * packet;
    const std::uint64_t most = std::max(capacity() / packet, std::uint64_t{1}) * packet;
    if (complete - m_done > most && !m_taken)
    {
        m_done = complete - most;
        m_hasGap = true;
    }
    return complete - m_done;
}
}
