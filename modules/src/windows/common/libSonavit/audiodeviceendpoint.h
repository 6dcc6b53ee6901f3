#pragma once

#include "COM/comptr.h"
#include "libModuleCommon/export.h"
#include "libSonavit/audiodeviceinterface.h"
#include "libSonavit/audiodevicetopology.h"
#include "libSonavit/audiopart.h"
#include "libSonavit/volumecontroller.h"
#include "platform/atlcomptr.h"
#include "platform/coreaudio.h"
#include "qor/array.h"
#include "qor/integers.h"
#include "qor/resource.h"
#include "qor/string.h"

/// One Core Audio device: an endpoint, or a device on the adapter side.
///
/// A value: each copy holds counted references of its own on the platform's device and property store, and shares one
/// volume controller with the others. Either empty, or bound to a device by initialize(). Platform failures are logged
/// and reported by false, by a nil handle or by a property that keeps its value. No operation locks: one object belongs
/// to one thread at a time, and the counts of the shared controller to one thread altogether.
class SONAVIT_API AudioDevice : public AudioDeviceInterface
{
public:
    /// An empty device; asks the platform nothing.
    AudioDevice();

    /// Adopts the reference on @p device and initializes; ask isInitialized() for the outcome.
    AudioDevice(IMMDevice* device);

    /// Opens the device called @p deviceId; ask isInitialized() for the outcome.
    AudioDevice(const qor::String& deviceId);

    AudioDevice(const AudioDevice& other);
    AudioDevice& operator=(const AudioDevice& other);

    /// Adopts the reference on @p device, reads id, topology and properties, and makes the volume controller, the
    /// latter also where the properties cannot be read. Topology and property store of an earlier initialize() are
    /// kept.
    /// @return the outcome of refreshDeviceInformation(); false for a null device
    bool initialize(IMMDevice* device);

    /// As above, with the device that the shared enumerator finds (IMMDeviceEnumerator::GetDevice).
    /// @return false also if there is no enumerator (LOG_WARNING) or no such device (LOG_ERROR)
    bool initialize(const qor::String& deviceId) override;

    /// Reads all properties, the state and the kind of jack: that of the connector to which the device's first
    /// connector is joined. The property store is opened for reading and writing on first use. What cannot be read
    /// keeps its value and is logged (LOG_ERROR; a DirectSound GUID that is none and the state at LOG_WARNING, the jack
    /// not at all). A format that is not stored is no failure. Each refresh leaves the text of one GUID with the
    /// platform. The device must not be empty.
    /// @return false, with a message (LOG_ERROR), only if the store cannot be opened
    bool refreshDeviceInformation() override;

    /// Reads the state (IMMDevice::GetState); a failure is logged (LOG_WARNING). An empty device answers what it has.
    unsigned int refreshDeviceState() override;

    /// Writes @p format as the endpoint's device format, opens a new property store and reads all properties from it.
    ///
    /// The format is put back when this object ends, or a copy made from now on, see the destructor. Until the refresh
    /// the properties keep what the system said before.
    /// @return false, with a message (LOG_WARNING), if the system refuses the format or no new store can be opened
    /// @exception qor::AssertionFailure "m_propertyStore.get() != NULL" on a device without an open store
    bool setFormat(const WAVEFORMATEXTENSIBLE& format);

    /// Whether the device is bound to a platform device, whatever initialize() answered.
    bool isInitialized() const override;

    /// Whether the platform's device knows IMMEndpoint. The device must not be empty.
    bool isEndpoint() const override;

    /// Whether both have the same endpoint id, without regard to case.
    bool operator==(const AudioDevice& other) const;

    const Properties& deviceProperty() const override;

    /// The platform's device with a new reference, or nil.
    COMPtr<IMMDevice>::pointer device();

    /// The device's topology with a new reference, or nil.
    COMPtr<IDeviceTopology>::pointer deviceTopology() const;

    /// Replaces @p topo by a copy of the device's topology snapshot.
    void deviceTopology(AudioDeviceTopology& topo) const;

    /// Replaces @p connectorList by the connectors of the device's topology. @return their number
    unsigned int connector(qor::Array<AudioComponent<IConnector>>& connectorList);

