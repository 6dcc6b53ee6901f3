/// @file
/// Failures of calls on something whose id is not final before the end of the walk.
#pragma once

#include "client/capturing/recorder.h"

#include <optional>
#include <string>
#include <vector>

namespace sonavit::capturing
{
/// A call on a part, a device, or one of their lists.
struct Question
{
    const char* operation;
    std::vector<std::string> arguments = {};
    std::string list = {}; ///< what follows the object's id, such as " incoming"
};

/// Keeps failures as Recorder does, until the id of their object is known.
class Failures
{
public:
    using Codes = Recorder::Codes;

    /// Whether the call has succeeded; see Recorder.
    bool passes(HRESULT result, const Question& question, Codes implied = {})
    {
        if (SUCCEEDED(result))
            return true;
        fails(result, question, implied);
        return false;
    }

    /// Whether the call has succeeded and stored an object.
    template<class T>
    bool gives(HRESULT result, T* const& object, const Question& question, Codes implied = {})
    {
        if (!passes(result, question, implied))
            return false;
        if (object == nullptr)
            givesNull(question);
        return object != nullptr;
    }

    void fails(HRESULT code, const Question& question, Codes implied = {});
    void givesNull(const Question& question);
    bool isEmpty() const { return m_failures.empty(); }
    /// Adds those of @p others behind its own.
    void append(const Failures& others);

    /// Hands all of them to @p recorder. @param first arguments before those of each question
    void report(const std::string& object, Recorder& recorder, const std::vector<std::string>& first = {}) const;

private:
    struct Failure
    {
        Question question;
        std::optional<HRESULT> code; ///< none: the call succeeded and stored null
    };

    std::vector<Failure> m_failures;
};
}
