/// A callback that tests hold, for the tests of those that wait for it.
#pragma once

#include <atomic>
#include <chrono>
#include <thread>

namespace bench
{
/// What a client does in a callback on another thread: it stays inside until it is told to leave, and then takes a
/// little longer, so that a call that does not wait for it is found out. On a busy machine, where a turn takes long, it
/// takes fewer of them, as a simulation waits for some seconds only.
class Visit
{
public:
    /// On the client's thread.
    void stay()
    {
        m_isInside = true;
        while (!m_mayLeave)
            std::this_thread::yield();
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(200);
        for (int turn = 0; turn < 1000 && std::chrono::steady_clock::now() < end; ++turn)
            std::this_thread::yield();
        m_isInside = false;
    }

    void leave() { m_mayLeave = true; }

    bool isInside() const { return m_isInside; }

    void waitUntilInside() const
    {
        while (!m_isInside)
            std::this_thread::yield();
    }

private:
    std::atomic<bool> m_isInside{false};
    std::atomic<bool> m_mayLeave{false};
};
}
