/// @file
/// Strings of the platform, and ids that are equal regardless of case.
#pragma once

#include "platform/coreaudio.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace direct
{
/// A string that the platform allocates for its caller.
class TaskText
{
public:
    TaskText() = default;
    TaskText(const TaskText&) = delete;
    TaskText& operator=(const TaskText&) = delete;
    ~TaskText() { CoTaskMemFree(m_text); }

    LPWSTR* put() { return &m_text; }
    LPCWSTR get() const { return m_text; }

private:
    LPWSTR m_text = nullptr;
};

/// As above, for what a device or a part may lack: nothing is freed then.
class OptionalTaskText
{
public:
    OptionalTaskText() = default;
    OptionalTaskText(const OptionalTaskText&) = delete;
    OptionalTaskText& operator=(const OptionalTaskText&) = delete;
    ~OptionalTaskText()
    {
        if (m_text != nullptr)
            CoTaskMemFree(m_text);
    }

    LPWSTR* put() { return &m_text; }
    LPCWSTR get() const { return m_text; }

private:
    LPWSTR m_text = nullptr;
};

/// A copy; empty for a null pointer.
inline std::u16string copyOf(LPCWSTR text)
{
    return text == nullptr ? std::u16string() : std::u16string(reinterpret_cast<const char16_t*>(text));
}

/// The platform's form of a string; valid as long as @p text is.
inline LPCWSTR wide(const std::u16string& text)
{
    return reinterpret_cast<LPCWSTR>(text.c_str());
}

/// Ids are compared without regard to the case of A to Z.
inline char16_t folded(char16_t unit)
{
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}

struct FoldedEqual
{
    bool operator()(const std::u16string& left, const std::u16string& right) const
    {
        if (left.size() != right.size())
            return false;
        for (std::size_t index = 0; index < left.size(); ++index)
        {
            if (folded(left[index]) != folded(right[index]))
                return false;
        }
        return true;
    }
};

/// FNV-1a.
struct FoldedHash
{
    std::size_t operator()(const std::u16string& text) const
    {
        std::uint64_t hash = 14695981039346656037ULL;
        for (const char16_t unit : text)
            hash = (hash ^ folded(unit)) * 1099511628211ULL;
        return static_cast<std::size_t>(hash);
    }
};
}
