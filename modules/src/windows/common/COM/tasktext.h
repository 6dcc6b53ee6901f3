/// Strings that the platform allocates for its caller; included by the library's source files only.
#pragma once

#include "platform/coreaudio.h"

/// Owns a string from CoTaskMemAlloc and frees it at the end of its scope, even if an exception leaves the scope.
///
/// Callers keep the scope as short as the string: it ends before the next platform call and before the next log record,
/// because the order in which strings are freed is observable.
class TaskText
{
public:
    /// Whether CoTaskMemFree is called for a null pointer, too. Both forms are required behaviour of their callers.
    enum class NullText
    {
        freed,
        skipped,
    };

    explicit TaskText(NullText nullText = NullText::freed) noexcept : m_nullText(nullText) {}
    TaskText(const TaskText&) = delete;
    TaskText& operator=(const TaskText&) = delete;

    ~TaskText()
    {
        if (m_text != nullptr || m_nullText == NullText::freed)
            CoTaskMemFree(m_text);
    }

    /// Where the platform stores the string, once.
    LPWSTR* put() noexcept { return &m_text; }

    /// The string, still owned by this object; null if the platform stored none.
    LPWSTR get() const noexcept { return m_text; }

private:
    LPWSTR m_text = nullptr;
    NullText m_nullText;
};
