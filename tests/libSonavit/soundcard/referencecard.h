#pragma once

#include "simulator/machine/machine.h"

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace support
{
/// A hardware control as the reference finds it. Levels are unique in a random machine, so the level names the control.
struct ReferenceControl
{
    float level;
    int mute; ///< -1: none
    std::string ownerName;
    GUID ownerType;
};

bool operator==(const ReferenceControl& left, const ReferenceControl& right);
void PrintTo(const ReferenceControl& control, std::ostream* out);

/// The result of the question for an endpoint's controls.
struct ReferenceAnswer
{
    std::vector<ReferenceControl> controls; ///< until the exception, if there was one
    bool leftTheGraph = false;              ///< qor::IndexOutOfBounds
};

/// One card, computed in the simplest way from the data of a machine alone, to be compared with the card that the
/// library finds through the platform's interfaces.
class ReferenceCard
{
public:
    ReferenceCard(const sim::Machine& machine, const std::string& instancePath);

    const std::vector<const sim::Endpoint*>& playback() const { return m_playback; }
    const std::vector<const sim::Endpoint*>& record() const { return m_record; }

    /// Ids of the connectors of the map in their order, and the links of each.
    const std::vector<std::string>& nodes() const { return m_nodes; }
    const std::vector<std::vector<std::uint32_t>>& links() const { return m_links; }

    /// Ids of the devices on the adapter side, in the order in which they were found.
    std::vector<std::string> internalDevices() const;

    /// Number of input selectors on these devices.
    std::size_t selectors() const;

    ReferenceAnswer controlsOf(const sim::Endpoint& endpoint) const;

private:
    std::uint32_t find(const std::string& connectorId) const;
    void enter(const sim::Device& device);
    void expand(std::size_t node, std::vector<std::string>& known);
    void connect(std::size_t node);
    void controlsAt(const std::string& connectorId, std::vector<ReferenceControl>& controls) const;

    const sim::Machine& m_machine;
    std::vector<const sim::Endpoint*> m_playback;
    std::vector<const sim::Endpoint*> m_record;
    std::vector<const sim::Device*> m_internal;
    std::vector<std::string> m_nodes;
    std::vector<std::vector<std::uint32_t>> m_links;
};
}
