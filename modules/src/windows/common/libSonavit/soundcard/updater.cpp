#include "libSonavit/soundcardupdater.h"

#include "COM/identifiers.h"
#include "COM/resultcode.h"
#include "libSonavit/audiodeviceendpoint/lastuse.h"
#include "libSonavit/soundcard/listsearch.h"
#include "libSonavit/soundcard/log.h"
#include "platform/interlocked.h"

namespace
{
typedef SharedPointer<qor::Array<AudioDevice>> DeviceList;
typedef SharedPointer<qor::Array<BorrowedPointer<SoundCardObserver>>> ObserverList;

/// @p playback or @p record, by the data flow of @p device; nil if the device does not belong to the card @p ownerId. A
/// device whose flow cannot be read belongs to the record side.
template<class Handle>
Handle sideOf(const AudioDevice& device, const qor::String& ownerId, const Handle& playback, const Handle& record)
{
    if (device.deviceProperty().instancePath != ownerId)
        return Handle();
    EDataFlow flow = eAll;
    device.dataFlow(flow);
    return flow == eRender ? playback : record;
}

/// Calls all observers, including those that register during the calls.
void notify(const ObserverList& observers, void (SoundCardObserver::*event)())
{
    if (observers.get() == nullptr)
        return;
    for (unsigned int i = 0; i < observers->size(); ++i)
        ((*observers)[i].get()->*event)();
}

qor::String idText(LPCWSTR deviceId)
{
    return qor::String(platform::ucs2(deviceId));
}
}

SoundCard::SoundCardDeviceUpdater::SoundCardDeviceUpdater() : m_refCount(1) {}

SoundCard::SoundCardDeviceUpdater::~SoundCardDeviceUpdater() = default;

COMPtr<SoundCard::SoundCardDeviceUpdater>::pointer SoundCard::SoundCardDeviceUpdater::createUpdater()
{
    return new SoundCardDeviceUpdater;
}

void SoundCard::SoundCardDeviceUpdater::setOwnerId(const SharedPointer<qor::String>& ownerId)
{
    m_ownerId = ownerId;
}

// Required behaviour: the label lacks a pair of colons; readers of the log match it.
bool SoundCard::SoundCardDeviceUpdater::setRecordDeviceList(const DeviceList& list)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::SoundCardDeviceUpdatersetRecordDeviceList");
    if (list.get() == nullptr)
    {
        SONAVIT_LOG(soundcardlog, LOG_WARNING, out.append("Cannot use an empty eCapture device list"));
        return false;
    }
    m_recordDeviceList = list;
    return true;
}

bool SoundCard::SoundCardDeviceUpdater::setPlaybackDeviceList(const DeviceList& list)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::SoundCardDeviceUpdater::setPlaybackDeviceList");
    if (list.get() == nullptr)
    {
        SONAVIT_LOG(soundcardlog, LOG_WARNING, out.append("Cannot use an empty eRender device list"));
        return false;
    }
    m_playbackDeviceList = list;
    return true;
}

bool SoundCard::SoundCardDeviceUpdater::setPlaybackObserver(const ObserverList& observers)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::SoundCardDeviceUpdater::setPlaybackObserver");
    if (observers.get() == nullptr)
    {
        SONAVIT_LOG(soundcardlog, LOG_WARNING, out.append("Cannot use NULL pointer"));
        return false;
    }
    m_playbackObserver = observers;
    return true;
}

bool SoundCard::SoundCardDeviceUpdater::setRecordObserver(const ObserverList& observers)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::SoundCardDeviceUpdater::setRecordObserver");
    if (observers.get() == nullptr)
    {
        SONAVIT_LOG(soundcardlog, LOG_WARNING, out.append("Cannot use NULL pointer"));
        return false;
    }
    m_recordObserver = observers;
    return true;
}

HRESULT SoundCard::SoundCardDeviceUpdater::QueryInterface(REFIID iid, void** object)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::SoundCardDeviceUpdater::QueryInterface");
    if (iid != IID_IUnknown && iid != IID_IMMNotificationClient)
    {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    AddRef();
    *object = this;
    return S_OK;
}

