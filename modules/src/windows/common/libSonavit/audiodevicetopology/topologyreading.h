/// How the graph of a device is read; included by the library's source files only.
#pragma once

#include "COM/comptr.h"
#include "COM/interfacequery.h"
#include "COM/resultcode.h"
#include "COM/tasktext.h"
#include "libSonavit/audiodevicetopology/log.h"
#include "libSonavit/audiopart.h"
#include "libSonavit/audiopart/passingcomponent.h"
#include "platform/coreaudio.h"
#include "qor/array.h"
#include "qor/string.h"

/// One way of reading for both kinds of snapshots: AudioDeviceTopology, which callers keep, and PassingTopology.
namespace libSonavit::topologyreading
{
/// The fields of a topology, in which its snapshot is stored.
template<class Connector, class Subunit>
struct TopologyFields
{
    COMPtr<IDeviceTopology>::pointer& topology;
    qor::String& deviceOwner;
    qor::Array<Connector>& connectors;
    qor::Array<Subunit>& subunits;
};

/// Removes all elements and keeps the block of the list.
template<class T>
void removeAll(qor::Array<T>& list)
{
    while (list.size() > 0)
        list.remove(0);
}

/// Makes a list empty: one that is kept gets a new block, one that is read in passing keeps its block.
template<class T>
void clear(qor::Array<T>& list)
{
    list.clear();
}

template<class I, class Texts>
void clear(qor::Array<PassingComponent<I, Texts>>& list)
{
    removeAll(list);
}

/// Appends what is read of @p object to a list. With @p isSilent no trace scope writes anything: a component that is
/// read in passing does without them.
template<class I, class T>
void append(I* object, bool, qor::Array<T>& list)
{
    partsnapshot::append(object, list);
}

template<class I, class Texts>
void append(I* object, bool isSilent, qor::Array<PassingComponent<I, Texts>>& list)
{
    if (isSilent)
        partsnapshot::append(typename PassingComponent<I, Texts>::Untraced{object}, list);
    else
        partsnapshot::append(object, list);
}

/// Empties an id and two lists when its scope ends; what the scope has emptied already stays empty.
///
/// It also runs while an exception leaves the scope, so it allocates nothing: Array::clear() would ask for new storage.
/// A second Release that throws meanwhile ends the process.
template<class Connector, class Subunit>
class EmptyOnExit
{
public:
    explicit EmptyOnExit(const TopologyFields<Connector, Subunit>& fields) noexcept : m_fields(fields) {}
    EmptyOnExit(const EmptyOnExit&) = delete;
    EmptyOnExit& operator=(const EmptyOnExit&) = delete;

