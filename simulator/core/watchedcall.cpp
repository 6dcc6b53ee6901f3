#include "simulator/core/watchedcall.h"

#include "simulator/core/callbacks.h"

#include <cstring>

namespace sim
{
namespace
{
bool startsWith(const char* text, const char* start)
{
    return std::strncmp(text, start, std::strlen(start)) == 0;
}

bool concernsClients(const char* operation)
{
    const char* const name = std::strchr(operation, ':');
    return name != nullptr && (startsWith(name, "::Register") || startsWith(name, "::Unregister"));
}
}

WatchedCall::WatchedCall(State& state, const char* operation, const std::string& object, Kind kind,
                         const FinelyNamed* finer)
    : m_state(state),
      m_operation(operation),
      m_object(object),
      m_finer(finer),
      m_isRecorded(state.journal.recording() && (kind == Kind::work || state.journal.recordingReferences())),
      m_concernsClients(kind == Kind::work && concernsClients(operation))
{
}

bool WatchedCall::wantsArguments() const
{
    return m_isRecorded || !m_state.faults.isEmpty() || m_concernsClients;
}

void WatchedCall::setArguments(std::vector<std::string> arguments)
{
    m_arguments = std::move(arguments);
}

void WatchedCall::begin()
{
    if (!m_state.faults.isEmpty())
    {
        m_verdict = m_state.faults.judge(m_operation, m_object, m_arguments,
                                         m_finer == nullptr ? std::string() : m_finer->finerName());
        for (const auto& action : m_verdict.actions)
            action();
    }
    if (!m_isRecorded && !m_concernsClients)
        return;
    JournalEntry entry;
    entry.operation = m_operation;
    entry.object = m_object;
    entry.arguments = std::move(m_arguments);
    if (m_concernsClients)
        m_text = entry.call() + " on " + m_object;
    if (m_isRecorded)
        m_place = m_state.journal.begin(std::move(entry));
    if (m_concernsClients)
        reportIfForbidden();
}

/// After the entry has begun, so that its place is known.
void WatchedCall::reportIfForbidden() const
{
    const CallbackScope* const callback = m_state.callbacks.here();
    if (callback == nullptr)
        return;
    const bool isUnregistration = std::strstr(m_operation, "::Unregister") != nullptr;
    const auto kind = isUnregistration ? Violation::Kind::unregistration : Violation::Kind::registration;
    m_state.callbacks.report({kind, m_text, place(), callback->text()});
}

std::size_t WatchedCall::place() const
{
    return m_isRecorded ? m_place.index : m_state.journal.size();
}

const std::optional<FaultRule::Outcome>& WatchedCall::planned() const
{
    return m_verdict.outcome;
}

HRESULT WatchedCall::end(HRESULT result)
{
    if (m_isRecorded)
        m_state.journal.end(m_place, CallEnd::returned, result);
    return result;
}

HRESULT WatchedCall::endAsPlanned()
{
    return end(m_verdict.outcome == FaultRule::Outcome::result ? m_verdict.result : S_OK);
}

void WatchedCall::raise()
{
    if (m_isRecorded)
        m_state.journal.end(m_place, CallEnd::thrown, E_UNEXPECTED);
    throw InjectedException(m_operation);
}
}
