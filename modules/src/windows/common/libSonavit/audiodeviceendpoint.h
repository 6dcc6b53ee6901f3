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

/// How devices open their property stores (IMMDevice::OpenPropertyStore).
enum class StoreAccess
{
    readWrite,    ///< with STGM_READWRITE; each failure is final
    writeElseRead ///< with STGM_READWRITE; after E_ACCESSDENIED, and no other failure, once more with STGM_READ
};

namespace libSonavit
{
class DeviceView;
}

/// One Core Audio device: an endpoint or an adapter device.
///
/// Windows lets a process open a store for writing only if it runs as administrator (IMMDevice::OpenPropertyStore). A
/// program that also runs otherwise calls setStoreAccess(StoreAccess::writeElseRead) first. Without that call its
/// devices then have an id, a volume and a mute, but no other properties, not even a state, and setFormat() throws. The
/// table holds with StoreAccess::writeElseRead:
///
/// | Operation | Running as administrator | Otherwise |
/// |---|---|---|
/// | lists, cards, selectors, notifications | yes | yes |
/// | deviceProperty(), refreshDeviceInformation() | yes | yes |
/// | volumeControl(), hardware controls, mute | yes | yes |
/// | setFormat() | yes | no: false, and a message (LOG_WARNING) |
///
/// A value type: each copy holds its own references on the platform's device and property store and shares the volume
/// controller with the other copies. An object is empty until initialize() binds it to a device. Platform failures are
/// logged and reported as false, as a nil handle or by a property that keeps its value. No operation locks: use one
/// object from one thread at a time, and all copies of a device from one thread, because the controller's share count
/// is not atomic.
class SONAVIT_API AudioDevice : public AudioDeviceInterface
{
public:
    /// Sets how all devices of the process open their stores from now on; a store that is open stays as it is. Call it
    /// before the first device is made. The setting belongs to one copy of the library: modules of a process that link
    /// it statically have one each. Calls no platform function, logs nothing, throws nothing; any thread may call it.
    static void setStoreAccess(StoreAccess access) noexcept;

    /// What setStoreAccess() has set; before the first call, StoreAccess::readWrite. Calls no platform function, logs
    /// nothing, throws nothing; any thread may call it.
    static StoreAccess storeAccess() noexcept;

    /// An empty device; calls no platform function.
    AudioDevice();

    /// Adopts the caller's reference on @p device and initializes. The reference is released even if the constructor
    /// throws. initialize()'s result is dropped; isInitialized() answers whether @p device was not null.
    /// @exception qor::NullPointer or std::bad_alloc if memory is exhausted
    AudioDevice(IMMDevice* device);

    /// Opens the device with the id @p deviceId; isInitialized() answers whether the device was found.
    AudioDevice(const qor::String& deviceId);

    AudioDevice(const AudioDevice& other);
    AudioDevice& operator=(const AudioDevice& other);

    class LastUse;
    class InPassing;

    /// A copy that is the last use of a device; see LastUse.
    explicit AudioDevice(const LastUse& source);

    /// Adopts the caller's reference on @p device, reads id, topology and properties and creates the volume controller,
    /// even if the properties cannot be read. Topology and property store of an earlier initialize() are kept.
    /// @return the result of refreshDeviceInformation(); false, without a message, if @p device is null
    bool initialize(IMMDevice* device);

    /// As above, with the device that the shared enumerator finds (IMMDeviceEnumerator::GetDevice).
    /// @return false also if there is no enumerator (LOG_WARNING) or no such device (LOG_ERROR); a success without a
    /// device gives false without a message
    bool initialize(const qor::String& deviceId) override;

    /// Reads all properties, the state and the jack type.
    ///
    /// The property store is opened for reading and writing (IMMDevice::OpenPropertyStore) on first use; see
    /// setStoreAccess() for accounts that may not write. The jack type is the subtype of the part on the far side of
    /// the device's first connector. A property that cannot be read keeps its value and is logged at LOG_ERROR; a
    /// malformed DirectSound GUID and a failing IMMDevice::GetState are logged at LOG_WARNING, a missing jack type is
    /// not logged. A missing format is not a failure. Required behaviour: each refresh leaves the string of one GUID
    /// allocated. The device must not be empty: there is no check.
    /// @return false, with a message (LOG_ERROR), only if the store cannot be opened
    bool refreshDeviceInformation() override;

