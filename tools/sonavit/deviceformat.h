#pragma once

#include "platform/coreaudio.h"
#include "simulator/machine/deviceformat.h"

#include <cstdint>

namespace sonavit::program
{
/// Channels for which deviceFormat() knows the speakers.
inline constexpr std::uint32_t mostChannels = 8;

/// The format with integer samples that @p request describes; it has at most mostChannels channels.
WAVEFORMATEXTENSIBLE deviceFormat(const sim::DeviceFormat& request);

/// Whether @p format was read from a device; the library keeps all zero if the device reports none.
bool isKnown(const WAVEFORMATEXTENSIBLE& format);
}
