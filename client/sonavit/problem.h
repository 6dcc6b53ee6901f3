/// @file
/// Why something could not be read or done.
#pragma once

#include "sonavit/export.h"

#include <cstdint>
#include <iosfwd>
#include <string>

namespace sonavit
{
inline namespace v1
{
/// Something that could not be read or done: what was tried on which object, and the platform's code. A value; any
/// thread may use it. What was moved from has unspecified strings.
class SONAVIT_CLIENT_API Problem
{
public:
    enum class Kind : int
    {
        platform,     ///< a platform call failed; code() is what it returned
        notThere,     ///< there is no such endpoint, card, control, selector, input or default
        ambiguous,    ///< a name fits several things; sentence() lists them
        notSupported, ///< the thing is there but cannot do that: an endpoint without volume, a control without mute
        outOfRange,   ///< decibels outside the range, a channel that does not exist; sentence() names the range
        unreadable,   ///< a text that is no reference, settings or machine file; sentence() names the place
        noAnswer,     ///< the platform has not answered within Options::patience; the operation may still happen
        wouldWait,    ///< the operation waits for the layer's worker and was called on it
        ended,        ///< the process was forked, or the System is ending
        internal      ///< an exception inside the layer; sentence() has its message
    };

    /// A platform call that failed.
    /// @param operation the call: "IMMDevice::OpenPropertyStore"
    /// @param object the id of the object that it was called on; may be empty
    /// @param code the HRESULT, or the MMRESULT of a wave function
    /// @param sentence one line without a full stop; empty for "IMMDevice::OpenPropertyStore failed: 0x80070005, access
    /// denied"
    static Problem ofCall(std::string operation, std::string object, std::int32_t code, std::string sentence = {});

    /// Anything else.
    /// @param operation of the layer: "setVolume"
    /// @param sentence one line without a full stop
    Problem(Kind kind, std::string operation, std::string object, std::string sentence);

    Kind kind() const noexcept { return m_kind; }
    /// The platform call that failed, "IMMDevice::OpenPropertyStore", with an argument that distinguishes it:
    /// "IPropertyStore::GetValue(deviceFormat)"; otherwise the operation of the layer, "setVolume".
    const std::string& operation() const noexcept { return m_operation; }
    /// The id of the endpoint, card, device or part that it was called on; empty for the computer as a whole.
    const std::string& object() const noexcept { return m_object; }
    /// The HRESULT, or the MMRESULT of a wave function; 0 if no platform call failed. A call that succeeds and stores
    /// null in place of an object has E_POINTER (0x80004003), one that stores what cannot be has 0x8007000D, and one
    /// that stores a value of another type has 0x80020005.
    std::int32_t code() const noexcept { return m_code; }
    /// "0x80070005", or empty if no platform call failed.
    std::string codeText() const;
    /// One line for a person, without a full stop.
    const std::string& sentence() const noexcept { return m_sentence; }

private:
    Kind m_kind;
    std::string m_operation;
    std::string m_object;
    std::int32_t m_code = 0;
    std::string m_sentence;

    friend SONAVIT_CLIENT_API bool operator==(const Problem& left, const Problem& right) noexcept;
};

SONAVIT_CLIENT_API bool operator==(const Problem& left, const Problem& right) noexcept;
inline bool operator!=(const Problem& left, const Problem& right) noexcept
{
    return !(left == right);
}
/// Its sentence.
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Problem& problem);
/// "notThere" and the like, for logs and JSON. Streams write these.
SONAVIT_CLIENT_API const char* keyOf(Problem::Kind kind) noexcept;
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, Problem::Kind kind);

/// What an HRESULT means: "0x80070005, access denied"; the number alone if there are no words for it.
SONAVIT_CLIENT_API std::string reasonText(std::int32_t code);
}
}
