/// @file
/// Registered clients: called in the order of their registration.
#pragma once

#include "platform/coreaudio.h"
#include "simulator/mutex.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <iterator>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace sim
{
/// What a registration does with its client's references.
enum class ClientReferences
{
    counted,   ///< it holds one reference
    untouched, ///< none: the client must live until it is unregistered
};

/// Registrations of one kind of client. A client may be registered several times and is then called as often.
///
/// No lock is held while a client is called. After remove() has returned, the client is not called any more, and none
/// of its callbacks runs, except those on the thread that called remove().
template<class Client, ClientReferences references>
class Subscriptions
{
    static constexpr bool isCounted = references == ClientReferences::counted;

public:
    void add(Client* client)
    {
        if constexpr (isCounted)
            client->AddRef();
        auto entry = std::make_shared<Entry>();
        entry->client = client;
        const std::lock_guard<Mutex> lock(m_mutex);
        m_entries.push_back(std::move(entry));
    }

    /// Removes the oldest registration of @p client; false if there is none. Waits for its callbacks on other threads,
    /// as long as there are other threads. If that lasts longer than @p patience, calls @p onLongWait(threads of the
    /// callbacks) and waits on.
    template<class OnLongWait>
    bool remove(Client* client, std::chrono::milliseconds patience, const OnLongWait& onLongWait)
    {
        std::unique_lock<Mutex> lock(m_mutex);
        const auto isMine = [&](const auto& entry) { return entry->client == client; };
        const auto found = std::find_if(m_entries.begin(), m_entries.end(), isMine);
        if (found == m_entries.end())
            return false;
        const std::shared_ptr<Entry> entry = *found;
        m_entries.erase(found);
        entry->isActive = false;
        const auto isIdle = [&] { return entry->runnersElsewhere().empty() || Mutex::otherThreadsAreGone(); };
        if (!m_idle.wait_for(lock, patience, isIdle))
        {
            const std::vector<std::thread::id> runners = entry->runnersElsewhere();
            lock.unlock();
            onLongWait(runners);
            lock.lock();
            m_idle.wait(lock, isIdle);
        }
        if (entry->runnersElsewhere().size() < entry->runners.size())
        {
            entry->releaseWhenIdle = isCounted; // by the last callback to end, which runs on this thread
            return true;
        }
        lock.unlock();
        if constexpr (isCounted)
            client->Release();
        return true;
    }

    std::size_t count() const
    {
        const std::lock_guard<Mutex> lock(m_mutex);
        return m_entries.size();
    }

    /// Calls @p notify with each client that is registered when deliver() is called. An exception of a client passes
    /// through; the remaining clients are then not called.
    template<class Notify>
    void deliver(const Notify& notify)
    {
        for (const std::shared_ptr<Entry>& entry : snapshot())
        {
            if (!enter(*entry))
                continue;
            const Leaving leaving{*this, *entry};
            notify(*entry->client);
        }
    }

private:
    struct Entry
    {
        Client* client = nullptr;
        bool isActive = true;
        bool releaseWhenIdle = false;
        std::vector<std::thread::id> runners;

        std::vector<std::thread::id> runnersElsewhere() const
        {
            std::vector<std::thread::id> others;
            const auto isOther = [](std::thread::id thread) { return thread != std::this_thread::get_id(); };
            std::copy_if(runners.begin(), runners.end(), std::back_inserter(others), isOther);
            return others;
        }
    };

    struct Leaving
    {
        Subscriptions& owner;
        Entry& entry;

        ~Leaving() { owner.leave(entry); }
    };

    std::vector<std::shared_ptr<Entry>> snapshot() const
    {
        const std::lock_guard<Mutex> lock(m_mutex);
        return m_entries;
    }

    bool enter(Entry& entry)
    {
        const std::lock_guard<Mutex> lock(m_mutex);
        if (entry.isActive)
            entry.runners.push_back(std::this_thread::get_id());
        return entry.isActive;
    }

    void leave(Entry& entry)
    {
        [[maybe_unused]] bool isLast = false;
        {
            const std::lock_guard<Mutex> lock(m_mutex);
            entry.runners.erase(std::find(entry.runners.begin(), entry.runners.end(), std::this_thread::get_id()));
            isLast = entry.releaseWhenIdle && entry.runners.empty();
        }
        m_idle.notify_all();
        if constexpr (isCounted)
        {
            if (isLast)
                entry.client->Release();
        }
    }

    mutable Mutex m_mutex;
    std::condition_variable_any m_idle;
    std::vector<std::shared_ptr<Entry>> m_entries;
};
}
