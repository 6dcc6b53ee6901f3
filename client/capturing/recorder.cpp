#include "client/capturing/recorder.h"

#include <algorithm>

namespace sonavit::capturing
{
void Recorder::fails(HRESULT code, const Call& call, Codes implied)
{
    if (std::find(implied.begin(), implied.end(), code) == implied.end())
        add({call.operation, call.object, call.arguments, FailedCall::Outcome::code, code});
}

void Recorder::givesNull(const Call& call)
{
    add({call.operation, call.object, call.arguments, FailedCall::Outcome::nullSuccess, E_POINTER});
}

void Recorder::note(const std::string& sentence)
{
    if (m_known.insert(sentence).second)
        m_survey.notes.push_back(sentence);
}

/// A call that is made twice fails with its first code.
void Recorder::add(FailedCall failure)
{
    if (m_known.insert(failure.call() + "\n" + failure.object).second)
        m_survey.failures.push_back(std::move(failure));
}
}
