/// @file
/// Values made of the walked hardware, with the levels, mutes and selections of now.
#pragma once

#include "client/reading/hardwaremap.h"
#include "client/reading/hardwaresearch.h"
#include "client/reading/judge.h"
#include "sonavit/control.h"
#include "sonavit/graph.h"
#include "sonavit/snapshot.h"

#include <cstddef>
#include <unordered_set>
#include <vector>

namespace sonavit::reading
{
/// @p problems, each once: a call that is made again may fail again.
std::vector<Problem> withoutRepeats(const std::vector<Problem>& problems);

/// Makes values, and remembers which of the walk's problems they contain.
class HardwareValues
{
public:
    explicit HardwareValues(HardwareMap& map) : m_map(map) {}

    Graph graph();
    std::vector<Control> controls(const EndpointId& endpoint);
    std::vector<Selector> selectors(const std::vector<EndpointId>& endpoints);
    Hardware hardware(const CardId& card, const std::vector<EndpointId>& endpoints);

private:
    /// The problems of the walk with the devices that belong to the endpoints, but for those with the parts whose
    /// problems the values contain.
    std::vector<Problem> otherProblems(const std::vector<EndpointId>& endpoints) const;
    Control control(const ControlPlace& place);
    Selector selector(const SelectorPlace& place);
    SelectorInput input(std::size_t part) const;
    std::size_t sourceConnector(std::size_t part) const;
    Graph::Part graphPart(std::size_t part, std::vector<Problem>& problems);
    std::vector<Graph::Edge> paths();
    /// Adds the walk's problems with a part.
    void tell(std::size_t part, std::vector<Problem>& problems);
    void tellOfMute(std::size_t level, std::vector<Problem>& problems);

    HardwareMap& m_map;
    std::unordered_set<std::size_t> m_told; ///< the parts whose problems the values contain
};
}
