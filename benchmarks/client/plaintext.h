/// @file
/// Strings of the client without the client layer.
#pragma once

#include "platform/coreaudio.h"

#include <optional>
#include <string>

namespace plain
{
/// UTF-8 of a zero-terminated string.
std::string utf8(const WCHAR* text);
/// A to Z as a to z.
std::string lowerCase(std::string text);
/// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}"; no value for any other text.
std::optional<GUID> guidIn(const WCHAR* text);
std::string textOf(const GUID& guid);

/// Frees a string of the platform at the end of its scope.
class TaskString
{
public:
    TaskString() = default;
    TaskString(const TaskString&) = delete;
    TaskString& operator=(const TaskString&) = delete;
    ~TaskString()
    {
        if (m_text != nullptr)
            CoTaskMemFree(m_text);
    }

    LPWSTR* put() noexcept { return &m_text; }
    LPWSTR get() const noexcept { return m_text; }

private:
    LPWSTR m_text = nullptr;
};
}
