#include "simulator/journal.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <ostream>
#include <utility>

namespace sim
{
namespace
{
bool names(const std::string& pattern, const std::string& operation)
{
    if (pattern.empty() || pattern.back() != '*')
        return pattern == operation;
    return operation.compare(0, pattern.size() - 1, pattern, 0, pattern.size() - 1) == 0;
}

template<class Predicate>
JournalEntries narrowed(const JournalEntries& entries, Predicate isWanted)
{
    std::vector<JournalEntry> result;
    std::copy_if(entries.begin(), entries.end(), std::back_inserter(result), isWanted);
    return JournalEntries(std::move(result));
}

template<class Text>
std::vector<std::string> texts(const JournalEntries& entries, Text text)
{
    std::vector<std::string> result;
    result.reserve(entries.size());
    std::transform(entries.begin(), entries.end(), std::back_inserter(result), text);
    return result;
}

std::string ending(const JournalEntry& entry)
{
    if (entry.end == CallEnd::pending)
        return "pending";
    if (entry.end == CallEnd::thrown)
        return "thrown";
    char code[16] = {};
    std::snprintf(code, sizeof code, "0x%08X", static_cast<unsigned>(entry.result));
    return code;
}
}

std::string JournalEntry::call() const
{
    std::string text = operation + "(";
    for (std::size_t index = 0; index < arguments.size(); ++index)
        text.append(index == 0 ? "" : ", ").append(arguments[index]);
    return text + ")";
}

std::string JournalEntry::line() const
{
    return call() + (object.empty() ? "" : " on " + object) + " -> " + ending(*this);
}

JournalEntries::JournalEntries(std::vector<JournalEntry> entries) : m_entries(std::move(entries)) {}

JournalEntries JournalEntries::of(const std::string& operation) const
{
    return narrowed(*this, [&](const JournalEntry& entry) { return names(operation, entry.operation); });
}

JournalEntries JournalEntries::without(const std::string& operation) const
{
    return narrowed(*this, [&](const JournalEntry& entry) { return !names(operation, entry.operation); });
}

JournalEntries JournalEntries::on(const std::string& object) const
{
    return narrowed(*this, [&](const JournalEntry& entry) { return entry.object == object; });
}

JournalEntries JournalEntries::with(const std::string& firstArgument) const
{
    return narrowed(*this, [&](const JournalEntry& entry)
                    { return !entry.arguments.empty() && entry.arguments.front() == firstArgument; });
}

JournalEntries JournalEntries::onThread(std::thread::id thread) const
{
    return narrowed(*this, [&](const JournalEntry& entry) { return entry.thread == thread; });
}

JournalEntries JournalEntries::failed() const
{
    return narrowed(*this,
                    [](const JournalEntry& entry) {
                        return entry.end == CallEnd::thrown || (entry.end == CallEnd::returned && FAILED(entry.result));
                    });
}

std::vector<std::string> JournalEntries::operations() const
{
    return texts(*this, [](const JournalEntry& entry) { return entry.operation; });
}

std::vector<std::string> JournalEntries::calls() const
{
    return texts(*this, [](const JournalEntry& entry) { return entry.call(); });
}

std::vector<std::string> JournalEntries::lines() const
{
    return texts(*this, [](const JournalEntry& entry) { return entry.line(); });
}

bool JournalEntries::empty() const
{
    return m_entries.empty();
}

std::size_t JournalEntries::size() const
{
    return m_entries.size();
}

const JournalEntry& JournalEntries::operator[](std::size_t index) const
{
    return m_entries.at(index);
}

std::vector<JournalEntry>::const_iterator JournalEntries::begin() const
{
    return m_entries.begin();
}

std::vector<JournalEntry>::const_iterator JournalEntries::end() const
{
    return m_entries.end();
}

std::ostream& operator<<(std::ostream& stream, const JournalEntries& entries)
{
    for (const JournalEntry& entry : entries)
        stream << "\n  " << entry.line();
    return stream;
}

void Journal::record(bool on)
{
    m_recording = on;
}

bool Journal::recording() const
{
    return m_recording.load(std::memory_order_relaxed);
}

void Journal::recordReferences(bool on)
{
    m_recordingReferences = on;
}

bool Journal::recordingReferences() const
{
    return m_recordingReferences.load(std::memory_order_relaxed);
}

void Journal::clear()
{
    const std::lock_guard<Mutex> lock(m_mutex);
    m_entries.clear();
    ++m_clearings;
}

JournalEntries Journal::entries() const
{
    const std::lock_guard<Mutex> lock(m_mutex);
    return JournalEntries(m_entries);
}

JournalEntries Journal::of(const std::string& operation) const
{
    return entries().of(operation);
}

std::vector<std::string> Journal::operations() const
{
    return entries().operations();
}

std::size_t Journal::count(const std::string& operation) const
{
    const std::lock_guard<Mutex> lock(m_mutex);
    const auto isWanted = [&](const JournalEntry& entry) { return names(operation, entry.operation); };
    return static_cast<std::size_t>(std::count_if(m_entries.begin(), m_entries.end(), isWanted));
}

std::size_t Journal::size() const
{
    const std::lock_guard<Mutex> lock(m_mutex);
    return m_entries.size();
}

Journal::Place Journal::begin(JournalEntry entry)
{
    entry.thread = std::this_thread::get_id();
    const std::lock_guard<Mutex> lock(m_mutex);
    m_entries.push_back(std::move(entry));
    return {m_clearings, m_entries.size() - 1};
}

void Journal::end(Place place, CallEnd how, HRESULT result)
{
    const std::lock_guard<Mutex> lock(m_mutex);
    if (place.clearings != m_clearings)
        return;
    m_entries[place.index].end = how;
    m_entries[place.index].result = result;
}
}