    /// Reads the state (IMMDevice::GetState); a failure is logged (LOG_WARNING). An empty device returns the state as
    /// it is.
    unsigned int refreshDeviceState() override;

    /// Writes @p format as the endpoint's device format (IPropertyStore::SetValue, Commit), opens a new property store
    /// and reads all properties from it.
    ///
    /// The destructor of this object, and of each copy made from now on, restores the former format. The properties
    /// change by the final refresh only, to what the system then reports. A store that is open for reading only refuses
    /// each format; see StoreAccess::writeElseRead.
    /// @return false, with a message (LOG_WARNING), if the system refuses the format or no new store can be opened;
    /// false, without a message, if initialize() has been given a null device since: the format is written, but there
    /// is no device to open a store on
    /// @exception qor::AssertionFailure "m_propertyStore.get() != NULL" if no store is open
    bool setFormat(const WAVEFORMATEXTENSIBLE& format);

    /// Whether the object holds a platform device, regardless of the result of initialize().
    bool isInitialized() const override;

    /// Whether the platform's device implements IMMEndpoint. The device must not be empty: there is no check.
    bool isEndpoint() const override;

    /// Whether both have the same endpoint id, ignoring case.
    bool operator==(const AudioDevice& other) const;

    /// The properties as of the latest refresh; the reference is valid while this object exists.
    const Properties& deviceProperty() const override;

    /// The platform's device with a new reference, or nil.
    COMPtr<IMMDevice>::pointer device();

    /// The device's topology with a new reference, or nil if it has none.
    COMPtr<IDeviceTopology>::pointer deviceTopology() const;

    /// Replaces @p topo with a copy of the device's topology snapshot.
    void deviceTopology(AudioDeviceTopology& topo) const;

    /// Replaces @p connectorList with the connectors of the device's topology. @return their number
    unsigned int connector(qor::Array<AudioComponent<IConnector>>& connectorList);

    /// A share of the endpoint's volume controller; nil only for an adapter device or an empty object. An endpoint
    /// without a volume has one, too, and no level or mute operation may be called on it: see AudioDeviceInterface.
    SharedPointer<VolumeControllerInterface> volumeControl() override;

    /// Activates IAudioClient, again on each call. The device must not be empty: there is no check.
    /// @return nil, with a message (LOG_DEBUG), if the device has none
    COMPtr<IAudioClient>::pointer audioClient();

    /// Activates IBaseFilter, again on each call. The device must not be empty: there is no check.
    /// @return null, with the message of audioClient() (LOG_DEBUG), if the device has none
    ATL::CComPtr<IBaseFilter> baseFilter();

    /// Stores the data flow (IMMEndpoint::GetDataFlow). @return false, with @p flow unchanged, for an empty object and
    /// for an adapter device
    bool dataFlow(EDataFlow& flow) const;

    /// Whether the endpoint is the default endpoint of its flow in the role eConsole
    /// (IMMDeviceEnumerator::GetDefaultAudioEndpoint). The comparison of ids is case-sensitive. A failure is logged
    /// (LOG_ERROR) and returns false. Required behaviour: each successful answer leaves the string of one id allocated.
    /// The device must not be empty: there is no check. COM must be initialised on the calling thread.
    bool isDefaultEndpoint() const;

    /// The endpoint's device number in the wave functions (waveOutMessage, waveInMessage). Required behaviour: inputs,
    /// too, are searched among waveOutGetNumDevs() numbers only. A driver that returns an error is logged (LOG_WARNING)
    /// and skipped; if no memory is left for an id, the search ends (LOG_WARNING).
    /// @return 0xFFFFFFFF if there is no such number or the data flow is unknown (LOG_WARNING)
    unsigned int waveLegacyDeviceID() override;

    /// Restores the device format that the latest successful initialize() read, if the current one differs and the
    /// store is open; a failure is only logged. Each copy does so by itself, even a temporary and an element that an
    /// array destroys as it grows, and even if another program changed the format. If every initialize() failed, the
    /// saved format is all zero: once a later refresh has read a format, the destructor writes zeros. A store that is
    /// open for reading only refuses the restore of each copy, and each refusal is logged (LOG_WARNING). While an
    /// exception is on its way the format is only written: nothing is read again and nothing logged.
    /// @exception qor::NullPointer or std::bad_alloc if memory runs out after the format is written, or for a record of
    /// the log, of which an end makes several at LOG_DEBUG. Such a record ends the process if it fails while an
    /// exception is on its way.
    ~AudioDevice() noexcept(false) override;

private:
    friend class libSonavit::DeviceView;

