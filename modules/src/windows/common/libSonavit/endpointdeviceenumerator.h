#pragma once

#include "COM/comptr.h"
#include "libModuleCommon/export.h"
#include "libSonavit/audiodeviceendpoint.h"
#include "platform/coreaudio.h"
#include "qor/array.h"
#include "qor/resource.h"

/// A snapshot of the endpoints of one data flow, sorted into a list for each state.
///
/// An object is empty until enumerate() fills it. COM must be initialized on the calling thread. The snapshot stays
/// readable after the enumerator is released. No operation locks. The HRESULTs of the platform's enumeration are
/// ignored on purpose: a null collection counts as an empty one.
class SONAVIT_API EndpointDeviceEnumeratorCommon
{
public:
    /// A state and the list that receives the endpoints in that state.
    struct Collection
    {
        unsigned int state;
        qor::Array<AudioDevice>* devices;
    };

    /// Empty; calls no platform function.
    EndpointDeviceEnumeratorCommon();

    /// Calls enumerate(@p flow) and drops the result; enumerator() is nil if it failed.
    EndpointDeviceEnumeratorCommon(EDataFlow flow);

    /// Copies the lists, the observer pointer and the enumerator handle; registers and unregisters no observer.
    EndpointDeviceEnumeratorCommon(const EndpointDeviceEnumeratorCommon& other);
    EndpointDeviceEnumeratorCommon& operator=(const EndpointDeviceEnumeratorCommon& other);

    /// Does not unregister the observer.
    ~EndpointDeviceEnumeratorCommon();

    /// Creates a new enumerator (CoCreateInstance) and takes a new snapshot. The former snapshot is discarded even if
    /// that fails.
    /// @return false, with a message (LOG_ERROR), if the enumerator cannot be created
    /// @exception qor::NullPointer if memory is exhausted
    bool enumerate(EDataFlow flow);

    /// Takes a new snapshot with the current enumerator, which must not be nil: there is no check. Each state is
    /// enumerated separately (IMMDeviceEnumerator::EnumAudioEndpoints), so an endpoint that changes its state meanwhile
    /// may appear in two lists or in none.
    void refresh(EDataFlow flow);

    /// References to the lists, which the next snapshot changes.
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

    /// Registers @p observer with the current enumerator, which must not be nil, and unregisters the former observer.
    /// A null @p observer has no effect. The object takes no reference: the caller keeps the observer alive. The
    /// platform calls it on a thread of its own.
    void registerNotificationObserver(IMMNotificationClient* observer);

private:
    /// clear() for lists that are filled again; release(), which needs no memory, for those of an object that ends.
    typedef void (qor::Array<AudioDevice>::*Emptying)();

    void unregisterNotificationObserver();
    void clear(Emptying empty = &qor::Array<AudioDevice>::clear);
    void clearDeviceList(Emptying empty = &qor::Array<AudioDevice>::clear);
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
/// Lists the endpoints of a flow in all states. Owns its own enumerator and keeps no endpoints between calls. COM must
/// be initialized on the calling thread.
class SONAVIT_API EndpointDeviceEnumerator
{
public:
    /// Creates the enumerator (CoCreateInstance); isInitialized() answers whether that succeeded. A failure is logged
    /// (LOG_ERROR).
    EndpointDeviceEnumerator();
    EndpointDeviceEnumerator(const EndpointDeviceEnumerator& other);
    EndpointDeviceEnumerator& operator=(const EndpointDeviceEnumerator& other);
    ~EndpointDeviceEnumerator();

    /// Whether the enumerator exists.
    bool isInitialized() const;

    /// A reference to the handle; takes no new COM reference.
    const COMPtr<IMMDeviceEnumerator>::pointer& enumerator() const;

    /// Replaces @p devices with the endpoints of @p flow in all states, in the system's order. An endpoint that cannot
    /// be initialized keeps its place. The object must be initialized: there is no check.
    /// @return the size of @p devices
    /// @exception qor::NullPointer if memory is exhausted
    unsigned int audioDevices(EDataFlow flow, qor::Array<AudioDevice>& devices) const;

private:
    bool initialize();

    COMPtr<IMMDeviceEnumerator>::pointer m_enumerator;
};

/// The process-wide enumerator: AudioDevice finds endpoints by id with it, and SoundCard registers notification clients
/// with it.
///
/// It keeps COM initialized on the thread that creates it and keeps every client alive until the module ends: with the
/// process, or when the last FreeLibrary unloads it. Its destructor then unregisters all clients in the order of their
/// registration, releases the platform's enumerator and uninitializes COM on the thread that ends the module. Until the
/// destructor has finished, the factory returns this object. After that its handle is empty, and the next call creates
/// a new object. Nothing locks: create it on one thread before other threads use the library.
class SONAVIT_API AudioDeviceEnumerator
{
public:
    /// A copy with its own references. It does not initialize COM; its destructor nevertheless unregisters all clients
    /// and uninitializes COM.
    AudioDeviceEnumerator(const AudioDeviceEnumerator& other);
    AudioDeviceEnumerator& operator=(const AudioDeviceEnumerator& other);
    ~AudioDeviceEnumerator();

    /// The platform's enumerator, created (CoCreateInstance) on the first call. Takes no reference: the pointer is
    /// valid while this object exists.
    /// @return nil, with a message (LOG_ERROR), if it cannot be created; the next call tries again
    BorrowedPointer<IMMDeviceEnumerator> deviceEnumerator();

    /// Takes a reference on @p client and registers it
    /// (IMMDeviceEnumerator::RegisterEndpointNotificationCallback), once more for each call. A client that the platform
    /// refuses is kept as well.
    /// @return false, with a message (LOG_WARNING), if there is no enumerator or the platform refuses
    bool addNotificationClient(const COMPtr<IMMNotificationClient>::pointer& client);

    /// Replaces @p devices with the endpoints of @p flow in all states. deviceEnumerator() must have been called: there
    /// is no check.
    /// @return the size of @p devices
    unsigned int audioDevices(EDataFlow flow, qor::Array<AudioDevice>& devices) const;

private:
    friend class AudioDeviceEnumeratorFactory;

    AudioDeviceEnumerator();
    void createDeviceEnumerator();

    COMPtr<IMMDeviceEnumerator>::pointer m_deviceEnumerator;
    qor::Array<COMPtr<IMMNotificationClient>::pointer> m_notificationClients; // in order of registration; only grows
    /// The last member: COM is initialized after the others and uninitialized before the list is destroyed.
    COMInitializer m_comInitializer;
};

/// Holds the one AudioDeviceEnumerator.
class SONAVIT_API AudioDeviceEnumeratorFactory
{
public:
    /// The handle of the instance, which is created if there is none. It stays nil without memory for the instance
    /// itself. The caller does not own the instance. If an exception leaves this operation, the handle stays nil and
    /// the next call tries again.
    /// @exception qor::NullPointer without memory for the list of clients
    static OwnedPointer<AudioDeviceEnumerator>& enumerator();

    /// Does nothing.
    AudioDeviceEnumeratorFactory& operator=(const AudioDeviceEnumeratorFactory& other);

private:
    static OwnedPointer<AudioDeviceEnumerator> m_enumerator;
};
}
