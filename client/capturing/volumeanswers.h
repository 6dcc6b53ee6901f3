/// @file
/// What an IAudioEndpointVolume answers, and the volume of a machine that answers so.
#pragma once

#include "client/capturing/recorder.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sonavit::capturing
{
/// A level as both scales have it. No value: it could not be read, or is not a finite number.
struct LevelAnswers
{
    std::optional<float> level; ///< decibels
    std::optional<float> scalar;
};

struct RangeAnswers
{
    float minimum = 0;
    float maximum = 0;
    float step = 0;
};

struct StepAnswers
{
    std::uint32_t step = 0;
    std::uint32_t count = 0;
};

struct VolumeAnswers
{
    std::string endpoint; ///< id
    std::optional<RangeAnswers> range;
    std::vector<LevelAnswers> channels;
    LevelAnswers master;
    bool muted = false;
    std::optional<StepAnswers> steps;
    std::uint32_t hardwareSupport = 0;
};

/// Asks the endpoint for all of it; no value if it gives no volume.
std::optional<VolumeAnswers> askVolume(IMMDevice& device, const std::string& endpointId, Recorder& recorder);

/// The taper that the levels show; no value if they do not say it, as all are at an end of the range.
std::optional<sim::Taper> shownTaper(const VolumeAnswers& answers);

/// The volume that answers so.
/// @param taper what shownTaper() returned, or what stands for it
sim::EndpointVolume volumeOf(const VolumeAnswers& answers, sim::Taper taper, Recorder& recorder);
}
