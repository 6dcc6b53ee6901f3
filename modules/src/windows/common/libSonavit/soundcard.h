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
/// Lists, observers and id are shared by all copies of a card and by its updater, which follows hot-plug events on a
/// thread of the platform. The graph of connectors belongs to each copy, is built once by enumerateSystemSoundDevices()
/// and does not follow hot plug. Every default-constructed card registers its updater with the shared enumerator and
/// leaves it there: it works on, and keeps its shares, until the process ends. Nothing locks, also not between a caller
/// and a notification.
class SONAVIT_API SoundCard : public SoundCardInterface
{
public:
    class SoundCardDeviceUpdater; ///< complete in "libSonavit/soundcardupdater.h"

    /// A connector and the nodes joined to it.
    struct ConnectorNode
    {
        AudioComponent<IConnector> connector;
        qor::Array<unsigned int> links; ///< indexes into the card's map; 0xFFFFFFFF stands for a connector outside it
    };

    /// A hardware control that acts on an endpoint.
    struct VolumeController
    {
        COMPtr<IAudioVolumeLevel>::pointer volumeLevel; ///< never nil in a result
        COMPtr<IAudioMute>::pointer mute;               ///< nil where there is none beside the level
        GUID ownerType = {};                            ///< kind of the connector next to the control
        qor::String ownerName;                          ///< name of that connector
    };

    /// A card without endpoints, whose updater is registered with the shared enumerator. A failing registration is
    /// logged by the enumerator; the card then hears of no change.
    SoundCard();

    /// Shares all lists with @p other and copies its graph.
    SoundCard(const SoundCard& other);
    SoundCard& operator=(const SoundCard& other);

    /// All sound cards of the system: those with a record endpoint first, each group in the system's order. Empty, with
    /// a message (LOG_WARNING), if the endpoints cannot be enumerated. The thread must have initialised COM.
    static qor::Array<SoundCard> enumerateSystemSoundDevices();

    /// Finds the first card whose instanceId(), or the parent of it, is @p id in any case. Enumerates all cards anew.
    /// @return false, with @p card left alone, if there is none
    static bool createSoundCard(const qor::String& id, SoundCard& card);

    /// The device instance id within deviceId(): the second of the pieces between its dots, empty pieces not counted.
    /// Empty, with a message (LOG_WARNING), where there are fewer than two.
    qor::String instanceId();

    const qor::String& deviceId() const override;

    /// Exact, by deviceId().
    bool operator==(const SoundCardInterface& other) const override;

    /// Without regard to case, by deviceId(). The two forms differ on purpose.
    bool operator==(const SoundCard& other);

    /// Appends copies of the endpoints of one kind of jack to @p result, in any state. @return the number appended
    unsigned int microphoneEndpointDevice(qor::Array<AudioDevice>& result) const;
    unsigned int lineInEndpointDevice(qor::Array<AudioDevice>& result) const;
    unsigned int spdifInEndpointDevice(qor::Array<AudioDevice>& result) const;
    unsigned int spdifOutEndpointDevice(qor::Array<AudioDevice>& result) const;
    unsigned int waveOutEndpointDevice(qor::Array<AudioDevice>& result) const; ///< headphones first, then speakers

    /// As above, only endpoints that have one of the DEVICE_STATE_ bits of @p filter.
    unsigned int microphoneEndpointDevice(qor::Array<AudioDevice>& result, unsigned int filter) const;
    unsigned int lineInEndpointDevice(qor::Array<AudioDevice>& result, unsigned int filter) const;
    unsigned int spdifInEndpointDevice(qor::Array<AudioDevice>& result, unsigned int filter) const;
    unsigned int spdifOutEndpointDevice(qor::Array<AudioDevice>& result, unsigned int filter) const;
    unsigned int waveOutEndpointDevice(qor::Array<AudioDevice>& result, unsigned int filter) const;

