/// @file
/// Registered clients: called in the order of their registration, released when they are unregistered.
#pragma once

#include "platform/coreaudio.h"
#include "simulator/mutex.h"

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace sim
{
/// Registrations of one kind of client. A client may be registered several times and is then called as often.
///
/// Each registration holds one reference on its client. No lock is held while a client is called. After remove() has
/// returned, the client is not called any more; only a callback that itself called remove() still runs.
template<class Client>
class Subscriptions
{
public:
    void add(Client* client)
    {
        client->AddRef();
        auto entry = std::make_shared<Entry>();
        entry->client = client;
        const std::lock_guard<Mutex> lock(m_mutex);
        m_entries.push_back(std::move(entry));
    }

    /// Removes the oldest registration of @p client; false if there is none. Waits for its callbacks on other threads,
    /// as long as there are other threads.
    bool remove(Client* client)
    {
        std::unique_lock<Mutex> lock(m_mutex);
        const auto isMine = [&](const auto& entry) { return entry->client == client; };
        const auto found = std::find_if(m_entries.begin(), m_entries.end(), isMine);
        if (found == m_entries.end())
            return false;
        const std::shared_ptr<Entry> entry = *found;
        m_entries.erase(found);
        entry->isActive = false;
        entry->releaseWhenIdle = entry->isRunningHere();
        if (entry->releaseWhenIdle)
            return true; // the last callback to end releases the reference
        m_idle.wait(lock, [&] { return entry->runners.empty() || Mutex::otherThreadsAreGone(); });
        lock.unlock();
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

        bool isRunningHere() const
        {
            return std::find(runners.begin(), runners.end(), std::this_thread::get_id()) != runners.end();
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
        bool isLast = false;
        {
            const std::lock_guard<Mutex> lock(m_mutex);
            entry.runners.erase(std::find(entry.runners.begin(), entry.runners.end(), std::this_thread::get_id()));
            isLast = entry.releaseWhenIdle && entry.runners.empty();
        }
        m_idle.notify_all();
        if (isLast)
            entry.client->Release();
    }

    mutable Mutex m_mutex;
    std::condition_variable_any m_idle;
    std::vector<std::shared_ptr<Entry>> m_entries;
};
}
