/// Receives the window messages of a notification.
#pragma once

#include "simulator/simulation.h"

#include <cstddef>
#include <vector>

namespace support
{
#if defined(_WIN32)
/// A window of the test's thread, and that thread's queue, which receives messages to a null window, too.
class PostBox
{
public:
    explicit PostBox(const sim::Simulation&)
        : m_window(CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr))
    {
        messages(); // those of earlier tests
    }

    ~PostBox() { DestroyWindow(m_window); }
    PostBox(const PostBox&) = delete;
    PostBox& operator=(const PostBox&) = delete;

    /// The window that receives messages; null if it could not be created.
    HWND window() const { return m_window; }

    /// The messages to the window, or from this thread to none, since the last call.
    std::vector<sim::PostedMessage> messages()
    {
        std::vector<sim::PostedMessage> result;
        MSG message = {};
        while (PeekMessageW(&message, nullptr, volumeChanged, volumeChanged, PM_REMOVE))
            result.push_back({message.hwnd, message.message, message.wParam, message.lParam});
        return result;
    }

private:
    static constexpr UINT volumeChanged = 0x3D1;

    HWND m_window;
};
#else
/// An invented window handle; the simulated machine records the messages.
class PostBox
{
public:
    explicit PostBox(const sim::Simulation& simulation) : m_simulation(simulation) {}

    HWND window() const { return reinterpret_cast<HWND>(0x1234); }

    /// The messages to any window since the last call.
    std::vector<sim::PostedMessage> messages()
    {
        const std::vector<sim::PostedMessage> all = m_simulation.postedMessages();
        const std::vector<sim::PostedMessage> result(all.begin() + static_cast<std::ptrdiff_t>(m_seen), all.end());
        m_seen = all.size();
        return result;
    }

private:
    const sim::Simulation& m_simulation;
    std::size_t m_seen = 0;
};
#endif
}
