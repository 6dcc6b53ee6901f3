#pragma once

#include "COM/comptr.h"
#include "libModuleCommon/export.h"
#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/audiodevicetopology.h"
#include "libSonavit/audiopart.h"
#include "libSonavit/soundcardinterface.h"
#include "libSonavit/soundcardobserver.h"
#include "platform/coreaudio.h"
#include "qor/array.h"
#include "qor/orderedhashtable.h"
#include "qor/resource.h"
#include "qor/string.h"

/// One physical sound card: its endpoints, the graph of connectors around them, and the hardware controls in it.
///
/// All copies of a card and its updater share the lists, the observers and the id. The updater follows hot-plug events
/// on a thread of the platform. Each copy has its own graph of connectors, which enumerateSystemSoundDevices() builds
/// once and which does not follow hot plug. Every default-constructed card registers its updater with the shared
/// enumerator and never unregisters it: the updater keeps its shares, and follows events, until the module ends.
/// The card takes no lock, not even between a caller's thread and a notification.
class SONAVIT_API SoundCard : public SoundCardInterface
{
public:
    class SoundCardDeviceUpdater; ///< complete in "libSonavit/soundcardupdater.h"

    /// A connector and the nodes that are joined to it.
    struct ConnectorNode
    {
        /// A node without links.
        ConnectorNode(const AudioComponent<IConnector>& nodeConnector) : connector(nodeConnector) {}
        ConnectorNode(const AudioComponent<IConnector>& nodeConnector, const qor::Array<unsigned int>& nodeLinks)
            : connector(nodeConnector),
              links(nodeLinks)
        {
        }

        AudioComponent<IConnector> connector;
        qor::Array<unsigned int> links; ///< indexes into the card's map; 0xFFFFFFFF means a connector outside it
    };

    /// A hardware control that acts on an endpoint.
    struct VolumeController
    {
        COMPtr<IAudioVolumeLevel>::pointer volumeLevel; ///< never nil in a result
        COMPtr<IAudioMute>::pointer mute;               ///< nil if there is none next to the level
        GUID ownerType = {};                            ///< kind of the connector next to the control
        qor::String ownerName;                          ///< name of that connector
    };

    /// A card without endpoints, whose updater is registered with the shared enumerator
    /// (IMMDeviceEnumerator::RegisterEndpointNotificationCallback). If the registration fails, the enumerator logs it
    /// and the card receives no change notifications.
    /// @exception qor::NullPointer or std::bad_alloc if memory runs out
    SoundCard();

    /// Shares lists, observers, id and updater with @p other, and copies its graph. Registers nothing.
    SoundCard(const SoundCard& other);
    SoundCard& operator=(const SoundCard& other);

    /// All sound cards of the system: those with a record endpoint first, each group in the system's order. The thread
    /// must have initialised COM. Each call registers one more updater for each card. For a process that does not run
    /// as administrator see AudioDevice::setStoreAccess().
    /// @return empty if there is no endpoint; empty, with a message (LOG_WARNING), if the endpoints cannot be
    /// enumerated
    /// @exception qor::NullPointer or std::bad_alloc if memory runs out
    static qor::Array<SoundCard> enumerateSystemSoundDevices();

    /// Finds the first card whose instanceId(), or the parent device instance id of that, equals @p id without regard
    /// to case, and assigns it to @p card. Enumerates all cards as enumerateSystemSoundDevices() does. Logs ids
    /// (LOG_INFO), and a card whose parent is unknown (LOG_WARNING).
    /// @return false, with @p card unchanged, if there is none
    static bool createSoundCard(const qor::String& id, SoundCard& card);

    /// The device instance id in deviceId(): the second of the pieces between its dots; empty pieces are not counted.
    /// Empty, with a message (LOG_WARNING), if there are fewer than two pieces.
    qor::String instanceId();

    const qor::String& deviceId() const override;

    /// Whether both cards have the same deviceId(), case included.
    bool operator==(const SoundCardInterface& other) const override;

