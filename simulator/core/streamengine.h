/// @file
/// What the streams of one machine share: the clock, the thread that signals events, places at endpoints, sessions.
#pragma once

#include "simulator/core/audiostream.h"
#include "simulator/core/notifier.h"
#include "simulator/mutex.h"

#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace sim
{
/// The volume that all streams of one session at one endpoint share.
struct SessionVolume
{
    float level = 1.0f;
    bool isMuted = false;
    std::vector<float> channels;
};

/// Thread-safe. Until drive() the clock is the real one, and a thread of the engine signals the events.
class StreamEngine
{
public:
    using Signal = std::function<void(HANDLE)>;

    StreamEngine() = default;
    StreamEngine(const StreamEngine&) = delete;
    StreamEngine& operator=(const StreamEngine&) = delete;

    /// Call it before the first stream. The thread keeps @p owner, which holds this object, alive.
    void prepare(std::weak_ptr<void> owner);
    /// Ends the thread; no event is signalled after that. This, drive() and signalWith() wait until no signal runs,
    /// except in a signal.
    void stop();

    StreamTime now() const;
    /// From now on the clock moves by advance() only.
    void drive();
    bool isDriven() const;
    /// Signals the events of the periods that end meanwhile, in their order, on the calling thread.
    void advance(StreamTime step);
    /// Calls @p signal instead of the system; null: the system again.
    void signalWith(Signal signal);

    /// To be called after each start of a stream.
    void started(const std::shared_ptr<AudioStream>& stream);

    /// A place at the endpoint until the result is destroyed; null if an exclusive stream has it, or if an exclusive
    /// one is asked for and any stream has it.
    std::shared_ptr<void> occupy(const std::string& endpoint, bool isExclusive);

    /// Calls @p action with the session's volume, under a lock.
    template<class Action>
    void withSession(const std::string& session, const Action& action)
    {
        const std::lock_guard<Mutex> lock(m_mutex);
        action(m_sessions[session]);
    }

private:
    struct Places
    {
        Mutex mutex;
        std::map<std::string, int> streams;
        std::map<std::string, int> exclusive;
    };

    struct Signalling;

    void schedule(const std::shared_ptr<AudioStream>& stream, unsigned run);
    void signal(AudioStream& stream, bool byDriver);
    void waitForSignals(std::unique_lock<Mutex>& lock);
    std::vector<std::shared_ptr<AudioStream>> dueNext(StreamTime until);

    mutable Mutex m_mutex;
    Notifier m_timer;
    std::optional<StreamTime> m_driven; ///< the time of a driven clock
    Signal m_signal;
    std::condition_variable_any m_hasSignalled;
    std::vector<std::thread::id> m_signalling;         ///< the threads that signal, once for each signal
    std::vector<std::weak_ptr<AudioStream>> m_streams; ///< those that were started
    std::map<std::string, SessionVolume> m_sessions;
    const std::shared_ptr<Places> m_places = std::make_shared<Places>();
};

/// Sets an event of the system. Off Windows there is none: it does nothing.
void setSystemEvent(HANDLE event);
}
