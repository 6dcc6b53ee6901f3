#include "libSonavit/audiodevicetopology.h"

#include "libSonavit/audiodevicetopology/topologyreading.h"
#include "libSonavit/audiopart/partview.h"

#include <utility>

namespace
{
/// Whether a signal path runs from one connector to the other. Its list is released; what comes along with a failure is
/// ignored.
bool hasSignalPath(IDeviceTopology& topology, IPart* from, IPart* to)
{
    IPartsList* path = nullptr;
    if (FAILED(topology.GetSignalPath(from, to, TRUE, &path)))
        return false;
    if (path != nullptr)
        path->Release();
    return true;
}
}

AudioDeviceTopology::AudioDeviceTopology() = default;

AudioDeviceTopology::AudioDeviceTopology(const COMPtr<IDeviceTopology>::pointer& deviceTopology)
{
    SONAVIT_TRACE(topologylog, "AudioDeviceTopology::AudioDeviceTopology(IDeviceTopology* deviceTopology)");
    initialize(deviceTopology);
}

AudioDeviceTopology::AudioDeviceTopology(const COMPtr<ISubunit>::pointer& subunit)
{
    SONAVIT_TRACE(topologylog, "AudioDeviceTopology::AudioDeviceTopology(ISubunit* subunit)");
    initialize(subunit);
}

AudioDeviceTopology::AudioDeviceTopology(const COMPtr<IConnector>::pointer& connector)
{
    SONAVIT_TRACE(topologylog, "AudioDeviceTopology::AudioDeviceTopology(IConnector* connector)");
    initialize(connector);
}

// Required behaviour: the label is that of the constructor above.
AudioDeviceTopology::AudioDeviceTopology(const AudioComponent<IConnector>& connector)
{
    SONAVIT_TRACE(topologylog, "AudioDeviceTopology::AudioDeviceTopology(IConnector* connector)");
    topologyreading::initializeHelper(snapshot(), PartView::component(connector));
}

/// Takes what @p other holds: no reference is added or released, and nothing is copied. @p other is destroyed next.
AudioDeviceTopology::AudioDeviceTopology(AudioDeviceTopology& other, Taken) noexcept
    : m_deviceOwner(std::move(other.m_deviceOwner)),
      m_connectors(other.m_connectors, {}),
      m_subunits(other.m_subunits, {})
{
    m_topology.swap(other.m_topology);
}

AudioDeviceTopology::AudioDeviceTopology(const AudioDeviceTopology& other) = default;
AudioDeviceTopology::~AudioDeviceTopology() = default;
AudioDeviceTopology& AudioDeviceTopology::operator=(const AudioDeviceTopology& other) = default;

AudioDeviceTopology& AudioDeviceTopology::operator=(const COMPtr<IDeviceTopology>::pointer& topology)
{
    SONAVIT_TRACE(topologylog, "AudioDeviceTopology::operator=(const COMPtr<IDeviceTopology>::pointer& topology)");
    initialize(topology);
    return *this;
}

bool AudioDeviceTopology::initialize(const COMPtr<IDeviceTopology>::pointer& topology)
{
    return topologyreading::initialize(snapshot(), topology);
}

bool AudioDeviceTopology::initialize(const COMPtr<IConnector>::pointer& connector)
{
    return topologyreading::initializeHelper(snapshot(), connector.get());
}

bool AudioDeviceTopology::initialize(const COMPtr<ISubunit>::pointer& subunit)
{
    return topologyreading::initializeHelper(snapshot(), subunit.get());
}

bool AudioDeviceTopology::isInitialized() const
{
    return m_topology.get() != nullptr;
}

COMPtr<IDeviceTopology>::pointer AudioDeviceTopology::topology() const
{
    return m_topology;
}

qor::String AudioDeviceTopology::deviceOwner() const
{
    return m_deviceOwner;
}

qor::Array<AudioComponent<IConnector>> AudioDeviceTopology::connector() const
{
    return m_connectors;
}

qor::Array<AudioComponent<ISubunit>> AudioDeviceTopology::subunit() const
{
    return m_subunits;
}

bool AudioDeviceTopology::connectorsAreLinked(const AudioComponent<IConnector>& from,
                                              const AudioComponent<IConnector>& to) const
{
    SONAVIT_TRACE(topologylog, "AudioDeviceTopology::connectorsAreLinked");
    if (from == to)
    {
        SONAVIT_LOG(topologylog, LOG_WARNING, out.append("Function treats the same connectors as unlinked"));
        return false;
    }
    return topologyreading::haveSignalPath(m_topology.get(), from, to);
}

/// The fields, for the reading that this class shares with PassingTopology.
topologyreading::Snapshot<AudioComponent<IConnector>, AudioComponent<ISubunit>> AudioDeviceTopology::snapshot() noexcept
{
    return {m_topology, m_deviceOwner, m_connectors, m_subunits};
}

bool topologyreading::haveSignalPath(IDeviceTopology* topology, const AudioComponent<IConnector>& from,
                                     const AudioComponent<IConnector>& to)
{
    IPart* const fromPart = PartView::platformPart(PartView::part(from));
    IPart* const toPart = fromPart == nullptr ? nullptr : PartView::platformPart(PartView::part(to));
    if (toPart == nullptr)
    {
        SONAVIT_LOG(topologylog, LOG_WARNING, out.append("One of the connectors is invalid"));
        return false;
    }
    if (topology == nullptr)
        return false; // without a message: an initialize() that failed has logged it, an object by default has no
                      // topology

    if (hasSignalPath(*topology, fromPart, toPart))
        return true;
    SONAVIT_LOG(topologylog, LOG_WARNING, out.append("No signal path from ").append(from.id()).append(" to ").append(to.id()));
    if (hasSignalPath(*topology, toPart, fromPart))
        return true;
    SONAVIT_LOG(topologylog, LOG_WARNING, out.append("No signal path from ").append(to.id()).append(" to ").append(from.id()));
    return false;
}
