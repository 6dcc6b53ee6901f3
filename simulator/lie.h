/// @file
/// What a call of a simulated machine reports in place of the truth.
#pragma once

#include "platform/coreaudio.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace sim
{
/// One value in place of what a call has stored: the call does its work, succeeds, and reports this. It replaces each
/// out-parameter of the fitting type and leaves the others as they are. A plain value.
class Lie
{
public:
    /// In place of whole numbers, enumerations and truth values, and of the number of a VT_UI4. Shorter ones get its
    /// low bits. Levels and ranges stay as they are.
    static Lie ofNumber(std::uint64_t number);
    /// In place of strings, and of the string of a VT_LPWSTR: units of UTF-16, which need not be characters. Without a
    /// value it is a null pointer.
    static Lie ofText(std::optional<std::u16string> text);
    /// In place of a property's value: a VT_BLOB that announces @p bytes bytes and has a null pointer.
    static Lie ofBlobWithoutData(std::uint32_t bytes);
    /// In place of an object. Each lie adds a reference; the caller keeps @p object alive as long as the plan has the
    /// rule. @tparam I the interface that the call's users ask for: they use the object as one of it
    template<class I>
    static Lie ofObject(I& object)
    {
        Lie lie;
        lie.m_object = {&object, &object};
        return lie;
    }

private:
    friend class Liar;

    /// A pointer as users get it, and for counting.
    struct Object
    {
        void* pointer = nullptr;
        IUnknown* unknown = nullptr;
    };

    Lie() = default;

    std::optional<std::uint64_t> m_number;
    std::optional<std::optional<std::u16string>> m_text;
    std::optional<std::uint32_t> m_bytesOfNothing;
    Object m_object;
};
}
