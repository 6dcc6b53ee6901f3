/// @file
/// The parts of a surveyed machine, and how they are connected.
#pragma once

#include "client/capturing/survey.h"
#include "sonavit/ids.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace sonavit::diagnosing
{
/// The hardware of a survey as the search for controls sees it: parts whose ids differ in case alone are one, the first
/// of them. The survey must outlive it.
class Wiring
{
public:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    /// A connector or a subunit. Other parts are named by their positions in the wiring.
    struct Node
    {
        const sim::Device* device = nullptr;
        const sim::Part* part = nullptr;
        const sim::Connector* connector = nullptr; ///< null for a subunit
        std::size_t position = none;               ///< of a connector: among those of its device
        std::size_t peer = none;                   ///< of a connector: that on the far side
        bool isNextToConnector = false;            ///< a connector lists it, or it is one
        bool isTypeKnown = true;
        std::vector<std::size_t> incoming; ///< those that feed this part, as it lists them
        std::vector<std::size_t> outgoing; ///< those that it feeds, as it lists them
        std::vector<std::size_t> sources;  ///< those that list it among the parts that they feed

        bool isOfType(const GUID& type) const;
    };

    explicit Wiring(const capturing::Survey& survey);

    const std::vector<Node>& nodes() const { return m_nodes; }
    const Node& operator[](std::size_t node) const { return m_nodes[node]; }
    /// The connectors of a device, in their order.
    std::vector<std::size_t> connectorsOf(const sim::Device& device) const;
    /// The devices to which joins lead from endpoints of @p ids, and these endpoints.
    std::vector<const sim::Device*> devicesOf(const std::vector<EndpointId>& ids) const;
    /// The connectors of the same device to or from which a signal path leads that passes no sum, in their order.
    std::vector<std::size_t> linkedWith(std::size_t connector) const;
    /// The parts that wires connect with this one, those that feed it first.
    std::vector<std::size_t> wired(std::size_t node) const;
    /// What the client layer calls the part: its id, or the id of its device with the part's number there.
    std::string idOf(std::size_t node) const;

private:
    void addDevice(const sim::Device& device);
    void connect(const capturing::Survey& survey);
    void forgetUnseenJoins();
    void addSources();
    std::size_t find(const std::string& id) const;
    std::vector<std::size_t> find(const std::vector<std::string>& ids) const;
    bool isNamed(std::size_t node, const std::string& id) const;
    static std::uint64_t pathOf(std::size_t from, std::size_t to);
    bool areLinked(std::size_t one, std::size_t other) const;

    std::vector<Node> m_nodes;
    std::unordered_map<std::string, std::size_t> m_places;
    std::unordered_set<std::uint64_t> m_paths;
    std::vector<const sim::Device*> m_devices;
};

/// The endpoint of the survey with that id; null if it has none.
const sim::Endpoint* surveyedEndpoint(const capturing::Survey& survey, const EndpointId& id);
}
