/// @file
/// The format of the shared engine as people write it.
#pragma once

#include "platform/coreaudio.h"
#include "simulator/machine/deviceformat.h"

#include <optional>
#include <string>

namespace sim
{
/// A mix format as it is written "32f/rate/channels", or "bits/rate/channels" for whole-number samples.
struct MixFormat
{
    DeviceFormat numbers = {32, 48000, 2};
    bool isFloatingPoint = true; ///< only with 32 bits

    std::string text() const;
    static std::optional<MixFormat> fromText(const std::string& text);

    /// A regular expression for the strings that fromText() reads.
    static std::string pattern();

    /// The platform's structure.
    WAVEFORMATEXTENSIBLE waveFormat() const;
};

inline bool operator==(const MixFormat& left, const MixFormat& right)
{
    return left.text() == right.text();
}
}
