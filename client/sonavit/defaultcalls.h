/// @file
/// How problems name the platform calls that report a default endpoint. Not a public header.
#pragma once

#include "sonavit/endpoint.h"

#include <array>
#include <cstddef>

namespace sonavit
{
/// Returns the endpoint.
inline constexpr const char* callForDefault = "IMMDeviceEnumerator::GetDefaultAudioEndpoint";
/// Returns the id of that endpoint.
inline constexpr const char* callForIdOfDefault = "IMMDevice::GetId";

/// What distinguishes the calls for one default from those for the others: "eRender, eConsole".
inline const char* argumentsOf(Flow flow, Role role) noexcept
{
    constexpr std::array<std::array<const char*, allRoles.size()>, allFlows.size()> arguments = {
        {{"eRender, eConsole", "eRender, eMultimedia", "eRender, eCommunications"},
         {"eCapture, eConsole", "eCapture, eMultimedia", "eCapture, eCommunications"}}};
    return arguments[static_cast<std::size_t>(flow)][static_cast<std::size_t>(role)];
}
}
