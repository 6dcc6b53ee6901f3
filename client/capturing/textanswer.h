/// @file
/// Strings that the platform returns.
#pragma once

#include "COM/tasktext.h"
#include "client/reading/text.h"

#include <optional>
#include <string>

namespace sonavit::capturing
{
/// The result of @p ask(LPWSTR*). @param text what it has stored; no value for null, and if it has failed
template<class Ask>
HRESULT readText(const Ask& ask, std::optional<std::string>& text)
{
    TaskText owned(TaskText::NullText::skipped);
    const HRESULT result = ask(owned.put());
    if (SUCCEEDED(result) && owned.get() != nullptr)
        text = reading::utf8(owned.get());
    return result;
}
}
