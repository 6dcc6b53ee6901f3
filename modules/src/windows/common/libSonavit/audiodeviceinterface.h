#pragma once

#include "libModuleCommon/export.h"
#include "libSonavit/volumecontroller.h"
#include "platform/coreaudio.h"
#include "qor/resource.h"
#include "qor/string.h"

/// One audio endpoint, as the lists of a SoundCard hand it out.
class SONAVIT_API AudioDeviceInterface
{
public:
    /// What an endpoint tells about itself, as it stood at the latest refresh.
    struct SONAVIT_API Properties
    {
        /// All zero and empty.
        Properties();
        Properties(const Properties& other);
        Properties& operator=(const Properties& other);
        ~Properties();

        /// Writes seven of the properties to the log (LOG_INFO).
        void logPropertyInfo() const;

        unsigned int speakerConfig;       ///< mask of the physical speakers
        WAVEFORMATEXTENSIBLE format;      ///< format in which the endpoint's engine works
        qor::String deviceId;             ///< endpoint id, the identity of the object
        qor::String instancePath;         ///< device instance path, the same for all endpoints of a card
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

    /// Whether the device is an endpoint and not a device on the adapter side.
    virtual bool isEndpoint() const = 0;

    /// The endpoint's volume controller, shared with all copies of the device; nil where there is none.
    virtual SharedPointer<VolumeControllerInterface> volumeControl() = 0;

    /// Opens the device called @p deviceId. @return whether it could be opened and read
    virtual bool initialize(const qor::String& deviceId) = 0;

    virtual bool isInitialized() const = 0;

    /// Reads all properties anew. @return false only if the property store cannot be opened
    virtual bool refreshDeviceInformation() = 0;

    /// The properties as they were read last; valid while the device lives.
    virtual const Properties& deviceProperty() const = 0;

    /// The number that the wave functions know the endpoint by, or 0xFFFFFFFF.
    virtual unsigned int waveLegacyDeviceID() = 0;

    /// Reads the state anew. @return DEVICE_STATE_ bits
    virtual unsigned int refreshDeviceState() = 0;

    virtual ~AudioDeviceInterface() noexcept(false); // handles may let an exception pass, see qor/resource.h
};

/// A view of an endpoint that something else owns.
typedef BorrowedPointer<AudioDeviceInterface> AudioInterfacePtr;
