#include "client/capturing/failures.h"

#include <algorithm>

namespace sonavit::capturing
{
void Failures::fails(HRESULT code, const Question& question, Codes implied)
{
    if (std::find(implied.begin(), implied.end(), code) == implied.end())
        m_failures.push_back({question, code});
}

void Failures::givesNull(const Question& question)
{
    m_failures.push_back({question, std::nullopt});
}

void Failures::append(const Failures& others)
{
    m_failures.insert(m_failures.end(), others.m_failures.begin(), others.m_failures.end());
}

void Failures::report(const std::string& object, Recorder& recorder, const std::vector<std::string>& first) const
{
    for (const Failure& failure : m_failures)
    {
        Call call = {failure.question.operation, object + failure.question.list, first};
        call.arguments.insert(call.arguments.end(), failure.question.arguments.begin(),
                              failure.question.arguments.end());
        if (failure.code)
            recorder.fails(*failure.code, call);
        else
            recorder.givesNull(call);
    }
}
}
