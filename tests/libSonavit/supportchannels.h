/// The log channels of the library's modules.
#pragma once

namespace channels
{
inline constexpr const char* audioDevice = "libSonavit.audioDeviceEndpoint";
inline constexpr const char* audioDeviceTopology = "libSonavit.audioDeviceTopology";
inline constexpr const char* audioPart = "libSonavit.audioPart";
inline constexpr const char* deviceEnumerator = "libSonavit.endpointDeviceEnumerator";
inline constexpr const char* soundCard = "libSonavit.soundcard";
inline constexpr const char* volumeChangeNotification = "libSonavit.volumeChangeNotification";
inline constexpr const char* volumeController = "libSonavit.volumecontroller";
}
