#include "libSonavit/audiodevicetopology.h"

#include "libSonavit/audiodevicetopology/topologyreading.h"
#include "libSonavit/audiodevicetopology/topologyview.h"
#include "libSonavit/audiopart/partview.h"

#include <utility>

using libSonavit::PartView;
using libSonavit::TopologyView;
namespace topologyreading = libSonavit::topologyreading;

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
    topologyreading::initializeHelper(TopologyView::fields(*this), PartView::component(connector));
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
    return topologyreading::initialize(TopologyView::fields(*this), topology);
}

bool AudioDeviceTopology::initialize(const COMPtr<IConnector>::pointer& connector)
{
    return initializeHelper<IConnector>(connector);
}

bool AudioDeviceTopology::initialize(const COMPtr<ISubunit>::pointer& subunit)
{
    return initializeHelper<ISubunit>(subunit);
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

template<class Interface>
bool AudioDeviceTopology::initializeHelper(const typename COMPtr<Interface>::pointer& obj)
{
    return topologyreading::initializeHelper(TopologyView::fields(*this), obj.get());
}