    ~EmptyOnExit()
    {
        m_fields.deviceOwner.clear();
        removeAll(m_fields.connectors);
        removeAll(m_fields.subunits);
    }

private:
    const TopologyFields<Connector, Subunit>& m_fields;
};

/// Releases the topology, then empties id and lists, in this order. The snapshot is empty afterwards even if a Release
/// throws.
template<class Connector, class Subunit>
void clear(const TopologyFields<Connector, Subunit>& fields)
{
    SONAVIT_TRACE(topologylog, "AudioDeviceTopology::clear()");
    const EmptyOnExit<Connector, Subunit> rest(fields);
    fields.topology = nullptr;
    fields.deviceOwner.clear();
    clear(fields.connectors);
    clear(fields.subunits);
}

/// Reads the id of the device. A string that comes along with a failure code is used and freed like any other.
inline void readDeviceOwner(IDeviceTopology& topology, qor::String& owner)
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

template<class Connector>
void readConnectors(IDeviceTopology& topology, qor::Array<Connector>& connectors)
{
    UINT count = 0;
    topology.GetConnectorCount(&count);
    SONAVIT_LOG(topologylog, LOG_INFO, out.append("Num connector = ").append(decimalText(count)));
    partsnapshot::makeRoom(count, connectors);
    bool isSilent = qor::LogFactory::isSilent(qor::LoggerPriority::LOG_DEBUG);
    for (UINT index = 0; index < count; ++index)
    {
        IConnector* connector = nullptr;
        const HRESULT result = topology.GetConnector(index, &connector);
        if (FAILED(result))
        {
            SONAVIT_LOG(topologylog, LOG_ERROR, out.append("Unable to retrieve connector index ").append(decimalText(index)).append(" ").append(hexText(result)));
            isSilent = qor::LogFactory::isSilent(qor::LoggerPriority::LOG_DEBUG); // the sink may have set it
            continue;
        }
        append(connector, isSilent, connectors);
    }
}

/// Repeats readConnectors() on purpose: the line number of a log record tells the two steps apart.
template<class Subunit>
void readSubunits(IDeviceTopology& topology, qor::Array<Subunit>& subunits)
{
    UINT count = 0;
    topology.GetSubunitCount(&count);
    SONAVIT_LOG(topologylog, LOG_INFO, out.append("Subunit count = ").append(decimalText(count)));
    partsnapshot::makeRoom(count, subunits);
    bool isSilent = qor::LogFactory::isSilent(qor::LoggerPriority::LOG_DEBUG);
    for (UINT index = 0; index < count; ++index)
    {
        ISubunit* subunit = nullptr;
        const HRESULT result = topology.GetSubunit(index, &subunit);
        if (FAILED(result))
        {
            SONAVIT_LOG(topologylog, LOG_ERROR, out.append("Unable to retrieve subunit index ").append(decimalText(index)).append(" ").append(hexText(result)));
            isSilent = qor::LogFactory::isSilent(qor::LoggerPriority::LOG_DEBUG); // the sink may have set it
            continue;
        }
        append(subunit, isSilent, subunits);
    }
}

/// Takes a new snapshot of @p topology, as AudioDeviceTopology::initialize() documents.
template<class Connector, class Subunit>
bool initialize(const TopologyFields<Connector, Subunit>& fields, const COMPtr<IDeviceTopology>::pointer& topology)
{
    SONAVIT_TRACE(topologylog, "AudioDeviceTopology::initialize(IDeviceTopology* deviceTopology)");
    clear(fields);
    fields.topology = topology;
    if (fields.topology.get() == nullptr)
    {
        SONAVIT_LOG(topologylog, LOG_ERROR, out.append("Using NULL deviceTopology invalidates this object"));
        return false;
    }
    readDeviceOwner(*fields.topology, fields.deviceOwner);
    readConnectors(*fields.topology, fields.connectors);
    readSubunits(*fields.topology, fields.subunits);
    return true;
}

/// Takes a new snapshot of the topology that contains @p part.
template<class Connector, class Subunit>
bool initialize(const TopologyFields<Connector, Subunit>& fields, const COMPtr<IPart>::pointer& part)
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
    return initialize(fields, COMPtr<IDeviceTopology>::pointer(topology)); // which logs a nil topology, too
}

/// Takes a new snapshot of the topology that contains the connector or subunit @p component, which may be null.
template<class Connector, class Subunit, class Interface>
bool initializeHelper(const TopologyFields<Connector, Subunit>& fields, Interface* component)
{
    SONAVIT_TRACE(topologylog, "template <class Interface> bool AudioDeviceTopology::initializeHelper(Interface* obj)");
    clear(fields);
    if (component == nullptr)
    {
        SONAVIT_LOG(topologylog, LOG_ERROR, out.append("Cannot use NULL as parameter"));
        return false;
    }
    IPart* part = nullptr;
    if (FAILED(interfacequery::query(*component, part)))
    {
        SONAVIT_LOG(topologylog, LOG_ERROR, out.append("No part interface found"));
        return false; // a pointer along with the failure code is ignored
    }
    return initialize(fields, COMPtr<IPart>::pointer(part));
}

/// As haveSignalPath() while the log writes neither trace scopes nor messages of LOG_WARNING.
bool haveSignalPathSilently(IDeviceTopology* topology, const AudioComponent<IConnector>& from,
                            const AudioComponent<IConnector>& to);

/// Whether a signal path of @p topology, which may be null, joins two connectors of different ids: the part of
/// AudioDeviceTopology::connectorsAreLinked() that asks the platform.
bool haveSignalPath(IDeviceTopology* topology, const AudioComponent<IConnector>& from,
                    const AudioComponent<IConnector>& to);
}
