/// @file
/// The calls of clients that are running, and what clients did in them that is forbidden there.
#pragma once

#include "simulator/mutex.h"
#include "simulator/violation.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace sim
{
class CallbackScope;

/// The callbacks of one machine. Any thread may call any operation.
class Callbacks
{
public:
    using Handler = std::function<void(const Violation&)>;

    Callbacks() = default;
    Callbacks(const Callbacks&) = delete;
    Callbacks& operator=(const Callbacks&) = delete;

    /// Whether a client is being called on any thread. Costs next to nothing.
    bool areRunning() const { return m_running.load(std::memory_order_relaxed) > 0; }

    /// The innermost callback on this thread; null outside callbacks.
    const CallbackScope* here() const;
    /// The number of that callback; 0 outside callbacks.
    std::uint64_t numberHere() const;
    /// The text of the callback that runs on one of @p threads; empty if there is none any more.
    std::string textOn(const std::vector<std::thread::id>& threads) const;

    /// Keeps @p violation and passes it to the handler, if there is one.
    void report(const Violation& violation);
    std::vector<Violation> violations() const;
    void onViolation(Handler handler);

    /// How long an unregistration may wait for a callback.
    void setPatience(std::chrono::milliseconds patience);
    std::chrono::milliseconds patience() const;

private:
    friend class CallbackScope;

    std::atomic<unsigned> m_running{0};
    mutable Mutex m_mutex;
    std::vector<const CallbackScope*> m_scopes;
    std::vector<Violation> m_violations;
    Handler m_handler;
    std::chrono::milliseconds m_patience{5000};
};

/// One call of a client; on the stack of its thread for as long as the call lasts.
class CallbackScope
{
public:
    CallbackScope(Callbacks& owner, const char* operation, const std::string& object,
                  const std::vector<std::string>& arguments);
    ~CallbackScope();
    CallbackScope(const CallbackScope&) = delete;
    CallbackScope& operator=(const CallbackScope&) = delete;

    const std::string& text() const { return m_text; }

    /// Whether the client may release the last reference on an object of the device @p deviceId that was made in the
    /// callback with the number @p madeIn.
    bool allowsLastRelease(std::uint64_t madeIn, const std::string& deviceId) const;

private:
    friend class Callbacks;

    const CallbackScope* outer() const;

    Callbacks& m_owner;
    const CallbackScope* const m_previous; ///< on this thread, of any machine
    const std::thread::id m_thread;
    const std::uint64_t m_number;
    const std::string m_text;
    const std::string m_removed; ///< the endpoint whose removal is notified; otherwise empty
};
}
