#pragma once

#include "COM/comptr.h"
#include "libModuleCommon/export.h"
#include "libSonavit/audiodeviceendpoint.h"
#include "platform/coreaudio.h"
#include "qor/array.h"
#include "qor/resource.h"

/// A snapshot of the endpoints of one data flow, sorted into a list for each state.
///
/// Either empty, or filled by enumerate(). The thread must have initialised COM. The snapshot stays readable after the
/// enumerator has gone. No operation locks. The results of the platform's enumeration are not looked at, only what it
/// left.
class SONAVIT_API EndpointDeviceEnumeratorCommon
{
public:
    /// A state and the list that takes the endpoints in it.
    struct Collection
    {
        unsigned int state;
        qor::Array<AudioDevice>* devices;
    };

    /// Empty; asks the platform nothing.
    EndpointDeviceEnumeratorCommon();

    /// Enumerates @p flow; look at the lists, or at enumerator(), for the outcome.
    EndpointDeviceEnumeratorCommon(EDataFlow flow);

    /// Copies the lists. The observer of @p other stays registered once, for @p other.
    EndpointDeviceEnumeratorCommon(const EndpointDeviceEnumeratorCommon& other);
    EndpointDeviceEnumeratorCommon& operator=(const EndpointDeviceEnumeratorCommon& other);

    /// Does not unregister the observer.
    ~EndpointDeviceEnumeratorCommon();

    /// Makes a new enumerator and takes a new snapshot with it. What was there before is gone in any case.
    /// @return false if there is no enumerator to be had; a failure is logged (LOG_ERROR)
    bool enumerate(EDataFlow flow);

    /// Takes a new snapshot with the present enumerator, which must be there: one enumeration for each state, so that
    /// an endpoint that changes its state meanwhile may stand in two lists or in none.
    void refresh(EDataFlow flow);

    /// The lists themselves, which change with the next snapshot.
    const qor::Array<AudioDevice>& activeDevice() const;
    const qor::Array<AudioDevice>& notPresentDevice() const;
    const qor::Array<AudioDevice>& disabledDevice() const;
    const qor::Array<AudioDevice>& unpluggedDevice() const;

    /// Copies of the lists.
    qor::Array<AudioDevice> activeDevice();
    qor::Array<AudioDevice> notPresentDevice();
    qor::Array<AudioDevice> disabledDevice();
    qor::Array<AudioDevice> unpluggedDevice();

    /// The enumerator with a new reference, or nil.
    COMPtr<IMMDeviceEnumerator>::pointer enumerator() const;

    /// Registers @p observer in place of the one before, with the present enumerator, which must be there. Null changes
    /// nothing. The object takes no reference: the caller keeps the observer alive. Calls come on a thread of the
    /// platform.
    void registerNotificationObserver(IMMNotificationClient* observer);

private:
    void unregisterNotificationObserver();
    void clear();
    void clearDeviceList();
    void appendDevices(EDataFlow flow, unsigned int index, const Collection& collection);

    qor::Array<AudioDevice> m_active;
    qor::Array<AudioDevice> m_notPresent;
    qor::Array<AudioDevice> m_disabled;
    qor::Array<AudioDevice> m_unplugged;
    qor::Array<Collection> m_collections;          // stays empty
    IMMNotificationClient* m_notificationObserver; // not counted; null for none
    COMPtr<IMMDeviceEnumerator>::pointer m_enumerator;
};

namespace libSonavit
{
/// Lists the endpoints of a flow in every state. Owns an enumerator of its own and keeps nothing between calls. The
/// thread must have initialised COM.
class SONAVIT_API EndpointDeviceEnumerator
{
public:
    /// Makes the enumerator; ask isInitialized() for the outcome. A failure is logged (LOG_ERROR).
    EndpointDeviceEnumerator();
    EndpointDeviceEnumerator(const EndpointDeviceEnumerator& other);
    EndpointDeviceEnumerator& operator=(const EndpointDeviceEnumerator& other);
    ~EndpointDeviceEnumerator();

    bool isInitialized() const;

    /// The enumerator itself, without a new reference.
    const COMPtr<IMMDeviceEnumerator>::pointer& enumerator() const;

    /// Replaces @p devices by the endpoints of @p flow in every state, in the system's order. Endpoints that could not
    /// be initialized stand among them. The object must be initialized. @return the size of @p devices
    unsigned int audioDevices(EDataFlow flow, qor::Array<AudioDevice>& devices) const;

private:
    bool initialize();

    COMPtr<IMMDeviceEnumerator>::pointer m_enumerator;
};

/// The one enumerator that lasts: endpoints are looked up on it by id, and notification clients are registered with it.
///
/// It keeps COM initialised on the thread that makes it, and every client alive, until it is destroyed at the end of
/// the module: it then takes all clients off the platform in the order of their arrival, lets go of the platform's
/// enumerator and uninitialises COM on whichever thread that happens. The module ends with the process, or when the
/// last FreeLibrary unloads it; the factory gives this very object until that is done. Nothing locks; it is to be made
/// on one thread before others join in.
class SONAVIT_API AudioDeviceEnumerator
{
public:
    /// A copy with references of its own. It does not initialise COM; its end unregisters all clients and uninitialises
    /// COM all the same.
    AudioDeviceEnumerator(const AudioDeviceEnumerator& other);
    AudioDeviceEnumerator& operator=(const AudioDeviceEnumerator& other);
    ~AudioDeviceEnumerator();

    /// The platform's enumerator, made on first call; valid as long as this object. Nil, with a message (LOG_ERROR), if
    /// it cannot be made; the next call tries again.
    BorrowedPointer<IMMDeviceEnumerator> deviceEnumerator();

    /// Keeps @p client and registers it, as often as it is given. One that the platform refuses is kept as well.
    /// @return false, with a message (LOG_WARNING), if there is no enumerator or the platform refuses
    bool addNotificationClient(const COMPtr<IMMNotificationClient>::pointer& client);

    /// Replaces @p devices by the endpoints of @p flow in every state. deviceEnumerator() must have been called.
    /// @return the size of @p devices
    unsigned int audioDevices(EDataFlow flow, qor::Array<AudioDevice>& devices) const;

private:
    friend class AudioDeviceEnumeratorFactory;

    AudioDeviceEnumerator();
    void createDeviceEnumerator();

    COMPtr<IMMDeviceEnumerator>::pointer m_deviceEnumerator;
    qor::Array<COMPtr<IMMNotificationClient>::pointer> m_notificationClients; // in order of arrival; only grows
    /// Last: COM comes up when the rest stands, and goes down before the list is destroyed.
    COMInitializer m_comInitializer;
};

/// Holds the one AudioDeviceEnumerator.
class SONAVIT_API AudioDeviceEnumeratorFactory
{
public:
    /// The handle on the instance, which is made if there is none. It stays nil if memory is exhausted.
    static OwnedPointer<AudioDeviceEnumerator>& enumerator();

    /// Does nothing.
    AudioDeviceEnumeratorFactory& operator=(const AudioDeviceEnumeratorFactory& other);

private:
    static OwnedPointer<AudioDeviceEnumerator> m_enumerator;
};
}
