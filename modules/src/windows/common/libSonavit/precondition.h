/// The check of a precondition; included by the library's source files only.
#pragma once

#include "qor/exception.h"
#include "qor/integers.h"

namespace precondition
{
/// Throws if a precondition does not hold. The call is one statement on one line, so that the exception names the line
/// of the check itself: `precondition::check(list != nullptr, __FILE__, __LINE__, "list != NULL");`
/// @exception qor::AssertionFailure with the other three arguments if @p holds is false
inline void check(bool holds, const char* file, unsigned __int64 line, const char* expression)
{
    if (!holds)
        throw qor::AssertionFailure(file, line, expression);
}
}
