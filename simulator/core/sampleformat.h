/// @file
/// Formats of streams: those that programs ask for, and those that an endpoint has.
#pragma once

#include "simulator/machine/machine.h"

#include <cstdint>
#include <optional>
#include <string>

namespace sim
{
/// A format of linear samples, whichever structure describes it.
struct SampleFormat
{
    std::uint32_t rate = 0;
    std::uint32_t channels = 0;
    std::uint32_t containerBits = 0;
    std::uint32_t validBits = 0;
    bool isFloatingPoint = false;

    std::uint32_t frameBytes() const { return channels * containerBits / 8; }

    /// "32f/48000/2", "16/48000/2", "24of32/48000/2".
    std::string text() const;
};

bool operator==(const SampleFormat& left, const SampleFormat& right);

/// The format that @p format describes; no value if its samples are not linear or its members contradict each other.
std::optional<SampleFormat> sampleFormat(const WAVEFORMATEX& format);

/// The format of the shared engine and that of the device itself. No value if the endpoint has no readable device
/// format and, for the mix format, the machine does not name one.
std::optional<WAVEFORMATEXTENSIBLE> mixFormatOf(const Endpoint& endpoint);
std::optional<SampleFormat> deviceFormatOf(const Endpoint& endpoint);

/// The periods of the endpoint. Without figures of its own: 10 ms rounded up to a multiple of 32 frames, the 128 bytes
/// that High Definition Audio transfers at once in 16-bit stereo, and 3 ms.
DevicePeriods periodsOf(const Endpoint& endpoint);

/// Whether the shared engine takes @p format without conversion: the rate and the channels are those of its mix format.
bool sharedEngineTakes(const Endpoint& endpoint, const SampleFormat& format);

/// Whether an exclusive stream may have @p format: it is the device format.
bool deviceTakes(const Endpoint& endpoint, const SampleFormat& format);
}