// Required behaviour: the two operations share one label.
ULONG SoundCard::SoundCardDeviceUpdater::AddRef()
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::SoundCardDeviceUpdater::Release");
    return static_cast<ULONG>(platform::interlockedIncrement(&m_refCount));
}

ULONG SoundCard::SoundCardDeviceUpdater::Release()
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::SoundCardDeviceUpdater::Release");
    const LONG count = platform::interlockedDecrement(&m_refCount);
    if (count == 0)
        delete this;
    return static_cast<ULONG>(count);
}

HRESULT SoundCard::SoundCardDeviceUpdater::OnDeviceStateChanged(LPCWSTR deviceId, DWORD newState)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::SoundCardDeviceUpdater::OnDeviceStateChanged");
    const qor::String id = idText(deviceId);
    SONAVIT_LOG(soundcardlog, LOG_DEBUG, out.append("Device with id ").append(id).append(" state changed to ").append(decimalText(newState)));
    const AudioDevice device(id);
    const DeviceList devices = selectDeviceList(device);
    const ObserverList observers = selectObserver(device);
    if (devices.get() == nullptr)
        return S_OK;
    const unsigned int index = listsearch::indexOf(*devices, device);
    if (!listsearch::isHit(index))
        return E_FAIL;
    (*devices)[index].refreshDeviceState(); // reads the state from the platform: newState may be out of date
    notify(observers, &SoundCardObserver::onDeviceStateChanged);
    return S_OK;
}

HRESULT SoundCard::SoundCardDeviceUpdater::OnDeviceAdded(LPCWSTR deviceId)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::SoundCardDeviceUpdater::OnDeviceAdded");
    AudioDevice device(idText(deviceId));
    const DeviceList devices = selectDeviceList(device);
    const ObserverList observers = selectObserver(device);
    if (devices.get() != nullptr)
        libSonavit::lastuse::append(device,
                                    *devices); // even a duplicate: required behaviour, and a removal removes the first
    notify(observers, &SoundCardObserver::onDeviceAdded);
    return S_OK;
}

HRESULT SoundCard::SoundCardDeviceUpdater::OnDeviceRemoved(LPCWSTR deviceId)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::SoundCardDeviceUpdater::OnDeviceRemoved");
    const AudioDevice device(idText(deviceId));
    const DeviceList devices = selectDeviceList(device);
    const ObserverList observers = selectObserver(device);
    if (devices.get() != nullptr)
    {
        const unsigned int index = listsearch::indexOf(*devices, device);
        if (!listsearch::isHit(index))
            return E_FAIL;
        devices->remove(index);
    }
    notify(observers, &SoundCardObserver::onDeviceRemoved); // even without a list, unlike a change of state
    return S_OK;
}

HRESULT SoundCard::SoundCardDeviceUpdater::OnDefaultDeviceChanged(EDataFlow, ERole, LPCWSTR)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::SoundCardDeviceUpdater::OnDefaultDeviceChanged");
    return S_OK;
}

// Required behaviour: the label lacks a pair of colons; readers of the log match it.
HRESULT SoundCard::SoundCardDeviceUpdater::OnPropertyValueChanged(LPCWSTR, const PROPERTYKEY)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::SoundCardDeviceUpdaterOnPropertyValueChanged");
    return S_OK;
}

/// The list for @p device; nil if the device belongs to another card.
DeviceList SoundCard::SoundCardDeviceUpdater::selectDeviceList(const AudioDevice& device) const
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::SoundCardDeviceUpdater::selectDeviceList");
    return sideOf(device, *m_ownerId, m_playbackDeviceList, m_recordDeviceList);
}

/// The observers for the side of @p device; nil if the device belongs to another card.
ObserverList SoundCard::SoundCardDeviceUpdater::selectObserver(const AudioDevice& device) const
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::SoundCardDeviceUpdater::selectObserver");
    return sideOf(device, *m_ownerId, m_playbackObserver, m_recordObserver);
}
