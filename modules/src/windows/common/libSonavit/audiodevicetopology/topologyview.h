/// Topologies without the copies that their public operations hand out; included by the library's source files only.
#pragma once

#include "libSonavit/audiodevicetopology.h"
#include "libSonavit/audiodevicetopology/topologyreading.h"

namespace libSonavit
{
/// What the library itself reads of topologies.
class TopologyView
{
public:
    /// The platform's topology, as topology(), by reference; may be nil.
    static const COMPtr<IDeviceTopology>::pointer& handle(const AudioDeviceTopology& topology)
    {
        return topology.m_topology;
    }

    /// The connectors of @p topology, as connector(), by reference.
    static const qor::Array<AudioComponent<IConnector>>& connectors(const AudioDeviceTopology& topology)
    {
        return topology.m_connectors;
    }

    /// The subunits of @p topology, as subunit(), by reference.
    static const qor::Array<AudioComponent<ISubunit>>& subunits(const AudioDeviceTopology& topology)
    {
        return topology.m_subunits;
    }

    /// Where @p topology stores what it reads.
    static topologyreading::TopologyFields<AudioComponent<IConnector>, AudioComponent<ISubunit>> fields(
        AudioDeviceTopology& topology) noexcept
    {
        return {topology.m_topology, topology.m_deviceOwner, topology.m_connectors, topology.m_subunits};
    }

    /// What @p topology holds: no reference is added or released, and nothing is copied. @p topology is destroyed next.
    static AudioDeviceTopology take(AudioDeviceTopology& topology) noexcept
    {
        return AudioDeviceTopology(topology, AudioDeviceTopology::Taken());
    }
};
}
