#include "client/capturing/recorder.h"

#include <algorithm>

namespace sonavit::capturing
{
namespace
{
std::string keyOf(const FailedCall& failure)
{
    return failure.call() + "\n" + failure.object;
}
}

void Recorder::fails(HRESULT code, const Call& call, Codes implied)
{
    if (std::find(implied.begin(), implied.end(), code) == implied.end())
        add({call.operation, call.object, call.arguments, FailedCall::Outcome::code, code});
}

void Recorder::givesNull(const Call& call)
{
    add({call.operation, call.object, call.arguments, FailedCall::Outcome::nullSuccess, E_POINTER});
}

void Recorder::keeps(HRESULT code, const Call& call)
{
    m_survey.recorded.push_back({call.operation, call.object, call.arguments, FailedCall::Outcome::code, code});
}

void Recorder::note(const std::string& sentence)
{
    if (m_known.insert(sentence).second)
        m_survey.notes.push_back(sentence);
}

bool Recorder::hasFailed(const Call& call) const
{
    return m_known.count(keyOf({call.operation, call.object, call.arguments})) != 0;
}

void Recorder::opensForWriting(const std::string& device, HRESULT result)
{
    m_openings.emplace_back(device, result);
}

/// Windows opens the properties of no device for writing if the account is an ordinary one.
sim::Account Recorder::account()
{
    const auto isOpened = [](const auto& opening) { return SUCCEEDED(opening.second); };
    const auto isDenied = [](const auto& opening) { return opening.second == E_ACCESSDENIED; };
    const bool isOrdinary = std::none_of(m_openings.begin(), m_openings.end(), isOpened) &&
                            std::any_of(m_openings.begin(), m_openings.end(), isDenied);
    for (const auto& opening : m_openings)
    {
        if (!isOpened(opening) && !(isOrdinary && isDenied(opening)))
            fails(opening.second, {"IMMDevice::OpenPropertyStore", opening.first, {argument(STGM_READWRITE)}});
    }
    return isOrdinary ? sim::Account::ordinary : sim::Account::administrator;
}

/// A call that is made twice fails with its first code.
void Recorder::add(FailedCall failure)
{
    if (m_known.insert(keyOf(failure)).second)
        m_survey.failures.push_back(std::move(failure));
}
}
