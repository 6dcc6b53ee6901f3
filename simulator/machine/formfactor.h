/// @file
/// The form of an endpoint, which the platform makes from the kind of its jack.
#pragma once

#include "platform/coreaudio.h"

#include <cstdint>

namespace sim
{
/// The values of EndpointFormFactor, whose names the SDK's headers share with macros.
enum class FormFactor : std::uint32_t
{
    speakers = 1,
    lineLevel = 2,
    headphones = 3,
    microphone = 4,
    headset = 5,
    handset = 6,
    digitalPassthrough = 7,
    spdif = 8,
    display = 9,
    unknown = 10,
};

/// The form of an endpoint behind a jack of this kind.
FormFactor formFactorOf(const GUID& jack);
}
