#pragma once

#include "COM/comptr.h"
#include "libModuleCommon/export.h"
#include "libSonavit/audiopart.h"
#include "platform/coreaudio.h"
#include "qor/array.h"
#include "qor/string.h"

/// Snapshot of one device's hardware graph: its connectors, its subunits and the id of its device.
///
/// A value: it holds one counted reference on the platform's topology and owns its lists, so copies are independent.
/// Nothing is refreshed after initialize(). Building it asks the platform for every connector and subunit. No operation
/// locks; use one object from one thread at a time.
class SONAVIT_API AudioDeviceTopology
{
public:
    /// An empty object.
    AudioDeviceTopology();

    /// These initialize the object; ask isInitialized() for the outcome.
    AudioDeviceTopology(const COMPtr<IDeviceTopology>::pointer& deviceTopology);
    AudioDeviceTopology(const COMPtr<ISubunit>::pointer& subunit);
    AudioDeviceTopology(const COMPtr<IConnector>::pointer& connector);
    AudioDeviceTopology(const AudioComponent<IConnector>& connector);

    AudioDeviceTopology(const AudioDeviceTopology& other);
    ~AudioDeviceTopology();

    AudioDeviceTopology& operator=(const AudioDeviceTopology& other);

    /// As initialize(), without its answer.
    AudioDeviceTopology& operator=(const COMPtr<IDeviceTopology>::pointer& topology);

    /// Takes a new snapshot of @p topology; what the object held before is gone in every case.
    ///
    /// A device id, connector or subunit that cannot be read is left out and logged (LOG_ERROR).
    /// @param topology shared with the caller; one reference is added. May be nil.
    /// @return false, with the object empty and one message (LOG_ERROR), only when @p topology is nil
    bool initialize(const COMPtr<IDeviceTopology>::pointer& topology);

    /// Takes a snapshot of the topology that @p connector lies in, reached through IPart::GetTopologyObject.
    /// @return false, with the object empty and messages (LOG_ERROR), when there is no way to it
    bool initialize(const COMPtr<IConnector>::pointer& connector);
    bool initialize(const COMPtr<ISubunit>::pointer& subunit);

    bool isInitialized() const;

    /// The platform's topology with a new reference, or nil.
    COMPtr<IDeviceTopology>::pointer topology() const;

    /// Id of the device that the graph belongs to.
    qor::String deviceOwner() const;

    /// Connectors in the platform's order, as an independent copy; empty before initialize().
    qor::Array<AudioComponent<IConnector>> connector() const;

    /// Subunits in the platform's order, as an independent copy; empty before initialize().
    qor::Array<AudioComponent<ISubunit>> subunit() const;

    /// Whether a signal path joins two connectors of this graph, in one direction or the other
    /// (IDeviceTopology::GetSignalPath, mixed paths rejected). Each direction that has none is logged (LOG_WARNING),
    /// also where the other has one. A connector is not linked to itself, nor is one without a part; both are logged
    /// (LOG_WARNING) without a question to the platform. An empty object links nothing, in silence.
    bool connectorsAreLinked(const AudioComponent<IConnector>& from, const AudioComponent<IConnector>& to) const;

private:
    void clear();
    bool initialize(const COMPtr<IPart>::pointer& part);

    template<class Interface>
    bool initializeHelper(const typename COMPtr<Interface>::pointer& obj);

    COMPtr<IDeviceTopology>::pointer m_topology;
    qor::String m_deviceOwner;
    qor::Array<AudioComponent<IConnector>> m_connectors;
    qor::Array<AudioComponent<ISubunit>> m_subunits;
};
