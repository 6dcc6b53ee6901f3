#include "libSonavit/audiodevicetopology.h"

#include "COM/interfacequery.h"
#include "COM/resultcode.h"
#include "COM/tasktext.h"
#include "qor/logstatement.h"

namespace
{
/// The log channel of this module.
namespace topologylog
{
constexpr const char* channel = "libSonavit.audioDeviceTopology";
qor::LoggerSlot logger;
}

/// Reads the id of the device. A string that comes along with a failure code is used and freed like any other.
void readDeviceOwner(IDeviceTopology& topology, qor::String& owner)
{
    HRESULT result = S_OK;
    {
        TaskText id(TaskText::NullText::skipped);
        result = topology.GetDeviceId(id.put());
        if (id.get() != nullptr)
            owner = platform::ucs2(id.get());
    }
    if (FAILED(result))
        SONAVIT_LOG(topologylog, LOG_ERROR, out.append("Unable to retrieve device id from topology ").append(hexText(result)));
}

void readConnectors(IDeviceTopology& topology, qor::Array<AudioComponent<IConnector>>& connectors)
{
    UINT count = 0;
    topology.GetConnectorCount(&count);
    SONAVIT_LOG(topologylog, LOG_INFO, out.append("Num connector = ").append(decimalText(count)));
    for (UINT index = 0; index < count; ++index)
    {
        IConnector* connector = nullptr;
        const HRESULT result = topology.GetConnector(index, &connector);
        if (FAILED(result))
        {
            SONAVIT_LOG(topologylog, LOG_ERROR, out.append("Unable to retrieve connector index ").append(decimalText(index)).append(" ").append(hexText(result)));
            continue;
        }
        connectors.append(AudioComponent<IConnector>(connector));
    }
}

/// Repeats readConnectors() on purpose: the line number of a log record tells the two steps apart.
void readSubunits(IDeviceTopology& topology, qor::Array<AudioComponent<ISubunit>>& subunits)
{
    UINT count = 0;
    topology.GetSubunitCount(&count);
    SONAVIT_LOG(topologylog, LOG_INFO, out.append("Subunit count = ").append(decimalText(count)));
    for (UINT index = 0; index < count; ++index)
    {
        ISubunit* subunit = nullptr;
        const HRESULT result = topology.GetSubunit(index, &subunit);
        if (FAILED(result))
        {
            SONAVIT_LOG(topologylog, LOG_ERROR, out.append("Unable to retrieve subunit index ").append(decimalText(index)).append(" ").append(hexText(result)));
            continue;
        }
        subunits.append(AudioComponent<ISubunit>(subunit));
    }
}

/// Empties an id and two lists when its scope ends; what the scope has emptied already stays empty.
///
/// It also runs while an exception leaves the scope, so it allocates nothing: Array::clear() would ask for new storage.
/// A second Release that throws meanwhile ends the process.
class EmptyOnExit
{
public:
    EmptyOnExit(qor::String& id, qor::Array<AudioComponent<IConnector>>& connectors,
                qor::Array<AudioComponent<ISubunit>>& subunits) noexcept
        : m_id(id),
          m_connectors(connectors),
          m_subunits(subunits)
    {
    }

    EmptyOnExit(const EmptyOnExit&) = delete;
    EmptyOnExit& operator=(const EmptyOnExit&) = delete;

    ~EmptyOnExit()
    {
        m_id.clear();
        removeAll(m_connectors);
        removeAll(m_subunits);
    }

private:
    template<class T>
    static void removeAll(qor::Array<T>& list)
    {
        while (list.size() > 0)
            list.remove(0);
    }

    qor::String& m_id;
    qor::Array<AudioComponent<IConnector>>& m_connectors;
    qor::Array<AudioComponent<ISubunit>>& m_subunits;
};

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
    readConnectors(*m_topology, m_connectors);
    readSubunits(*m_topology, m_subunits);
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
    // The language demands that the handle is released if a temporary of its initializer throws at its end; clang 14
    // does not do it. So each copy of a part is on the heap, and ends by a statement of its own once the handle is
    // complete.
    OwnedPointer<AudioPart> copy(new AudioPart(from.part()));
    const COMPtr<IPart>::pointer fromPart = copy->part();
    copy = nullptr;
    if (fromPart.get() != nullptr)
        copy = new AudioPart(to.part());
    const COMPtr<IPart>::pointer toPart = copy.get() == nullptr ? COMPtr<IPart>::pointer() : copy->part();
    copy = nullptr;
    if (toPart.get() == nullptr)
    {
        SONAVIT_LOG(topologylog, LOG_WARNING, out.append("One of the connectors is invalid"));
        return false;
    }
    if (m_topology.get() == nullptr)
        return false; // without a message: an initialize() that failed has logged it, an object by default has no
                      // topology

    if (hasSignalPath(*m_topology, fromPart.get(), toPart.get()))
        return true;
    SONAVIT_LOG(topologylog, LOG_WARNING, out.append("No signal path from ").append(from.id()).append(" to ").append(to.id()));
    if (hasSignalPath(*m_topology, toPart.get(), fromPart.get()))
        return true;
    SONAVIT_LOG(topologylog, LOG_WARNING, out.append("No signal path from ").append(to.id()).append(" to ").append(from.id()));
    return false;
}

/// Releases the topology, then empties id and lists, in this order. The object is empty afterwards even if a Release
/// throws.
void AudioDeviceTopology::clear()
{
    SONAVIT_TRACE(topologylog, "AudioDeviceTopology::clear()");
    const EmptyOnExit rest(m_deviceOwner, m_connectors, m_subunits);
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
    // A pointer that comes along with the failure is adopted: the result does not end the operation.
    return initialize(COMPtr<IDeviceTopology>::pointer(topology)); // which logs a nil topology, too
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
        return false; // a pointer along with the failure code is ignored
    }
    return initialize(COMPtr<IPart>::pointer(part));
}
