#pragma once

#include "libModuleCommon/export.h"
#include "libSonavit/audiodeviceinterface.h"
#include "libSonavit/volumecontroller.h"
#include "qor/array.h"
#include "qor/resource.h"
#include "qor/string.h"

/// One physical sound card: all endpoints that the system reports under one device instance path.
///
/// The queries append views of the card's own endpoints of one kind of jack, whatever their state, and return how many
/// they have appended. A view is valid until the card's list changes next, which hot plug does on a thread of the
/// platform.
class SONAVIT_API SoundCardInterface
{
public:
    SoundCardInterface();
    SoundCardInterface(const SoundCardInterface& other);
    SoundCardInterface& operator=(const SoundCardInterface& other);

    virtual unsigned int microphoneEndpointDevice(qor::Array<AudioInterfacePtr>& result) = 0;
    virtual unsigned int waveOutEndpointDevice(qor::Array<AudioInterfacePtr>& result) = 0;
    virtual unsigned int lineInEndpointDevice(qor::Array<AudioInterfacePtr>& result) = 0;
    virtual unsigned int spdifInEndpointDevice(qor::Array<AudioInterfacePtr>& result) = 0;
    virtual unsigned int spdifOutEndpointDevice(qor::Array<AudioInterfacePtr>& result) = 0;

    /// The hardware controls of @p device. A SoundCard gives none through the interface: they come from the overload
    /// that the class adds.
    virtual unsigned int volumeController(const AudioDeviceInterface& device,
                                          qor::Array<SharedPointer<VolumeControllerInterface>>& result) const = 0;

    /// Whether both cards have the same id, case included.
    virtual bool operator==(const SoundCardInterface& other) const = 0;

    /// The device instance path that all endpoints of the card share; valid while the card lives.
    virtual const qor::String& deviceId() const = 0;

    virtual ~SoundCardInterface() noexcept(false); // handles may let an exception pass, see qor/resource.h
};

/// Appends the sound cards of the system to @p cards, each made on the heap and from now on the caller's to delete: a
/// borrowed pointer does not delete. A failure is logged (LOG_WARNING) and appends nothing, as an empty system does.
/// The thread must have initialised COM.
SONAVIT_API void enumerateSoundCards(qor::Array<BorrowedPointer<SoundCardInterface>>& cards);