    SharedPointer<VolumeControllerInterface> volumeControl() override;

    /// Activates IAudioClient, anew on each call. @return nil, with a message (LOG_DEBUG), where there is none
    COMPtr<IAudioClient>::pointer audioClient();

    /// Activates IBaseFilter, anew on each call. @return null, with the message of audioClient() (LOG_DEBUG), where
    /// there is none
    ATL::CComPtr<IBaseFilter> baseFilter();

    /// Stores the way the device's audio goes. @return false, with @p flow left alone, for an empty device or no
    /// endpoint
    bool dataFlow(EDataFlow& flow) const;

    /// Whether the endpoint is the default one of its flow in the console role; the other roles play no part, and ids
    /// are compared with regard to case. Every failure is logged (LOG_ERROR) and reads as false. Each answer leaves the
    /// text of one id with the platform. The device must not be empty, and its thread needs COM.
    bool isDefaultEndpoint() const;

    /// The number under which the wave functions know the endpoint, among as many numbers as there are wave outputs.
    /// Drivers that do not answer are logged (LOG_WARNING) and passed over; without memory for an id the search ends
    /// (LOG_WARNING).
    /// @return 0xFFFFFFFF where there is none, or the data flow is not known (LOG_WARNING)
    unsigned int waveLegacyDeviceID() override;

    /// Puts the device format back to that after the latest initialize() that succeeded, if the present one is another
    /// and the store is open; what becomes of it is logged only. Each copy does so for itself, also a temporary or an
    /// element that an array leaves behind when it grows, and whoever had changed the format. A device whose only
    /// initialize() failed has an empty format to go back to, and writes that once a later refresh has found one.
    ~AudioDevice() noexcept(false) override;

private:
    template<class T>
    typename COMPtr<T>::pointer activateDeviceInterface();

    template<class T>
    void logInterfaceType();

    template<class DataType>
    bool getDeviceData(const PROPERTYKEY& key, DataType& value);

    template<class DataType>
    bool getPropVariantValue(const PROPVARIANT& variant, DataType& value);

    void readDirectSoundGuid();
    void readJackType();
    COMPtr<IAudioEndpointVolume>::pointer volumeController();
    bool createVolumeControl();
    void printReferenceCount();
    unsigned int waveMessage(EDataFlow flow, unsigned int deviceId, unsigned int message, unsigned __int64 param1,
                             unsigned __int64 param2);

    static const PROPERTYKEY m_friendlyName;
    static const PROPERTYKEY m_instancePathKey;
    static const PROPERTYKEY m_driverNodeStrongName;
    static const PROPERTYKEY m_speakerConfig;
    static const PROPERTYKEY m_directSoundGUID;
    static const PROPERTYKEY m_deviceFormat;

    COMPtr<IMMDevice>::pointer m_device;
    COMPtr<IPropertyStore>::pointer m_propertyStore; // open from the first refresh on
    SharedPointer<VolumeControllerInterface> m_volumeControl;
    AudioDeviceTopology m_topology;
    Properties m_properties;
    Properties m_savedProperties; // as after the latest successful initialize(): the format to go back to
};

template<>
SONAVIT_API bool AudioDevice::getPropVariantValue(const PROPVARIANT& variant, qor::String& value);
template<>
SONAVIT_API bool AudioDevice::getPropVariantValue(const PROPVARIANT& variant, unsigned int& value);
template<>
SONAVIT_API bool AudioDevice::getPropVariantValue(const PROPVARIANT& variant, WAVEFORMATEXTENSIBLE& value);

/// Equality of formats, field by field. Those over WAVEFORMATEX look at nothing behind cbSize; those over
/// WAVEFORMATEXTENSIBLE look at all fields, whatever the format's tag says of them.
SONAVIT_API bool operator==(const WAVEFORMATEX& left, const WAVEFORMATEX& right);
SONAVIT_API bool operator!=(const WAVEFORMATEX& left, const WAVEFORMATEX& right);
SONAVIT_API bool operator==(const WAVEFORMATEXTENSIBLE& left, const WAVEFORMATEXTENSIBLE& right);
SONAVIT_API bool operator!=(const WAVEFORMATEXTENSIBLE& left, const WAVEFORMATEXTENSIBLE& right);
