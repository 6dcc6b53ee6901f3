/// @file
/// Identifiers: strings with a type of their own, and GUIDs.
#pragma once

#include "sonavit/export.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace sonavit
{
inline namespace v1
{
/// Compares UTF-8 strings with the letters A to Z as a to z, as the platform compares ids.
/// @return negative, 0 or positive, as std::string_view::compare()
SONAVIT_CLIENT_API int compareIds(std::string_view left, std::string_view right) noexcept;
/// A hash that is equal for strings that compareIds() finds equal.
SONAVIT_CLIENT_API std::size_t hashId(std::string_view text) noexcept;

/// @p utf8 for calls of the platform, such as IMMDeviceEnumerator::GetDevice: UTF-16 where wchar_t has 16 bits, UTF-32
/// elsewhere. Each ill-formed sequence becomes U+FFFD.
SONAVIT_CLIENT_API std::wstring wideText(std::string_view utf8);
/// The reverse, for what the platform has returned: UTF-8. Each lone surrogate and each number that is no character
/// becomes U+FFFD.
SONAVIT_CLIENT_API std::string utf8Text(std::wstring_view wide);

/// A string that identifies one kind of object. Two are equal if they differ in the case of A to Z alone; text() keeps
/// the spelling. Different kinds cannot be mixed up, and nothing converts to an id by itself. A value, ordered, and
/// with a hash; any thread may use it.
template<class Kind>
class Id
{
public:
    /// The id of nothing: its text is empty.
    Id() = default;
    /// @param text UTF-8; utf8Text() makes it from what the platform returns
    explicit Id(std::string text) : m_text(std::move(text)) {}

    const std::string& text() const& noexcept { return m_text; }
    std::string text() && { return std::move(m_text); }
    bool isEmpty() const noexcept { return m_text.empty(); }

    friend bool operator==(const Id& left, const Id& right) noexcept
    {
        return compareIds(left.m_text, right.m_text) == 0;
    }
    friend bool operator!=(const Id& left, const Id& right) noexcept { return !(left == right); }
    friend bool operator<(const Id& left, const Id& right) noexcept
    {
        return compareIds(left.m_text, right.m_text) < 0;
    }
    template<class Character>
    friend std::basic_ostream<Character>& operator<<(std::basic_ostream<Character>& out, const Id& id)
    {
        return out << id.m_text.c_str();
    }

private:
    std::string m_text;
};

/// An endpoint: the platform's id, "{0.0.0.00000000}.{guid}". It stays the same until the driver is installed anew or a
/// device moves to another port; a Reference survives that.
using EndpointId = Id<struct EndpointKind>;
/// A card: the instance path that its endpoints share; without one the container or the adapter that they share, or the
/// id of the only endpoint.
using CardId = Id<struct CardKind>;
/// A hardware control: the global id of its level in the hardware graph.
using ControlId = Id<struct ControlKind>;
/// An input selector: its global id in the hardware graph.
using SelectorId = Id<struct SelectorKind>;

/// A GUID, with the members and the layout of the platform's: std::memcpy(static_cast<void*>(&guid), &platformGuid, 16)
/// converts one into the other.
struct Guid
{
    std::uint32_t data1 = 0;
    std::uint16_t data2 = 0;
    std::uint16_t data3 = 0;
    std::array<std::uint8_t, 8> data4 = {};

    /// Reads "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}", in either case, with or without the braces; no value for any
    /// other text.
    SONAVIT_CLIENT_API static std::optional<Guid> parse(std::string_view text);
    /// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}", in upper case.
    SONAVIT_CLIENT_API std::string text() const;
    /// Whether all bits are zero.
    SONAVIT_CLIENT_API bool isNull() const noexcept;
};

SONAVIT_CLIENT_API std::size_t hashGuid(const Guid& guid) noexcept;
SONAVIT_CLIENT_API bool operator==(const Guid& left, const Guid& right) noexcept;
SONAVIT_CLIENT_API bool operator<(const Guid& left, const Guid& right) noexcept;
inline bool operator!=(const Guid& left, const Guid& right) noexcept
{
    return !(left == right);
}
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Guid& guid);
}
}

template<class Kind>
struct std::hash<sonavit::Id<Kind>>
{
    std::size_t operator()(const sonavit::Id<Kind>& id) const noexcept { return sonavit::hashId(id.text()); }
};

template<>
struct std::hash<sonavit::Guid>
{
    std::size_t operator()(const sonavit::Guid& guid) const noexcept { return sonavit::hashGuid(guid); }
};
