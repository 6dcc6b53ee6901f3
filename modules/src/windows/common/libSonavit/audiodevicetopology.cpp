#include "libSonavit/audiodevicetopology.h"

#include "COM/interfacequery.h"
#include "COM/resultcode.h"
#include "qor/logstatement.h"

namespace
{
/// The log channel of this module.
namespace topologylog
{
constexpr const char* channel = "libSonavit.audioDeviceTopology";
qor::LoggerSlot logger;
}
}

namespace
{
/// The platform's text is ours to free even when the call reports failure.
void readDeviceOwner(IDeviceTopology& topology, qor::String& owner)
{
    LPWSTR id = nullptr;
    const HRESULT result = topology.GetDeviceId(&id);
    if (id != nullptr)
    {
        owner = platform::ucs2(id);
        CoTaskMemFree(id);
    }
    if (FAILED(result))
        SONAVIT_LOG(topologylog, LOG_ERROR, out.append("Unable to retrieve device id from topology ").append(hexText(result)));
}

/// How a topology counts and gives one kind of component, and the words of the log for it.
template<class I>
struct ComponentKind
{
    HRESULT (STDMETHODCALLTYPE IDeviceTopology::*count)(UINT*);
    HRESULT (STDMETHODCALLTYPE IDeviceTopology::*component)(UINT, I**);
    const char* countRecord;
    const char* failureRecord;
};

constexpr ComponentKind<IConnector> connectorKind = {&IDeviceTopology::GetConnectorCount,
                                                     &IDeviceTopology::GetConnector,
                                                     "Num connector = ", "Unable to retrieve connector index "};
constexpr ComponentKind<ISubunit> subunitKind = {&IDeviceTopology::GetSubunitCount, &IDeviceTopology::GetSubunit,
                                                 "Subunit count = ", "Unable to retrieve subunit index "};

template<class I>
void readComponents(IDeviceTopology& topology, const ComponentKind<I>& kind, qor::Array<AudioComponent<I>>& components)
{
    UINT count = 0;
    (topology.*kind.count)(&count);
    SONAVIT_LOG(topologylog, LOG_INFO, out.append(kind.countRecord).append(decimalText(count)));
    for (UINT index = 0; index < count; ++index)
    {
        I* component = nullptr;
        const HRESULT result = (topology.*kind.component)(index, &component);
        if (FAILED(result))
        {
            SONAVIT_LOG(topologylog, LOG_ERROR, out.append(kind.failureRecord).append(decimalText(index)).append(" ").append(hexText(result)));
            continue;
        }
        components.append(AudioComponent<I>(component));
    }
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

// The label is that of the constructor above.
AudioDeviceTopology::AudioDeviceTopology(const AudioComponent<IConnector>& connector)
{
    SONAVIT_TRACE(topologylog, "AudioDeviceTopology::AudioDeviceTopology(IConnector* connector)");
    initialize(connector.component());
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
    SONAVIT_TRACE(topologylog, "AudioDeviceTopology::initialize(IDeviceTopology* deviceTopology)");
    clear();
    m_topology = topology;
    if (m_topology.get() == nullptr)
    {
        SONAVIT_LOG(topologylog, LOG_ERROR, out.append("Using NULL deviceTopology invalidates this object"));
        return false;
    }
    readDeviceOwner(*m_topology, m_deviceOwner);
    readComponents(*m_topology, connectorKind, m_connectors);
    readComponents(*m_topology, subunitKind, m_subunits);
    return true;
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
    const COMPtr<IPart>::pointer fromPart = from.part().part();
    const COMPtr<IPart>::pointer toPart = fromPart.get() == nullptr ? COMPtr<IPart>::pointer() : to.part().part();
    if (toPart.get() == nullptr)
    {
        SONAVIT_LOG(topologylog, LOG_WARNING, out.append("One of the connectors is invalid"));
        return false;
    }
    if (m_topology.get() == nullptr)
        return false; // nobody to ask; the caller's connector has lost its topology, which is reported there

    IPartsList* path = nullptr;
    if (FAILED(m_topology->GetSignalPath(fromPart.get(), toPart.get(), TRUE, &path)))
    {
        SONAVIT_LOG(topologylog, LOG_WARNING, out.append("No signal path from ").append(from.id()).append(" to ").append(to.id()));
        if (FAILED(m_topology->GetSignalPath(toPart.get(), fromPart.get(), TRUE, &path)))
        {
            SONAVIT_LOG(topologylog, LOG_WARNING, out.append("No signal path from ").append(to.id()).append(" to ").append(from.id()));
            return false;
        }
    }
    if (path != nullptr)
        path->Release();
    return true;
}

void AudioDeviceTopology::clear()
{
    SONAVIT_TRACE(topologylog, "AudioDeviceTopology::clear()");
    m_topology = nullptr;
    m_deviceOwner.clear();
    m_connectors.clear();
    m_subunits.clear();
}

bool AudioDeviceTopology::initialize(const COMPtr<IPart>::pointer& part)
{
    SONAVIT_TRACE(topologylog, "AudioDeviceTopology::initialize(COMPtr<IPart>::pointer& part)");
    if (part.get() == nullptr)
    {
        SONAVIT_LOG(topologylog, LOG_ERROR, out.append("Cannot use NULL part to get device topology"));
        return false;
    }
    IDeviceTopology* topology = nullptr;
    const HRESULT result = part->GetTopologyObject(&topology);
    if (FAILED(result))
        SONAVIT_LOG(topologylog, LOG_ERROR, out.append("GetTopologyObject fails ").append(hexText(result)));
    return initialize(COMPtr<IDeviceTopology>::pointer(topology)); // a nil one has its own message
}

template<class Interface>
bool AudioDeviceTopology::initializeHelper(const typename COMPtr<Interface>::pointer& obj)
{
    SONAVIT_TRACE(topologylog, "template <class Interface> bool AudioDeviceTopology::initializeHelper(Interface* obj)");
    clear();
    if (obj.get() == nullptr)
    {
        SONAVIT_LOG(topologylog, LOG_ERROR, out.append("Cannot use NULL as parameter"));
        return false;
    }
    IPart* part = nullptr;
    if (FAILED(interfacequery::query(*obj, part)))
    {
        SONAVIT_LOG(topologylog, LOG_ERROR, out.append("No part interface found"));
        return false;
    }
    return initialize(COMPtr<IPart>::pointer(part));
}
