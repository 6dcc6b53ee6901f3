/// @file
/// The volume of an endpoint, with the object model's controller.
#pragma once

#include "libSonavit/audiodeviceendpoint.h"
#include "sonavit/problem.h"
#include "sonavit/volume.h"

#include <optional>
#include <string>
#include <vector>

namespace sonavit::model
{
/// The volume of @p device: levels in whole percent, and no answer whether the device itself attenuates. No value if
/// IAudioEndpointVolume cannot be activated, as on endpoints that are not present; the object model gives every
/// endpoint a controller, whether the interface is behind it or not.
///
/// The controller's readers return a start value if the platform fails, so the platform is asked first whether the
/// value can be read.
/// @param id of the endpoint, for @p problems, which are added
std::optional<Volume> readVolume(AudioDevice& device, const std::string& id, std::vector<Problem>& problems);
}
