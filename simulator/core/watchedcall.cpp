#include "simulator/core/watchedcall.h"

namespace sim
{
WatchedCall::WatchedCall(State& state, const char* operation, const std::string& object, Kind kind)
    : m_state(state),
      m_operation(operation),
      m_object(object),
      m_isRecorded(state.journal.recording() && (kind == Kind::work || state.journal.recordingReferences()))
{
}

bool WatchedCall::wantsArguments() const
{
    return m_isRecorded || !m_state.faults.isEmpty();
}

void WatchedCall::setArguments(std::vector<std::string> arguments)
{
    m_arguments = std::move(arguments);
}

void WatchedCall::begin()
{
    if (!m_state.faults.isEmpty())
    {
        m_verdict = m_state.faults.judge(m_operation, m_object, m_arguments);
        for (const auto& action : m_verdict.actions)
            action();
    }
    if (!m_isRecorded)
        return;
    JournalEntry entry;
    entry.operation = m_operation;
    entry.object = m_object;
    entry.arguments = std::move(m_arguments);
    m_place = m_state.journal.begin(std::move(entry));
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
