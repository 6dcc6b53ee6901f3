/// @file
/// The hardware graph of one device.
#pragma once

#include "comptr.h"

#include <string>
#include <vector>

namespace direct
{
/// A connector or a node, with what it reports about itself.
struct Part
{
    ComPtr<IPart> part;
    GUID subType = {};
    std::u16string globalId;
    std::u16string name;
};

/// A part under its own interface.
template<class I>
struct Component
{
    ComPtr<I> component;
    Part part;
};

struct Topology
{
    ComPtr<IDeviceTopology> topology;
    std::u16string deviceId;
    std::vector<Component<IConnector>> connectors;
    std::vector<Component<ISubunit>> subunits;
};

Part readPart(ComPtr<IPart> part);

template<class I>
Component<I> readComponent(ComPtr<I> component)
{
    Component<I> result;
    result.part = readPart(component.template as<IPart>());
    result.component = std::move(component);
    return result;
}

/// Empty for a null @p topology.
Topology readTopology(ComPtr<IDeviceTopology> topology);
/// Of the device that contains @p connector.
Topology readTopologyOf(const Component<IConnector>& connector);

using Neighbours = HRESULT (STDMETHODCALLTYPE IPart::*)(IPartsList** list);

/// The parts next to @p part on one side: &IPart::EnumPartsIncoming or &IPart::EnumPartsOutgoing.
std::vector<Part> readNeighbours(const Part& part, Neighbours side);

/// Whether a signal path leads from one of them to the other.
bool areLinked(const Topology& topology, const Part& from, const Part& to);
}