    /// Whether both cards have the same id, compared without regard to case. The two forms differ on purpose.
    bool operator==(const SoundCard& other);

    /// Appends copies of the endpoints of one kind of jack to @p result, in any state. Reads the stored properties
    /// only; the platform is not called. Logs the search (LOG_DEBUG). @return the number of endpoints that this call
    /// appends
    unsigned int microphoneEndpointDevice(qor::Array<AudioDevice>& result) const;
    unsigned int lineInEndpointDevice(qor::Array<AudioDevice>& result) const;
    unsigned int spdifInEndpointDevice(qor::Array<AudioDevice>& result) const;
    unsigned int spdifOutEndpointDevice(qor::Array<AudioDevice>& result) const;
    unsigned int waveOutEndpointDevice(qor::Array<AudioDevice>& result) const; ///< headphones first, then speakers

    /// As above, but only endpoints that have one of the DEVICE_STATE_ bits of @p filter.
    unsigned int microphoneEndpointDevice(qor::Array<AudioDevice>& result, unsigned int filter) const;
    unsigned int lineInEndpointDevice(qor::Array<AudioDevice>& result, unsigned int filter) const;
    unsigned int spdifInEndpointDevice(qor::Array<AudioDevice>& result, unsigned int filter) const;
    unsigned int spdifOutEndpointDevice(qor::Array<AudioDevice>& result, unsigned int filter) const;
    unsigned int waveOutEndpointDevice(qor::Array<AudioDevice>& result, unsigned int filter) const;

    /// See SoundCardInterface; headphones precede speakers. The state is not tested.
    unsigned int microphoneEndpointDevice(qor::Array<AudioInterfacePtr>& result) override;
    unsigned int waveOutEndpointDevice(qor::Array<AudioInterfacePtr>& result) override;
    unsigned int lineInEndpointDevice(qor::Array<AudioInterfacePtr>& result) override;
    unsigned int spdifInEndpointDevice(qor::Array<AudioInterfacePtr>& result) override;
    unsigned int spdifOutEndpointDevice(qor::Array<AudioInterfacePtr>& result) override;

    /// Appends copies of all playback endpoints that have one of the DEVICE_STATE_ bits of @p filter. Logs the search
    /// (LOG_DEBUG). @return the number of endpoints that this call appends
    unsigned int allPlaybackDevice(qor::Array<AudioDevice>& result, unsigned int filter) const;

    /// Required behaviour: finds nothing on any card. @return 0
    unsigned int loopbackMixEndpointDevice(qor::Array<AudioDevice>& result) const;

    /// Replaces @p result by every hardware volume control that acts on @p endpoint, each with the mute next to it
    /// (IPart::Activate). Each control holds references of its own.
    ///
    /// The order is that of a breadth-first walk from the endpoint's connectors. A control next to two connectors
    /// occurs twice. A volume node without a level is omitted without a message. A connector without a volume node on
    /// one side is logged (LOG_INFO). Each walk to the neighbours of a part keeps a reference, see
    /// AudioPart::incomingPartsList().
    /// @return the size of @p result; 0 for an endpoint without a topology
    /// @exception qor::IndexOutOfBounds if the walk leaves the card's graph: for an endpoint that arrived by hot plug
    /// or belongs to another card, and after a connector whose far device could not be opened. @p result then contains
    /// what the walk found before.
    /// @exception qor::NullPointer or std::bad_alloc if memory runs out
    unsigned int volumeController(const AudioDevice& endpoint, qor::Array<VolumeController>& result) const;

    /// Required behaviour: finds nothing and leaves @p result unchanged. @return 0
    unsigned int volumeController(const AudioDeviceInterface& device,
                                  qor::Array<SharedPointer<VolumeControllerInterface>>& result) const override;

