/// @file
/// The format in which an endpoint's engine works.
#pragma once

#include "sonavit/export.h"
#include "sonavit/ids.h"

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace sonavit
{
inline namespace v1
{
/// A device format: WAVEFORMATEX, the short form, or WAVEFORMATEXTENSIBLE, the long one.
struct Format
{
    enum class Encoding : int
    {
        integer, ///< PCM
        floatingPoint,
        other
    };

    std::uint32_t rate = 0;      ///< samples per second of each channel, in hertz
    std::uint32_t bits = 0;      ///< of a sample in memory
    std::uint32_t validBits = 0; ///< how many of these carry sound
    std::uint32_t channels = 0;
    Encoding encoding = Encoding::integer;
    /// A mask of speaker positions, one bit for each channel, as the SPEAKER_ constants of the platform; 0 for channels
    /// without positions. No value in the short form of formats, which has none. See speakerNames().
    std::optional<std::uint32_t> speakers;
    /// How samples are encoded, in the long form of formats.
    std::optional<Guid> subFormat;

    /// An integer format in the long form with the usual speakers for that many channels (1 to 8; none beyond that).
    /// All bits are valid. The numbers are not tested: System::holdFormat() asks the platform.
    SONAVIT_CLIENT_API static Format integer(std::uint32_t bits, std::uint32_t rate, std::uint32_t channels);

    /// "48000 Hz, 24 bit in 32, 2 channels (stereo)".
    SONAVIT_CLIENT_API std::string sentence() const;
};

SONAVIT_CLIENT_API bool operator==(const Format& left, const Format& right) noexcept;
inline bool operator!=(const Format& left, const Format& right) noexcept
{
    return !(left == right);
}
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Format& format);

/// "pcm", "float" or "other", as in JSON. Streams write these.
SONAVIT_CLIENT_API const char* keyOf(Format::Encoding encoding) noexcept;
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, Format::Encoding encoding);
/// "front left" and so on, one for each bit of a speaker mask that has a name.
SONAVIT_CLIENT_API std::vector<std::string> speakerNames(std::uint32_t mask);
/// "stereo", "5.1 surround"; for masks without a name of their own the speakers one by one.
SONAVIT_CLIENT_API std::string speakerWords(std::uint32_t mask);
}
}