    unsigned int microphoneEndpointDevice(qor::Array<AudioInterfacePtr>& result) override;
    unsigned int waveOutEndpointDevice(qor::Array<AudioInterfacePtr>& result) override;
    unsigned int lineInEndpointDevice(qor::Array<AudioInterfacePtr>& result) override;
    unsigned int spdifInEndpointDevice(qor::Array<AudioInterfacePtr>& result) override;
    unsigned int spdifOutEndpointDevice(qor::Array<AudioInterfacePtr>& result) override;

    /// Appends copies of all playback endpoints that have one of the DEVICE_STATE_ bits of @p filter. @return the
    /// number appended
    unsigned int allPlaybackDevice(qor::Array<AudioDevice>& result, unsigned int filter) const;

    /// Finds nothing on any card. @return 0
    unsigned int loopbackMixEndpointDevice(qor::Array<AudioDevice>& result) const;

    /// Replaces @p result by every hardware volume control that acts on @p endpoint, each with the mute beside it.
    ///
    /// They come in the order in which a breadth-first walk from the endpoint's connectors meets them. A control next
    /// to two connectors is there twice.
    /// @return the size of @p result; 0 for an endpoint without a topology
    /// @exception qor::IndexOutOfBounds if the walk leaves the card's graph: for an endpoint that came by hot plug or
    /// belongs to another card, and behind a connector whose far side could not be opened
    unsigned int volumeController(const AudioDevice& endpoint, qor::Array<VolumeController>& result) const;

    /// Finds nothing, see SoundCardInterface.
    unsigned int volumeController(const AudioDeviceInterface& device,
                                  qor::Array<SharedPointer<VolumeControllerInterface>>& result) const override;

    /// Appends the input multiplexers of the devices on the adapter side of the card. @return the size of @p result
    /// afterwards
    unsigned int recordingMux(qor::Array<COMPtr<IAudioInputSelector>::pointer>& result);

    /// Has @p observer called, once for each registration, when the card's endpoints of that side change.
    /// @return false, with a message (LOG_WARNING), for a null observer
    bool registerPlaybackObserver(const BorrowedPointer<SoundCardObserver>& observer);
    bool registerRecordObserver(const BorrowedPointer<SoundCardObserver>& observer);

    /// Leaves the updater registered.
    ~SoundCard() noexcept(false) override;

private:
    static void enumerateSystemSoundDevices(const AudioDevice& audioDevice, EDataFlow dataFlow,
                                            qor::OrderedHashTable<qor::String, SoundCard>& deviceTable);

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

    void initializeConnectorMap();
    void registerConnectors(const qor::Array<AudioDevice>& deviceList);
    void registerConnectors(const AudioDeviceTopology& deviceTopology);
    void followConnector(unsigned int index, qor::Array<qor::String>& knownDevices);
    void registerFarDevice(const AudioDevice& farDevice, const qor::String& farId, unsigned int index,
                           qor::Array<qor::String>& knownDevices);
    void linkToPeer(unsigned int index);
    void linkWithinTopology(unsigned int index);
    unsigned int nodeIndex(const AudioComponent<IConnector>& connector) const;

    bool volumeControllerFromConnector(const AudioComponent<IConnector>& connector,
                                       qor::Array<VolumeController>& result) const;
    bool volumeControllerFromList(const qor::Array<AudioPart>& parts, const AudioComponent<IConnector>& connector,
                                  qor::Array<VolumeController>& result) const;
    bool partFromList(const qor::Array<AudioPart>& parts, const GUID& partType, qor::Array<AudioPart>& result) const;

    COMPtr<SoundCardDeviceUpdater>::pointer m_updater;
    SharedPointer<qor::Array<AudioDevice>> m_playbackDevices;
    SharedPointer<qor::Array<AudioDevice>> m_recordDevices;
    SharedPointer<qor::Array<AudioDevice>> m_internalDevices; // adapter side of the connectors; not with the updater
    SharedPointer<qor::Array<BorrowedPointer<SoundCardObserver>>> m_playbackObservers;
    SharedPointer<qor::Array<BorrowedPointer<SoundCardObserver>>> m_recordObservers;
    SharedPointer<qor::String> m_deviceId; // written in place, so that the updater sees it
    qor::Array<ConnectorNode> m_connectorMap;
};