    /// Appends the input multiplexers of the devices on the adapter side of the card (IPart::Activate on each subunit),
    /// each with a reference that @p result owns. Logs the number of devices (LOG_DEBUG) and each multiplexer
    /// (LOG_INFO).
    /// @return the size of @p result afterwards, what it contained before included
    unsigned int recordingMux(qor::Array<COMPtr<IAudioInputSelector>::pointer>& result);

    /// Registers @p observer for changes among the card's playback, or record, endpoints. An observer that is
    /// registered twice is called twice. It cannot be unregistered, see SoundCardObserver.
    /// @return false, with a message (LOG_WARNING), for a null observer
    bool registerPlaybackObserver(const BorrowedPointer<SoundCardObserver>& observer);
    bool registerRecordObserver(const BorrowedPointer<SoundCardObserver>& observer);

    /// Releases the card's reference on the updater, which stays registered.
    ~SoundCard() noexcept(false) override;

private:
    static void enumerateSystemSoundDevices(const AudioDevice& audioDevice, EDataFlow dataFlow,
                                            qor::OrderedHashTable<qor::String, SoundCard>& deviceTable);
    static void appendWithTheirMaps(qor::Array<SoundCard>& cards, qor::Array<SoundCard>& result);

    bool isDeviceAlreadyInTheCard(const qor::String& id);
    bool addDevice(qor::Array<AudioDevice>& deviceTable, const AudioDevice& device);
    bool addEndpointDevice(EDataFlow dataFlow, const AudioDevice& device);
    bool addPlaybackEndpointDevice(const AudioDevice& device);
    bool addCaptureEndpointDevice(const AudioDevice& device);

    unsigned int findEndpoint(const qor::Array<AudioDevice>& searchFrom, qor::Array<AudioDevice>& result,
                              unsigned int filter) const;
    unsigned int findEndpoint(const qor::Array<AudioDevice>& searchFrom, const GUID& deviceType,
                              qor::Array<AudioDevice>& result, unsigned int filter) const;
    unsigned int findEndpoint(qor::Array<AudioDevice>& searchFrom, const GUID& deviceType,
                              qor::Array<AudioInterfacePtr>& result);

    class ConnectorGraph;

    void initializeConnectorMap();
    void registerConnectors(const qor::Array<AudioDevice>& deviceList, unsigned int numRegistered,
                            ConnectorGraph& graph);
    template<class Connector>
    void registerConnectors(const qor::Array<Connector>& connectors, bool areRegistered, ConnectorGraph& graph);
    void followConnector(unsigned int index, ConnectorGraph& graph);
    void registerFarDevice(AudioDevice& farDevice, const qor::String& farId, unsigned int index, ConnectorGraph& graph);
    void linkToPeer(unsigned int index, const ConnectorGraph& graph);
    void linkWithinTopology(unsigned int index);
    unsigned int nodeIndex(const qor::String& id) const;

    bool volumeControllerFromConnector(const AudioComponent<IConnector>& connector,
                                       qor::Array<VolumeController>& result) const;
    bool volumeControllerFromList(const qor::Array<AudioPart>& parts, const AudioComponent<IConnector>& connector,
                                  qor::Array<VolumeController>& result) const;
    bool partFromList(const qor::Array<AudioPart>& parts, const GUID& partType, qor::Array<AudioPart>& result) const;

    COMPtr<SoundCardDeviceUpdater>::pointer m_updater;
    SharedPointer<qor::Array<AudioDevice>> m_playbackDevices;
    SharedPointer<qor::Array<AudioDevice>> m_recordDevices;
    SharedPointer<qor::Array<AudioDevice>>
        m_internalDevices; // adapter side of the connectors; the updater has no share
    SharedPointer<qor::Array<BorrowedPointer<SoundCardObserver>>> m_playbackObservers;
    SharedPointer<qor::Array<BorrowedPointer<SoundCardObserver>>> m_recordObservers;
    SharedPointer<qor::String> m_deviceId; // written in place, so that the updater sees it
    qor::Array<ConnectorNode> m_connectorMap;
};
