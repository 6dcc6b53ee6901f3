/// @file
/// Which endpoints of this computer saved settings are about.
#pragma once

#include "sonavit/result.h"
#include "sonavit/settings.h"
#include "sonavit/snapshot.h"

#include <string>
#include <vector>

namespace sonavit::changing
{
/// An endpoint of the settings, and what it is on this computer.
struct SettingPlace
{
    const Settings::EndpointSetting* setting;
    std::string name; ///< for the report
    Result<CardEndpoint> now;
    std::string recognition; ///< as RestoredSetting::recognition
};

/// The places of all endpoints of @p settings, which must outlive them, in their order.
///
/// Settings of several endpoints may mean the same one, because the device of one has gone. It gets those that fit it
/// best, so that no device gets what belongs to another one; if several fit equally well, it gets none.
std::vector<SettingPlace> placesOf(const Settings& settings, const Snapshot& snapshot);
}
