#pragma once

#include "COM/comptr.h"
#include "libModuleCommon/export.h"
#include "libSonavit/audiopart.h"
#include "platform/coreaudio.h"
#include "qor/array.h"
#include "qor/string.h"

namespace libSonavit
{
class TopologyView;
}

/// Snapshot of one device's hardware graph: its connectors, its subunits and the id of the device.
///
/// A value: it holds one counted reference on the platform's topology (IDeviceTopology) and owns its lists, so copies
/// are independent. Nothing is refreshed after initialize(), which asks the platform for every connector and subunit.
/// No operation locks; use one object from one thread at a time.
class SONAVIT_API AudioDeviceTopology
{
public:
    /// An empty object.
    AudioDeviceTopology();

    /// Call initialize(); isInitialized() answers whether that succeeded.
    AudioDeviceTopology(const COMPtr<IDeviceTopology>::pointer& deviceTopology);
    AudioDeviceTopology(const COMPtr<ISubunit>::pointer& subunit);
    AudioDeviceTopology(const COMPtr<IConnector>::pointer& connector);
    AudioDeviceTopology(const AudioComponent<IConnector>& connector);

    AudioDeviceTopology(const AudioDeviceTopology& other);
    ~AudioDeviceTopology();

    AudioDeviceTopology& operator=(const AudioDeviceTopology& other);

    /// Like initialize(), without its result.
    AudioDeviceTopology& operator=(const COMPtr<IDeviceTopology>::pointer& topology);

    /// Takes a new snapshot of @p topology (IDeviceTopology::GetDeviceId, GetConnector, GetSubunit). The old content is
    /// always released first, the old topology before the old lists. If one of these Release calls throws, the object
    /// is empty and the exception reaches the caller.
    ///
    /// A device id, connector or subunit that cannot be read is omitted and logged (LOG_ERROR). The numbers of
    /// connectors and subunits are logged (LOG_INFO).
    /// @param topology shared with the caller; one reference is added. May be nil.
    /// @return false, with the object empty and one message (LOG_ERROR), only if @p topology is nil
    /// @exception qor::NullPointer or std::bad_alloc if memory for the lists runs out
    bool initialize(const COMPtr<IDeviceTopology>::pointer& topology);

    /// Takes a snapshot of the topology that contains @p connector (IPart::GetTopologyObject).
    /// @return false, with the object empty and messages (LOG_ERROR), if @p connector is nil, implements no IPart or
    /// has no topology
    bool initialize(const COMPtr<IConnector>::pointer& connector);

    /// Takes a snapshot of the topology that contains @p subunit; otherwise as above.
    bool initialize(const COMPtr<ISubunit>::pointer& subunit);

    /// Whether the object holds a topology.
    bool isInitialized() const;

    /// The platform's topology with an added reference, or nil.
    COMPtr<IDeviceTopology>::pointer topology() const;

    /// Id of the device in the snapshot; empty before initialize(), or if the platform reported none.
    qor::String deviceOwner() const;

    /// Connectors in the platform's order, as an independent copy; empty before initialize().
    qor::Array<AudioComponent<IConnector>> connector() const;

    /// Subunits in the platform's order, as an independent copy; empty before initialize().
    qor::Array<AudioComponent<ISubunit>> subunit() const;

    /// Whether a signal path joins two connectors of this graph, in one direction or the other
    /// (IDeviceTopology::GetSignalPath, mixed paths rejected; its list is released).
    ///
    /// Each direction without a path is logged (LOG_WARNING), even if the other one has a path. A connector is not
    /// linked to itself, nor is one without a part: both are logged (LOG_WARNING), and the platform is not called. An
    /// empty object answers false without a message.
    bool connectorsAreLinked(const AudioComponent<IConnector>& from, const AudioComponent<IConnector>& to) const;

private:
    friend class libSonavit::TopologyView;

    template<class Interface>
    bool initializeHelper(const typename COMPtr<Interface>::pointer& obj);

    struct Taken
    {
    };
    AudioDeviceTopology(AudioDeviceTopology& other, Taken) noexcept;

    COMPtr<IDeviceTopology>::pointer m_topology;
    qor::String m_deviceOwner;
    qor::Array<AudioComponent<IConnector>> m_connectors;
    qor::Array<AudioComponent<ISubunit>> m_subunits;
};
