/// @file
/// The device format as people write it and as a property store keeps it.
#pragma once

#include "platform/coreaudio.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sim
{
/// What a device format can have at most.
inline constexpr std::uint32_t maximumRate = 999999; ///< the largest number of six digits
inline constexpr std::uint32_t maximumFormatChannels = 8;

/// A device format as it is written "bits/rate/channels", such as 24/48000/2.
struct DeviceFormat
{
    std::uint32_t bits = 16; ///< 8, 16, 24 or 32 bits of a sample
    std::uint32_t rate = 48000;
    std::uint32_t channels = 2; ///< 1 to 8

    std::string text() const;
    static std::optional<DeviceFormat> fromText(const std::string& text);

    /// A regular expression for the strings that fromText() reads.
    static std::string pattern();

    /// The platform's structure for whole-number samples.
    WAVEFORMATEXTENSIBLE waveFormat() const;

    /// The 40 bytes of waveFormat(), as a property store keeps them.
    std::vector<std::uint8_t> bytes() const;

    /// The format whose bytes() these are; no value for any other bytes.
    static std::optional<DeviceFormat> fromBytes(const std::vector<std::uint8_t>& bytes);

    /// Mask of the loudspeakers that so many channels usually feed; 0 for more than 8 channels.
    std::uint32_t speakers() const;
};
}
