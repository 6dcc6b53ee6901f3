/// @file
/// How the calls of a survey are judged.
#pragma once

#include "client/capturing/survey.h"
#include "platform/coreaudio.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace sonavit::capturing
{
/// Names a call as FailedCall does.
struct Call
{
    const char* operation;
    std::string object;
    std::vector<std::string> arguments = {};
};

/// Notes the failures of a survey, each once.
class Recorder
{
public:
    using Codes = std::initializer_list<HRESULT>;

    explicit Recorder(Survey& survey) : m_survey(survey) {}
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    /// Whether the call has succeeded.
    /// @param implied codes with which the machine fails, too, as it is recorded
    bool passes(HRESULT result, const Call& call, Codes implied = {})
    {
        if (SUCCEEDED(result))
            return true;
        fails(result, call, implied);
        return false;
    }

    /// Whether the call has succeeded and stored an object or a string. What is stored along with a failure is ignored.
    template<class T>
    bool gives(HRESULT result, T* const& object, const Call& call, Codes implied = {})
    {
        if (!passes(result, call, implied))
            return false;
        if (object == nullptr)
            givesNull(call);
        return object != nullptr;
    }

    void fails(HRESULT code, const Call& call, Codes implied = {});
    /// The call succeeded and stored null.
    void givesNull(const Call& call);
    /// Notes a failure whose code the machine has among its data.
    void keeps(HRESULT code, const Call& call);
    /// Notes, once, what no machine can express.
    void note(const std::string& sentence);

    /// Whether the call has failed, or given null, in a way that is noted.
    bool hasFailed(const Call& call) const;

    /// Keeps what became of opening the properties of @p device for writing; account() judges it.
    void opensForWriting(const std::string& device, HRESULT result);
    /// The account that all of them show. What it does not explain has failed.
    sim::Account account();

private:
    void add(FailedCall failure);

    Survey& m_survey;
    std::unordered_set<std::string> m_known; ///< failures and notes
    std::vector<std::pair<std::string, HRESULT>> m_openings;
};

/// A number as a call's argument.
template<class Number>
std::string argument(Number number)
{
    return std::to_string(number);
}
}
