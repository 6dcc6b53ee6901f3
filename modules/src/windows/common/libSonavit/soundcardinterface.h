#pragma once

#include "libModuleCommon/export.h"
#include "libSonavit/audiodeviceinterface.h"
#include "libSonavit/volumecontroller.h"
#include "qor/array.h"
#include "qor/resource.h"
#include "qor/string.h"

/// One physical sound card: all endpoints that the system reports under one device instance path.
///
/// The queries append borrowed pointers to the card's own endpoints of one kind of jack, in any state, and return the
/// number that they append. They do not call the platform. A pointer is valid until the next change of the card's list,
/// which hot plug makes on a thread of the platform.
class SONAVIT_API SoundCardInterface
{
public:
    SoundCardInterface();
    SoundCardInterface(const SoundCardInterface& other);
    SoundCardInterface& operator=(const SoundCardInterface& other);

    virtual unsigned int microphoneEndpointDevice(qor::Array<AudioInterfacePtr>& result) = 0; ///< microphones
    virtual unsigned int waveOutEndpointDevice(qor::Array<AudioInterfacePtr>& result) = 0;    ///< speakers, headphones
    virtual unsigned int lineInEndpointDevice(qor::Array<AudioInterfacePtr>& result) = 0;     ///< line inputs
    virtual unsigned int spdifInEndpointDevice(qor::Array<AudioInterfacePtr>& result) = 0;    ///< digital inputs
    virtual unsigned int spdifOutEndpointDevice(qor::Array<AudioInterfacePtr>& result) = 0;   ///< digital outputs

    /// The hardware controls of @p device. Required behaviour: a SoundCard returns 0 here; its class has an overload
    /// that finds the controls.
    virtual unsigned int volumeController(const AudioDeviceInterface& device,
                                          qor::Array<SharedPointer<VolumeControllerInterface>>& result) const = 0;

    /// Whether both cards have the same id, case included.
    virtual bool operator==(const SoundCardInterface& other) const = 0;

    /// The device instance path that all endpoints of the card share; valid while the card exists.
    virtual const qor::String& deviceId() const = 0;

    virtual ~SoundCardInterface() noexcept(false); // a handle's Release may throw, see qor/resource.h
};

/// Appends the sound cards of the system to @p cards, in the order of SoundCard::enumerateSystemSoundDevices(). Each is
/// allocated with `new`, and the caller deletes it: a borrowed pointer does not. A failure is logged (LOG_WARNING) and
/// appends nothing, like a system without endpoints. The thread must have initialised COM. For a process that does not
/// run as administrator see AudioDevice::setStoreAccess().
/// @exception qor::NullPointer or std::bad_alloc if memory runs out
SONAVIT_API void enumerateSoundCards(qor::Array<BorrowedPointer<SoundCardInterface>>& cards);
