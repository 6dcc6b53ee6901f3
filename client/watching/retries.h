/// @file
/// When to try again what was announced and cannot be read yet.
#pragma once

#include "client/worker/clock.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <map>
#include <vector>

namespace sonavit::watching
{
/// A device may need seconds after it was announced before it answers: each thing that cannot be read is tried again
/// after 0.25, 0.5, 1, 2, 4 and 8 s. Tries that come in between, such as those of a refresh, change nothing of that.
template<class Key>
class Retries
{
public:
    using Time = worker::Clock::Time;

    bool contains(const Key& key) const { return m_plans.count(key) > 0; }
    /// When the next try is due; Clock::never if none is.
    Time due() const noexcept
    {
        Time due = worker::Clock::never;
        for (const auto& [key, plan] : m_plans)
            due = std::min(due, plan.due);
        return due;
    }

    /// @p key was announced at @p now and could not be read: the first pause begins, also if others have passed.
    void begin(const Key& key, Time now) { m_plans[key] = Plan{0, now + pauses.front()}; }
    /// @p key could not be read at @p now. If that was a try which take() has returned, the next pause begins, or the
    /// tries end after the last one. Any other reading leaves the plan as it is.
    void fail(const Key& key, Time now)
    {
        const auto found = m_plans.find(key);
        if (found == m_plans.end() || found->second.due != worker::Clock::never)
            return;
        if (++found->second.pause == pauses.size())
            m_plans.erase(found);
        else
            found->second.due = now + pauses[found->second.pause];
    }
    void succeed(const Key& key) { m_plans.erase(key); }
    void clear() noexcept { m_plans.clear(); }

    /// What is due at @p now, to be tried; succeed() or fail() has to follow.
    std::vector<Key> take(Time now)
    {
        std::vector<Key> keys = all();
        const auto isLater = [&](const Key& key) { return m_plans.at(key).due > now; };
        keys.erase(std::remove_if(keys.begin(), keys.end(), isLater), keys.end());
        for (const Key& key : keys)
            m_plans.at(key).due = worker::Clock::never;
        return keys;
    }
    std::vector<Key> all() const
    {
        std::vector<Key> keys;
        for (const auto& [key, plan] : m_plans)
            keys.push_back(key);
        return keys;
    }
    /// Moves every try that is due after @p time to @p time, and those that take() has returned and that still run.
    void hurry(Time time) noexcept
    {
        for (auto& [key, plan] : m_plans)
            plan.due = std::min(plan.due, time);
    }

private:
    static constexpr std::array<std::chrono::milliseconds, 6> pauses = {
        std::chrono::milliseconds(250),  std::chrono::milliseconds(500),  std::chrono::milliseconds(1000),
        std::chrono::milliseconds(2000), std::chrono::milliseconds(4000), std::chrono::milliseconds(8000)};

    struct Plan
    {
        std::size_t pause = 0;
        Time due = worker::Clock::never; ///< never while it is tried
    };

    std::map<Key, Plan> m_plans;
};
}
