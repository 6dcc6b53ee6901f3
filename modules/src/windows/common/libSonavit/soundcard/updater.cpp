#include "libSonavit/soundcardupdater.h"

#include "COM/identifiers.h"
#include "COM/resultcode.h"
#include "libSonavit/soundcard/listsearch.h"
#include "libSonavit/soundcard/log.h"
#include "platform/interlocked.h"

namespace
{
typedef SharedPointer<qor::Array<AudioDevice>> DeviceList;
typedef SharedPointer<qor::Array<BorrowedPointer<SoundCardObserver>>> ObserverList;

/// Makes @p share one of what @p offered holds, unless that is nil: then the share stays and @p refusal is logged.
template<class Handle>
bool takeShare(Handle& share, const Handle& offered, const char* refusal)
{
    if (offered.get() == nullptr)
    {
        SONAVIT_LOG(soundcardlog, LOG_WARNING, out.append(refusal));
        return false;
    }
    share = offered;
    return true;
}

/// What belongs to the side of @p device: @p playback or @p record; nil if the device is not of the card @p ownerId. A
/// device whose flow is not known goes to the record side.
template<class Handle>
Handle sideOf(const AudioDevice& device, const qor::String& ownerId, const Handle& playback, const Handle& record)
{
    if (device.deviceProperty().instancePath != ownerId)
        return Handle();
    EDataFlow flow = eAll;
    device.dataFlow(flow);
    return flow == eRender ? playback : record;
}

/// Calls all observers, those included that register while it goes on.
void tell(const ObserverList& observers, void (SoundCardObserver::*event)())
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

// This label lacks a pair of colons; readers of the log match on it as it is.
bool SoundCard::SoundCardDeviceUpdater::setRecordDeviceList(const DeviceList& list)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::SoundCardDeviceUpdatersetRecordDeviceList");
    return takeShare(m_recordDeviceList, list, "Cannot use an empty eCapture device list");
}

bool SoundCard::SoundCardDeviceUpdater::setPlaybackDeviceList(const DeviceList& list)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::SoundCardDeviceUpdater::setPlaybackDeviceList");
    return takeShare(m_playbackDeviceList, list, "Cannot use an empty eRender device list");
}

bool SoundCard::SoundCardDeviceUpdater::setPlaybackObserver(const ObserverList& observers)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::SoundCardDeviceUpdater::setPlaybackObserver");
    return takeShare(m_playbackObserver, observers, "Cannot use NULL pointer");
}

bool SoundCard::SoundCardDeviceUpdater::setRecordObserver(const ObserverList& observers)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::SoundCardDeviceUpdater::setRecordObserver");
    return takeShare(m_recordObserver, observers, "Cannot use NULL pointer");
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

// The two operations share one label.
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
    (*devices)[index].refreshDeviceState(); // asks the platform: the state that came with the event may be old by now
    tell(observers, &SoundCardObserver::onDeviceStateChanged);
    return S_OK;
}

HRESULT SoundCard::SoundCardDeviceUpdater::OnDeviceAdded(LPCWSTR deviceId)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::SoundCardDeviceUpdater::OnDeviceAdded");
    const AudioDevice device(idText(deviceId));
    const DeviceList devices = selectDeviceList(device);
    const ObserverList observers = selectObserver(device);
    if (devices.get() != nullptr)
        devices->append(device); // also one that is there already: nobody looks, and a removal takes out the first
    tell(observers, &SoundCardObserver::onDeviceAdded);
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
    tell(observers, &SoundCardObserver::onDeviceRemoved); // unlike a change of state, also without a list
    return S_OK;
}

HRESULT SoundCard::SoundCardDeviceUpdater::OnDefaultDeviceChanged(EDataFlow, ERole, LPCWSTR)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::SoundCardDeviceUpdater::OnDefaultDeviceChanged");
    return S_OK;
}

// This label lacks a pair of colons; readers of the log match on it as it is.
HRESULT SoundCard::SoundCardDeviceUpdater::OnPropertyValueChanged(LPCWSTR, const PROPERTYKEY)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::SoundCardDeviceUpdaterOnPropertyValueChanged");
    return S_OK;
}

/// The list that @p device belongs in; nil if it is of another card.
DeviceList SoundCard::SoundCardDeviceUpdater::selectDeviceList(const AudioDevice& device) const
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::SoundCardDeviceUpdater::selectDeviceList");
    return sideOf(device, *m_ownerId, m_playbackDeviceList, m_recordDeviceList);
}

/// The observers of the side that @p device belongs to; nil if it is of another card.
ObserverList SoundCard::SoundCardDeviceUpdater::selectObserver(const AudioDevice& device) const
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::SoundCardDeviceUpdater::selectObserver");
    return sideOf(device, *m_ownerId, m_playbackObserver, m_recordObserver);
}
