/// Topologies that are read in passing; included by the library's source files only.
#pragma once

#include "libSonavit/audiodevicetopology/topologyreading.h"
#include "libSonavit/audiopart/partview.h"

namespace libSonavit
{
/// The graph of one device that an operation reads to learn one thing of it: who owns it, which connectors it has, or
/// whether a signal path joins two of them.
///
/// It makes the calls of an AudioDeviceTopology in the same order, leaves the same records, and owns the same
/// references for the same time; its connectors and subunits are PassingComponents.
/// @tparam Texts KeptTexts, KeptId or DroppedTexts
template<class Texts>
class PassingTopology
{
public:
    using Connector = PassingComponent<IConnector, Texts>;

    /// An empty object.
    PassingTopology() = default;

    explicit PassingTopology(const COMPtr<IDeviceTopology>::pointer& topology)
    {
        SONAVIT_TRACE(topologylog, "AudioDeviceTopology::AudioDeviceTopology(IDeviceTopology* deviceTopology)");
        topologyreading::initialize(fields(), topology);
    }

    explicit PassingTopology(const AudioComponent<IConnector>& connector)
    {
        SONAVIT_TRACE(topologylog, "AudioDeviceTopology::AudioDeviceTopology(IConnector* connector)");
        topologyreading::initializeHelper(fields(), PartView::component(connector));
    }

    PassingTopology(const PassingTopology&) = delete;
    PassingTopology& operator=(const PassingTopology&) = delete;

    /// As the assignment of @p topology to an AudioDeviceTopology.
    void read(const COMPtr<IDeviceTopology>::pointer& topology)
    {
        SONAVIT_TRACE(topologylog, "AudioDeviceTopology::operator=(const COMPtr<IDeviceTopology>::pointer& topology)");
        topologyreading::initialize(fields(), topology);
    }

    const qor::String& deviceOwner() const noexcept { return m_deviceOwner; }

    /// In the platform's order.
    const qor::Array<Connector>& connectors() const noexcept { return m_connectors; }

    /// As AudioDeviceTopology::connectorsAreLinked(), for two nodes of a connector map: their ids differ.
    bool nodesAreLinked(const AudioComponent<IConnector>& from, const AudioComponent<IConnector>& to) const
    {
        SONAVIT_TRACE(topologylog, "AudioDeviceTopology::connectorsAreLinked");
        return topologyreading::haveSignalPath(m_topology.get(), from, to);
    }

    /// As nodesAreLinked() while the log writes neither trace scopes nor messages of LOG_WARNING.
    bool nodesAreLinkedSilently(const AudioComponent<IConnector>& from, const AudioComponent<IConnector>& to) const
    {
        return topologyreading::haveSignalPathSilently(m_topology.get(), from, to);
    }

private:
    using Subunit = PassingComponent<ISubunit, Texts>;

    topologyreading::TopologyFields<Connector, Subunit> fields() noexcept
    {
        return {m_topology, m_deviceOwner, m_connectors, m_subunits};
    }

    COMPtr<IDeviceTopology>::pointer m_topology;
    qor::String m_deviceOwner;
    qor::Array<Connector> m_connectors;
    qor::Array<Subunit> m_subunits;
};
}
