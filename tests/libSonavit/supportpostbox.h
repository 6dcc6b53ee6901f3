/// Where the window messages of a notification end up.
#pragma once

#include "simulator/simulation.h"

#include <cstddef>
#include <vector>

namespace support
{
#if defined(_WIN32)
/// A window of the test's thread, and that thread's queue, in which messages to a null window end up as well.
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

    /// Where messages are read; null if there is no window to be had.
    HWND window() const { return m_window; }

    /// What was posted to the window, or to none from this thread, since the last call.
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
/// A made-up window; the simulated machine keeps what is posted.
class PostBox
{
public:
    explicit PostBox(const sim::Simulation& simulation) : m_simulation(simulation) {}

    HWND window() const { return reinterpret_cast<HWND>(0x1234); }

    /// What was posted to whatever window since the last call.
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
} // namespace support
