#pragma once

#include "platform/coreaudio.h"
#include "simulator/machine/deviceformat.h"
#include "tools/sonavit/output/json.h"

#include <string>
#include <vector>

namespace sonavit::program
{
/// Reads "bits/rate/channels", such as 24/48000/2; bits and rate may change places, as no rate is as small as a number
/// of bits. Throws UsageError.
sim::DeviceFormat readFormatRequest(const std::string& text);

/// The format with integer samples that @p request describes.
WAVEFORMATEXTENSIBLE deviceFormat(const sim::DeviceFormat& request);

/// Whether @p format was read from a device; the library keeps all zero if the device reports none.
bool isKnown(const WAVEFORMATEXTENSIBLE& format);

/// "48000 Hz, 24 bit, 2 channels (stereo)", or "-".
std::string formatWords(const WAVEFORMATEXTENSIBLE& format);
Json formatJson(const WAVEFORMATEXTENSIBLE& format);

/// "front left" and so on, one for each bit of a speaker mask.
std::vector<std::string> speakerNames(unsigned mask);

/// "stereo", "5.1 surround"; for other masks the speakers one by one.
std::string speakerWords(unsigned mask);
}
