/// @file
/// The level and the mute that an endpoint has in common with the part of an adapter that implements them.
///
/// The part holds them. The volume of the endpoint holds what was asked of the endpoint last, which may lie between two
/// steps of the part: that is what the endpoint's clients read as long as the part is at the step nearest to it.
#pragma once

#include "simulator/core/hardware.h"

#include <map>
#include <string>
#include <vector>

namespace sim
{
/// The volume of an endpoint that has one, as its clients see it.
EndpointVolume shownVolume(const Hardware& hardware, const Endpoint& endpoint);

/// Changes the volume of an endpoint, and the parts that implement it, to @p wanted.
void changeVolume(const Hardware& hardware, Endpoint& endpoint, const EndpointVolume& wanted);

/// What has new values: endpoints by id, and parts by id for each kind of control.
struct LevelChanges
{
    std::vector<std::string> endpoints;
    std::vector<std::string> levels;
    std::vector<std::string> mutes;
};

/// The levels of an endpoint or a part, and of all endpoints and parts that share them, before a change. To be used
/// under the machine's lock.
class LevelWatch
{
public:
    LevelWatch(Hardware& hardware, Endpoint& endpoint);
    /// For a change of the part itself, which replaces what was asked of the endpoints that it implements.
    LevelWatch(Hardware& hardware, const Part& part);

    /// To be called after the change.
    LevelChanges changes(const Hardware& hardware) const;

private:
    void watch(Hardware& hardware, const std::string& partId);

    std::map<Endpoint*, EndpointVolume> m_volumes;
    std::map<std::string, Subunit> m_parts; ///< of each part its controls alone
    std::string m_changedPart;              ///< empty: an endpoint changes
};
}
