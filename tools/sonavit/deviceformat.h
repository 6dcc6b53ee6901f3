#pragma once

#include "platform/coreaudio.h"
#include "tools/sonavit/json.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sonavit
{
/// A device format as the user asks for it.
struct FormatRequest
{
    std::uint32_t bits = 0;
    std::uint32_t rate = 0;
    std::uint32_t channels = 0;
};

/// Reads bits, rate and channels, "24/48000/2"; bits and rate may change places, which of them is which is plain to
/// see. Throws UsageError.
FormatRequest readFormatRequest(const std::string& text);

/// The format of whole-number samples that @p request describes.
WAVEFORMATEXTENSIBLE deviceFormat(const FormatRequest& request);

/// Whether a device has told its format; the library keeps all zero where it has not.
bool isKnown(const WAVEFORMATEXTENSIBLE& format);

/// "48000 Hz, 24 bit, 2 channels (stereo)", or "-".
std::string formatWords(const WAVEFORMATEXTENSIBLE& format);
Json formatJson(const WAVEFORMATEXTENSIBLE& format);

/// "front left" and so on for the bits of a speaker mask.
std::vector<std::string> speakerNames(unsigned mask);

/// "stereo", "5.1 surround"; for other masks the speakers one by one.
std::string speakerWords(unsigned mask);
}
