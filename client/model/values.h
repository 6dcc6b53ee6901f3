/// @file
/// The object model's strings and GUIDs as values of the client layer.
#pragma once

#include "platform/coreaudio.h"
#include "qor/string.h"
#include "sonavit/ids.h"
#include "sonavit/problem.h"

#include <optional>
#include <string>
#include <vector>

namespace sonavit::model
{
/// No value for the empty string, which the object model has for a string that it could not read, too.
std::optional<std::string> textOrNothing(const qor::String& text);

Guid guidOf(const GUID& guid);

/// No value for the null GUID, which the object model has for a GUID that it could not read, too.
std::optional<Guid> guidOrNothing(const GUID& guid);

/// In lower case as far as the platform takes no notice of case.
std::string folded(std::string text);

/// Judges the calls with which a reader asks the platform, because the object model's answer does not show a failure.
class Judge
{
public:
    /// @param object id of what the calls are made on; must outlive the judge, like @p problems
    Judge(const std::string& object, std::vector<Problem>& problems) : m_object(object), m_problems(problems) {}

    /// Whether the call has succeeded. A failure becomes a problem.
    /// @param operation "IMMDevice::GetState"
    /// @param arguments what distinguishes it from other calls of the operation, if that matters
    bool passes(HRESULT result, const char* operation, const char* arguments = nullptr);

private:
    const std::string& m_object;
    std::vector<Problem>& m_problems;
};
}
