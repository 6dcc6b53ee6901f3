/// @file
/// How the platform calls of a reading are judged.
#pragma once

#include "platform/coreaudio.h"
#include "sonavit/problem.h"

#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

namespace sonavit::reading
{
/// The code of a call that succeeds and stores a value of another type than the reader expects: DISP_E_TYPEMISMATCH.
inline constexpr HRESULT typeMismatch = static_cast<HRESULT>(0x80020005U);
/// The code of a call that succeeds and stores what cannot be: a count beyond all bounds, a level that is not a number,
/// a format of an odd size, a text that is no GUID. It is Windows' own code for invalid data.
inline constexpr HRESULT invalidData = static_cast<HRESULT>(0x8007000DU);

/// Names a platform call. The text is made only when the call fails.
struct Operation
{
    const char* name;
    const char* argument = nullptr;      ///< what tells it from other calls of the same name
    std::optional<unsigned> number = {}; ///< the same for calls with an index

    /// "IMMDevice::Activate(IDeviceTopology)".
    std::string text() const;
};

/// A problem with a call on @p object. The thread's witness learns of it.
Problem failure(const Operation& operation, const std::string& object, HRESULT code);

/// Judges the calls on one object. The thread's witness learns of each failure; those that are not tolerated become
/// problems.
class Judge
{
public:
    using Codes = std::initializer_list<HRESULT>;

    /// @param object its id; must outlive the judge
    Judge(const std::string& object, std::vector<Problem>& problems) : m_object(object), m_problems(problems) {}

    /// Whether the call has succeeded.
    /// @param tolerated failures by which the platform says that there is no such thing
    bool passes(HRESULT result, const Operation& operation, Codes tolerated = {})
    {
        if (SUCCEEDED(result))
            return true;
        fails(result, operation, tolerated);
        return false;
    }

    /// Whether the call has succeeded and stored an object. What is stored along with a failure is ignored.
    template<class I>
    bool gives(HRESULT result, I* const& object, const Operation& operation, Codes tolerated = {})
    {
        if (SUCCEEDED(result) && object != nullptr)
            return true;
        fails(FAILED(result) ? result : E_POINTER, operation, tolerated);
        return false;
    }

    /// Notes a failure.
    void fails(HRESULT code, const Operation& operation, Codes tolerated = {});

private:
    const std::string& m_object;
    std::vector<Problem>& m_problems;
};
}
