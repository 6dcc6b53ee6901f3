/// @file
/// The JSON of settings. Not a public header.
///
///     {
///       "settingsVersion": 1,
///       "unit": "dB",
///       "endpoints": [
///         {
///           "name": "Speakers (Analog Audio)",
///           "reference": "snv1:...",
///           "volume": {"muted": false, "master": -18.5, "channels": [-18.5, -18.5]},
///           "controls": [
///             {"name": "Mic Boost", "id": "...", "muted": false, "channels": [0, 0]}
///           ],
///           "selectors": [
///             {"name": "Input", "id": "...", "input": 2, "inputName": "Line In"}
///           ]
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

inline constexpr std::size_t largestText = 16U * 1024 * 1024;
inline constexpr std::size_t mostValues = 200000;
inline constexpr std::size_t deepestNesting = 64;

Result<Settings> read(std::string_view text);
std::string write(const Settings& settings);
}
