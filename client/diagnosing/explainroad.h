/// @file
/// The search for the controls of an endpoint, step by step.
#pragma once

#include "client/diagnosing/explainwiring.h"

#include <cstddef>
#include <unordered_set>
#include <vector>

namespace sonavit::diagnosing
{
/// How the search for controls goes from an endpoint through the hardware: from its connectors over joins and signal
/// paths to others, breadth-first. It finds what System::controls() finds.
struct Road
{
    /// How the search has reached a connector.
    enum class By
    {
        start, ///< the endpoint's own
        join,
        path ///< a signal path
    };

    struct Stop
    {
        std::size_t connector = Wiring::none;
        By by = By::start;
        std::size_t from = Wiring::none; ///< the position of the stop before; none at the start
    };

    struct Level
    {
        std::size_t volume = Wiring::none;
        std::size_t mute = Wiring::none; ///< none if it has no mute node, or one without IAudioMute
        std::size_t stop = Wiring::none; ///< the position of the stop next to it; none for a level between two nodes
        bool isFed = false;              ///< next to a stop: whether it feeds that
        bool isControl = true;           ///< whether it offers IAudioVolumeLevel
        std::size_t distance = 0;        ///< of a level between two nodes: the stop that decides its place
    };

    std::vector<Stop> stops;
    std::vector<Level> levels;           ///< in the order of System::controls(), with volume nodes that offer no level
    std::unordered_set<std::size_t> fed; ///< the parts to which wires lead from its connectors
    std::unordered_set<std::size_t> feeding; ///< the parts from which wires lead to its connectors

    bool reaches(std::size_t connector) const;
    /// Whether the part is one of the levels.
    bool has(std::size_t volume) const;
};

Road roadOf(const Wiring& wiring, const sim::Device& endpoint);
}
