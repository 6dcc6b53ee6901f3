#include "simulator/objects/stream/agreement.h"

#include "simulator/machine/deviceformat.h"

#include <algorithm>
#include <cstdint>

namespace sim
{
namespace
{
constexpr REFERENCE_TIME second = 10000000;
constexpr REFERENCE_TIME longestPushBuffer = 2 * second;
constexpr REFERENCE_TIME longestPullBuffer = 5 * second;
constexpr REFERENCE_TIME longestPeriod = 5 * second;
constexpr std::uint32_t packetBytes = 128; ///< of High Definition Audio: an event-driven buffer is whole packets

constexpr DWORD knownFlags = AUDCLNT_STREAMFLAGS_CROSSPROCESS | AUDCLNT_STREAMFLAGS_LOOPBACK |
                             AUDCLNT_STREAMFLAGS_EVENTCALLBACK | AUDCLNT_STREAMFLAGS_NOPERSIST |
                             AUDCLNT_STREAMFLAGS_RATEADJUST | AUDCLNT_STREAMFLAGS_SRC_DEFAULT_QUALITY |
                             AUDCLNT_STREAMFLAGS_AUTOCONVERTPCM | AUDCLNT_SESSIONFLAGS_EXPIREWHENUNOWNED |
                             AUDCLNT_SESSIONFLAGS_DISPLAY_HIDE | AUDCLNT_SESSIONFLAGS_DISPLAY_HIDEWHENEXPIRED;

static_assert(2 * (longestPeriod / second) * maximumRate <= 0xFFFFFFFF, "the frames of two periods fit in 32 bits");

std::uint32_t roundedFrames(REFERENCE_TIME time, std::uint32_t rate)
{
    return static_cast<std::uint32_t>((time * rate + second / 2) / second);
}

std::uint32_t wholeFrames(REFERENCE_TIME time, std::uint32_t rate)
{
    return static_cast<std::uint32_t>((time * rate + second - 1) / second);
}

/// Whether an endpoint could have the format, so that the engine converts it.
bool isUsual(const SampleFormat& format)
{
    return format.rate <= maximumRate && format.channels <= maximumFormatChannels;
}

bool has(const StreamRequest& request, DWORD flag)
{
    return (request.flags & flag) != 0;
}

HRESULT checkMode(const Endpoint& endpoint, const StreamRequest& request)
{
    const bool isExclusive = request.mode == AUDCLNT_SHAREMODE_EXCLUSIVE;
    if (!isExclusive && request.mode != AUDCLNT_SHAREMODE_SHARED)
        return E_INVALIDARG;
    if ((request.flags & ~knownFlags) != 0)
        return AUDCLNT_E_INVALID_STREAM_FLAG;
    if (isExclusive && has(request, AUDCLNT_STREAMFLAGS_LOOPBACK | AUDCLNT_STREAMFLAGS_CROSSPROCESS))
        return E_INVALIDARG;
    if (has(request, AUDCLNT_STREAMFLAGS_LOOPBACK) && endpoint.flow == eCapture)
        return AUDCLNT_E_WRONG_ENDPOINT_TYPE;
    return request.duration < 0 || request.periodicity < 0 ? E_INVALIDARG : S_OK;
}

HRESULT agreeOnFormat(const Endpoint& endpoint, const StreamRequest& request, StreamPlan& plan)
{
    const std::optional<SampleFormat> format = sampleFormat(*request.format);
    if (!format)
        return refusal(*request.format);
    plan.format = *format;
    if (!isUsual(*format))
        return AUDCLNT_E_UNSUPPORTED_FORMAT;
    const bool isTaken = plan.isExclusive
                             ? deviceTakes(endpoint, *format)
                             : has(request, AUDCLNT_STREAMFLAGS_AUTOCONVERTPCM) || sharedEngineTakes(endpoint, *format);
    return isTaken ? S_OK : AUDCLNT_E_UNSUPPORTED_FORMAT;
}

/// In shared mode the engine's period holds; durations that it cannot keep are replaced, not refused.
HRESULT agreeOnSharedBuffer(const Endpoint& endpoint, const StreamRequest& request, StreamPlan& plan)
{
    plan.periodFrames = enginePeriod(endpoint, plan.format.rate);
    if (request.enginePeriod && *request.enginePeriod != plan.periodFrames)
        return AUDCLNT_E_INVALID_DEVICE_PERIOD;
    const REFERENCE_TIME duration = std::min(request.duration, longestPushBuffer);
    plan.bufferFrames = std::max(wholeFrames(duration, plan.format.rate), 2 * plan.periodFrames);
    return S_OK;
}

/// An event-driven exclusive stream has two buffers of one period each.
HRESULT agreeOnPeriodBuffer(const DevicePeriods& periods, const StreamRequest& request, StreamPlan& plan)
{
    if (request.duration != request.periodicity)
        return AUDCLNT_E_BUFDURATION_PERIOD_NOT_EQUAL;
    if (request.duration < REFERENCE_TIME{periods.minimum} || request.duration > longestPullBuffer)
        return AUDCLNT_E_BUFFER_SIZE_ERROR;
    plan.bufferFrames = std::max(roundedFrames(request.duration, plan.format.rate), 1u);
    const std::uint32_t requested = plan.bufferFrames;
    while (std::uint64_t{plan.bufferFrames} * plan.format.frameBytes() % packetBytes != 0)
        ++plan.bufferFrames;
    plan.periodFrames = plan.bufferFrames;
    return plan.bufferFrames == requested ? S_OK : AUDCLNT_E_BUFFER_SIZE_NOT_ALIGNED;
}

HRESULT agreeOnExclusiveBuffer(const DevicePeriods& periods, const StreamRequest& request, StreamPlan& plan)
{
    if (request.periodicity > longestPeriod)
        return AUDCLNT_E_INVALID_DEVICE_PERIOD;
    if (plan.usesEvents)
        return agreeOnPeriodBuffer(periods, request, plan);
    if (request.duration > longestPushBuffer)
        return AUDCLNT_E_BUFFER_SIZE_ERROR;
    const REFERENCE_TIME period = request.periodicity == 0
                                      ? REFERENCE_TIME{periods.usual}
                                      : std::max(request.periodicity, REFERENCE_TIME{periods.minimum});
    plan.periodFrames = std::max(roundedFrames(period, plan.format.rate), 1u);
    plan.bufferFrames = std::max(wholeFrames(request.duration, plan.format.rate), 2 * plan.periodFrames);
    return S_OK;
}
}

std::uint32_t enginePeriod(const Endpoint& endpoint, std::uint32_t rate)
{
    return std::max(roundedFrames(periodsOf(endpoint).usual, rate), 1u);
}

HRESULT refusal(const WAVEFORMATEX& format)
{
    const bool hasFrames = format.nChannels != 0 && format.nSamplesPerSec != 0 && format.nBlockAlign != 0;
    return hasFrames ? AUDCLNT_E_UNSUPPORTED_FORMAT : E_INVALIDARG;
}

HRESULT agree(const Machine& machine, const Endpoint& endpoint, const StreamRequest& request, StreamPlan& plan)
{
    if (request.format == nullptr)
        return E_POINTER;
    HRESULT result = checkMode(endpoint, request);
    if (FAILED(result))
        return result;
    plan.isExclusive = request.mode == AUDCLNT_SHAREMODE_EXCLUSIVE;
    plan.usesEvents = has(request, AUDCLNT_STREAMFLAGS_EVENTCALLBACK);
    plan.captures = endpoint.flow == eCapture || has(request, AUDCLNT_STREAMFLAGS_LOOPBACK);
    if (endpoint.flow == eCapture && machine.captureAccess == CaptureAccess::denied)
        return E_ACCESSDENIED;
    result = agreeOnFormat(endpoint, request, plan);
    if (FAILED(result))
        return result;
    return plan.isExclusive ? agreeOnExclusiveBuffer(periodsOf(endpoint), request, plan)
                            : agreeOnSharedBuffer(endpoint, request, plan);
}
}
