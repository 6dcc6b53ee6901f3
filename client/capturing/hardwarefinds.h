/// @file
/// What a survey finds of hardware graphs, before the ids of all parts are final.
#pragma once

#include "client/capturing/failures.h"
#include "client/reading/handle.h"
#include "platform/coreaudio.h"
#include "simulator/machine/machine.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace sonavit::capturing
{
/// No part, or no device. In a list of parts: one that cannot be read.
inline constexpr std::size_t none = static_cast<std::size_t>(-1);

/// What a connector says of its far side.
struct FarSide
{
    bool isJoined = false;
    std::size_t part = none;           ///< the far connector
    std::optional<std::string> device; ///< what GetDeviceIdConnectedTo returns
};

/// A connector or a subunit. Other parts are named by their positions in the walk.
struct FoundPart
{
    std::size_t device = none;
    bool isConnector = false;
    bool isListed = false;   ///< its device's topology lists it
    bool isAsked = false;    ///< its data and its neighbours are known
    bool isFollowed = false; ///< its far side is known
    bool isNull = false;     ///< GetGlobalId has stored null
    bool isNameless = false; ///< GetGlobalId has failed
    std::string id;          ///< what GetGlobalId returned; empty: nothing yet
    std::string nearName;    ///< what a connector that is joined to it calls it
    std::optional<std::uint32_t> number;
    reading::Handle<IPart> part; ///< nil for a part of which only the id is known
    reading::Handle<IConnector> connector;
    sim::Connector record; ///< without what refers to other parts; of a subunit the data of a sim::Part
    std::vector<std::size_t> incoming;
    std::vector<std::size_t> outgoing;
    FarSide farSide;
    Failures identity; ///< failures of the questions for its ids
    Failures failures; ///< those of all others
};

/// The answers to the questions for signal paths from one connector to another.
struct FoundPath
{
    bool isThere = false;
    bool isMixed = false; ///< it is rejected when mixed paths are
    std::vector<std::size_t> through;
    std::optional<std::vector<std::size_t>> unmixed; ///< another path that is found when mixed ones are rejected
    Failures calls;
    Failures list; ///< failures of the list of its parts
};

/// An endpoint or an adapter.
struct FoundDevice
{
    std::string id;
    std::size_t endpoint = none; ///< its position among the machine's endpoints; none: it is an adapter
    sim::Adapter adapter;
    bool isStub = false;      ///< it cannot be opened
    bool isRefused = false;   ///< it has no topology because the call for it has failed
    bool isUncounted = false; ///< its connectors could not be counted
    reading::Handle<IDeviceTopology> topology;
    std::optional<HRESULT> idResult; ///< of IDeviceTopology::GetDeviceId, once that is asked
    sim::OptionalString reportedId;
    std::vector<std::size_t> connectors; ///< by their numbers in the topology
    std::vector<std::size_t> subunits;
    std::vector<std::size_t> met; ///< all its parts in the order in which the walk meets them
    std::unordered_map<std::uint32_t, std::size_t> numbers;
    std::map<std::pair<std::size_t, std::size_t>, FoundPath> paths; ///< by their ends
    Failures failures;
};
}
