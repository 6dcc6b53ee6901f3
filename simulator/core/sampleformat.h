/// @file
/// Formats of streams: those that programs ask for, and those that an endpoint has.
#pragma once

#include "simulator/machine/machine.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

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

/// The format of the shared engine: a WAVEFORMATEX and its further bytes. Nothing if the endpoint has no readable
/// device format and the machine does not name a mix format.
std::vector<std::uint8_t> mixFormatOf(const Endpoint& endpoint);

/// What streams can use of the mix format, and the format of the device itself; no value if there is none or its
/// samples are not linear.
std::optional<SampleFormat> mixSamplesOf(const Endpoint& endpoint);
std::optional<SampleFormat> deviceFormatOf(const Endpoint& endpoint);

/// The periods of the endpoint. Without figures of its own: 10 ms rounded up to a multiple of 32 frames, the 128 bytes
/// that High Definition Audio transfers at once in 16-bit stereo, and 3 ms.
DevicePeriods periodsOf(const Endpoint& endpoint);

/// Whether the shared engine takes @p format without conversion: the rate and the channels are those of its mix format.
bool sharedEngineTakes(const Endpoint& endpoint, const SampleFormat& format);

/// Whether an exclusive stream may have @p format: it is the device format.
bool deviceTakes(const Endpoint& endpoint, const SampleFormat& format);
}
