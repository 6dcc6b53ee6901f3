#include "client/reading/judge.h"

#include "client/reading/witness.h"

#include <algorithm>
#include <utility>

namespace sonavit::reading
{
std::string Operation::text() const
{
    std::string text = name;
    if (argument != nullptr)
        text.append("(").append(argument).append(")");
    else if (number)
        text.append("(").append(std::to_string(*number)).append(")");
    return text;
}

Problem failure(const Operation& operation, const std::string& object, HRESULT code)
{
    std::string text = operation.text();
    reportFailure(text, object, code);
    return Problem::ofCall(std::move(text), object, code);
}

void Judge::fails(HRESULT code, const Operation& operation, Codes tolerated)
{
    if (std::find(tolerated.begin(), tolerated.end(), code) == tolerated.end())
        m_problems.push_back(failure(operation, m_object, code));
    else if (hasWitness())
        reportFailure(operation.text(), m_object, code);
}
}
