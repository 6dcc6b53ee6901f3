/// @file
/// The JSON of settings. Not a public header.
///
///     {
///       "settingsVersion": 1,
///       "comment": "...",
///       "unit": "dB",
///       "endpoints": [
///         {
///           "name": "Speakers (Analog Audio)",
///           "flow": "render",
///           "volume": {"muted": false, "channels": [-18.5, -18.5]},
///           "controls": [
///             {"name": "Mic Boost", "muted": false, "channels": [0, 0], "id": "..."}
///           ],
///           "selectors": [
///             {"name": "Input", "inputName": "Line In", "input": 2, "id": "..."}
///           ],
///           "reference": "snv1:..."
///         }
///       ]
///     }
#pragma once

#include "sonavit/settings.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace sonavit::settingsfile
{
inline constexpr int version = 1;
inline constexpr const char* unit = "dB";
inline constexpr const char* comment = "Levels are in dB, such as -20.5. Change them, muted and inputName; what you "
                                       "remove is left as it is. Keep reference and id.";

inline constexpr std::size_t largestText = std::size_t{16} * 1024 * 1024;
inline constexpr std::size_t mostValues = 200000;
inline constexpr std::size_t deepestNesting = 64;

Result<Settings> read(std::string_view text);
std::string write(const Settings& settings);
}