    template<class T>
    typename COMPtr<T>::pointer activateDeviceInterface();

    template<class T>
    void logInterfaceType();

    template<class DataType>
    bool getDeviceData(const PROPERTYKEY& key, DataType& value);

    template<class DataType>
    bool getPropVariantValue(const PROPVARIANT& variant, DataType& value);

    // Where a parameter `passing` is not null, the device is opened in passing: its topology goes there.
    AudioDevice(const qor::String& deviceId, InPassing& passing);

    bool initialize(const qor::String& deviceId, InPassing* passing);
    bool initialize(IMMDevice* device, InPassing* passing);
    void initializeAdopted();
    bool readDevice(InPassing* passing);
    bool readInformation(const InPassing* passing);
    void readDirectSoundGuid();
    void readJackType(const InPassing* passing);
    IConnector* firstConnector(const InPassing* passing) const;
    COMPtr<IAudioEndpointVolume>::pointer volumeController();
    bool createVolumeControl();
    HRESULT writeFormat(const WAVEFORMATEXTENSIBLE& format);
    void restoreFormat();
    void printReferenceCount();
    unsigned int waveMessage(EDataFlow flow, unsigned int deviceId, unsigned int message, unsigned __int64 param1,
                             unsigned __int64 param2);

    static const PROPERTYKEY m_friendlyName; // values: see COM/identifiers.h
    static const PROPERTYKEY m_instancePathKey;
    static const PROPERTYKEY m_driverNodeStrongName;
    static const PROPERTYKEY m_speakerConfig;
    static const PROPERTYKEY m_directSoundGUID;
    static const PROPERTYKEY m_deviceFormat;

    COMPtr<IMMDevice>::pointer m_device;
    COMPtr<IPropertyStore>::pointer m_propertyStore; // nil until the first refresh opens it
    SharedPointer<VolumeControllerInterface> m_volumeControl;
    AudioDeviceTopology m_topology;
    Properties m_properties;
    Properties m_savedProperties; // as of the latest successful initialize(); has the format to restore
};

/// The last use of a device: to be copied, as an element of an array that grows. The copy takes the device's
/// topology, with all lists in it, instead of copying it; all else, and all that is traced, is as in a copy. A
/// device that restores its format at its end needs the topology for that: then the copy copies it.
class SONAVIT_API AudioDevice::LastUse
{
public:
    AudioDevice& device() const noexcept { return m_device; }

    /// Whether copies of all the devices take their topologies, which allocates nothing and throws nothing.
    static bool takesTopologies(const AudioDevice* devices, unsigned int count) noexcept;

private:
    friend class libSonavit::DeviceView;
    friend struct qor::GrowthCopy<AudioDevice>;

    explicit LastUse(AudioDevice& device) noexcept : m_device(device) {}

    AudioDevice& m_device;
};

namespace qor
{
template<>
struct GrowthCopy<AudioDevice>
{
    static constexpr bool takes = true;

    static bool isPossible(const AudioDevice* elements, unsigned int count) noexcept
    {
        return AudioDevice::LastUse::takesTopologies(elements, count);
    }

    static AudioDevice::LastUse of(AudioDevice& element) noexcept { return AudioDevice::LastUse(element); }
};
}

template<>
SONAVIT_API bool AudioDevice::getPropVariantValue(const PROPVARIANT& variant, qor::String& value);
template<>
SONAVIT_API bool AudioDevice::getPropVariantValue(const PROPVARIANT& variant, unsigned int& value);
template<>
SONAVIT_API bool AudioDevice::getPropVariantValue(const PROPVARIANT& variant, WAVEFORMATEXTENSIBLE& value);

/// Equality of formats, field by field. Those for WAVEFORMATEX ignore what follows cbSize; those for
/// WAVEFORMATEXTENSIBLE compare all fields, even those that the format tag declares unused.
SONAVIT_API bool operator==(const WAVEFORMATEX& left, const WAVEFORMATEX& right);
SONAVIT_API bool operator!=(const WAVEFORMATEX& left, const WAVEFORMATEX& right);
SONAVIT_API bool operator==(const WAVEFORMATEXTENSIBLE& left, const WAVEFORMATEXTENSIBLE& right);
SONAVIT_API bool operator!=(const WAVEFORMATEXTENSIBLE& left, const WAVEFORMATEXTENSIBLE& right);
