#pragma once

#include "platform/coreaudio.h"
#include "simulator/machine/deviceformat.h"

#include <string>

namespace sonavit::program
{
/// Reads "bits/rate/channels", such as 24/48000/2; bits and rate may change places, as no rate is as small as a number
/// of bits. Throws UsageError.
sim::DeviceFormat readFormatRequest(const std::string& text);

/// The format with integer samples that @p request describes.
WAVEFORMATEXTENSIBLE deviceFormat(const sim::DeviceFormat& request);

/// Whether @p format was read from a device; the library keeps all zero if the device reports none.
bool isKnown(const WAVEFORMATEXTENSIBLE& format);
}
