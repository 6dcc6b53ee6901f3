#pragma once

#include "libModuleCommon/export.h"
#include "libSonavit/volumecontroller.h"
#include "platform/coreaudio.h"
#include "qor/resource.h"
#include "qor/string.h"

/// One audio endpoint, the element type of the lists that a SoundCard returns.
class SONAVIT_API AudioDeviceInterface
{
public:
    /// The properties of an endpoint as of the latest refresh.
    struct SONAVIT_API Properties
    {
        /// All numbers and GUIDs zero, all strings empty.
        Properties();
        Properties(const Properties& other);
        Properties& operator=(const Properties& other);
        ~Properties();

        /// Logs seven of the properties (LOG_INFO); not format, subType and directSoundGuid.
        void logPropertyInfo() const;

        unsigned int speakerConfig;       ///< mask of the physical speakers
        WAVEFORMATEXTENSIBLE format;      ///< device format of the endpoint's audio engine
        qor::String deviceId;             ///< endpoint id; identifies the endpoint
        qor::String instancePath;         ///< device instance path, equal for all endpoints of a card
        qor::String driverNodeStrongName; ///< strong name of the driver node
        qor::String friendlyName;         ///< friendly name of the device that the endpoint belongs to
        qor::String endpointType;         ///< device description: "Speakers", "Microphone"
        GUID subType;                     ///< kind of jack, a KSNODETYPE_ value
        GUID directSoundGuid;             ///< the endpoint's DirectSound GUID
        unsigned int deviceState;         ///< DEVICE_STATE_ bits
    };

    AudioDeviceInterface();
    AudioDeviceInterface(const AudioDeviceInterface& other);
    AudioDeviceInterface& operator=(const AudioDeviceInterface& other);

    /// Whether the device is an endpoint, as opposed to an adapter device. The device must be initialized.
    virtual bool isEndpoint() const = 0;

    /// The endpoint's volume controller, shared by all copies of the device.
    ///
    /// Nil only for an adapter device and for an empty object. An initialized endpoint always has a controller, even if
    /// it has no volume: hasVolumeControl() answers true there, and no level or mute operation may be called. To find
    /// out, activate IAudioEndpointVolume on AudioDevice::device().
    virtual SharedPointer<VolumeControllerInterface> volumeControl() = 0;

    /// Opens the device with the id @p deviceId and reads its properties.
    /// @return false, with a message, if the device or its property store cannot be opened; false, without a message,
    /// if the platform reports success without a device
    virtual bool initialize(const qor::String& deviceId) = 0;

    /// Whether the object holds a platform device.
    virtual bool isInitialized() const = 0;

    /// Reads all properties again. The device must be initialized.
    /// @return false, with a message (LOG_ERROR), only if the property store cannot be opened
    virtual bool refreshDeviceInformation() = 0;

    /// The properties as of the latest refresh; the reference is valid while the device exists.
    virtual const Properties& deviceProperty() const = 0;

    /// The endpoint's device number in the wave functions, or 0xFFFFFFFF if it has none.
    virtual unsigned int waveLegacyDeviceID() = 0;

    /// Reads the state again. @return DEVICE_STATE_ bits
    virtual unsigned int refreshDeviceState() = 0;

    virtual ~AudioDeviceInterface() noexcept(false); // a handle's Release may throw, see qor/resource.h
};

/// A pointer to an endpoint that another object owns, such as a list of a SoundCard.
typedef BorrowedPointer<AudioDeviceInterface> AudioInterfacePtr;
