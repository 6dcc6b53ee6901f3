#include "client/model/values.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <utility>

namespace sonavit::model
{
std::optional<std::string> textOrNothing(const qor::String& text)
{
    if (text.size() == 0)
        return std::nullopt;
    return text.toUtf8();
}

Guid guidOf(const GUID& guid)
{
    Guid result;
    result.data1 = static_cast<std::uint32_t>(guid.Data1);
    result.data2 = guid.Data2;
    result.data3 = guid.Data3;
    std::copy(std::begin(guid.Data4), std::end(guid.Data4), result.data4.begin());
    return result;
}

std::optional<Guid> guidOrNothing(const GUID& guid)
{
    const Guid result = guidOf(guid);
    return result.isNull() ? std::nullopt : std::optional<Guid>(result);
}

std::string folded(std::string text)
{
    for (char& character : text)
    {
        if (character >= 'A' && character <= 'Z')
            character = static_cast<char>(character - 'A' + 'a');
    }
    return text;
}

bool Judge::passes(HRESULT result, const char* operation, const char* arguments)
{
    if (SUCCEEDED(result))
        return true;
    std::string call = operation;
    if (arguments != nullptr)
        call.append("(").append(arguments).append(")");
    m_problems.push_back(Problem::ofCall(std::move(call), m_object, static_cast<std::int32_t>(result)));
    return false;
}
}
