/// @file
/// The journal of a simulated machine: every call that reached it, in order.
#pragma once

#include "platform/coreaudio.h"
#include "simulator/mutex.h"

#include <atomic>
#include <cstdint>
#include <iosfwd>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace sim
{
/// How a call ended.
enum class CallEnd
{
    pending,  ///< it still runs, or an exception of a callback passed through it
    returned, ///< it returned its result
    thrown,   ///< the fault plan made it throw
};

/// One call.
struct JournalEntry
{
    std::string operation;              ///< "IMMDevice::Activate", or a function's name such as "CoCreateInstance"
    std::string object;                 ///< device id, global id of a part, or a short description; functions: empty
    std::vector<std::string> arguments; ///< the in-arguments; interfaces by name, strings as they are, null as "null"
    CallEnd end = CallEnd::pending;
    HRESULT result = S_OK; ///< HRESULT or MMRESULT; 0 for operations without a result
    std::thread::id thread;

    /// "IMMDevice::Activate(IAudioClient, 23)".
    std::string call() const;

    /// "IMMDevice::Activate(IAudioClient, 23) on {0.0.0.00000000}.{…} -> 0x80004002".
    std::string line() const;
};

/// A list of calls, in order, that can be filtered.
class JournalEntries
{
public:
    JournalEntries() = default;
    explicit JournalEntries(std::vector<JournalEntry> entries);

    /// The calls of @p operation; a final '*' matches any ending: "IPart::*".
    JournalEntries of(const std::string& operation) const;
    /// All calls but those of @p operation; '*' as above.
    JournalEntries without(const std::string& operation) const;
    JournalEntries on(const std::string& object) const;
    JournalEntries with(const std::string& firstArgument) const;
    JournalEntries onThread(std::thread::id thread) const;
    /// The calls that returned a failure code or threw.
    JournalEntries failed() const;

    /// One string for each call: the operation; JournalEntry::call(); JournalEntry::line().
    std::vector<std::string> operations() const;
    std::vector<std::string> calls() const;
    std::vector<std::string> lines() const;

    bool empty() const;
    std::size_t size() const;
    const JournalEntry& operator[](std::size_t index) const;
    std::vector<JournalEntry>::const_iterator begin() const;
    std::vector<JournalEntry>::const_iterator end() const;

private:
    std::vector<JournalEntry> m_entries;
};

/// Writes one line for each call; GoogleTest shows failures with it.
std::ostream& operator<<(std::ostream& stream, const JournalEntries& entries);

/// Records calls. Any thread may call any operation.
///
/// An entry is added when its call begins, so a call comes before those that its callbacks make. AddRef, Release and
/// QueryInterface are recorded only after recordReferences(true).
class Journal
{
public:
    /// Whether calls are recorded; on by default. Switch it off to measure time.
    void record(bool on);
    bool recording() const;

    /// Whether the operations of IUnknown are recorded too; off by default.
    void recordReferences(bool on);
    bool recordingReferences() const;

    /// Removes all entries. Calls that are running leave no entry.
    void clear();

    /// A copy of all entries.
    JournalEntries entries() const;
    /// entries().of(@p operation).
    JournalEntries of(const std::string& operation) const;
    /// The operations of all entries.
    std::vector<std::string> operations() const;
    /// How often @p operation was called; '*' as in JournalEntries::of().
    std::size_t count(const std::string& operation) const;
    std::size_t size() const;

    /// The position of a call that has begun.
    struct Place
    {
        std::uint64_t clearings = 0;
        std::size_t index = 0;
    };

    /// For the platform's objects: a call begins, and ends.
    Place begin(JournalEntry entry);
    void end(Place place, CallEnd how, HRESULT result);

private:
    std::atomic<bool> m_recording{true};
    std::atomic<bool> m_recordingReferences{false};
    mutable Mutex m_mutex;
    std::vector<JournalEntry> m_entries;
    std::uint64_t m_clearings = 0;
};
}
