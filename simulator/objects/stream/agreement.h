/// @file
/// What IAudioClient::Initialize agrees on or refuses.
#pragma once

#include "simulator/core/audiostream.h"
#include "simulator/machine/machine.h"

namespace sim
{
/// The arguments of Initialize, or of InitializeSharedAudioStream.
struct StreamRequest
{
    AUDCLNT_SHAREMODE mode = AUDCLNT_SHAREMODE_SHARED;
    DWORD flags = 0;
    REFERENCE_TIME duration = 0;
    REFERENCE_TIME periodicity = 0;
    const WAVEFORMATEX* format = nullptr;
    std::optional<std::uint32_t> enginePeriod; ///< of InitializeSharedAudioStream, in frames
};

/// Stores what both sides agree on in @p plan. After AUDCLNT_E_BUFFER_SIZE_NOT_ALIGNED its bufferFrames is the next
/// size that is aligned.
HRESULT agree(const Machine& machine, const Endpoint& endpoint, const StreamRequest& request, StreamPlan& plan);

/// The frames of the shared engine's period at @p rate.
std::uint32_t enginePeriod(const Endpoint& endpoint, std::uint32_t rate);

/// A well-formed format that no endpoint has, or one without frames.
HRESULT refusal(const WAVEFORMATEX& format);
}
