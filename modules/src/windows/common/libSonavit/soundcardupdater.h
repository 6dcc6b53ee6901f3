#pragma once

#include "libSonavit/soundcard.h"

// The base has virtual functions and no virtual destructor: its objects delete themselves in Release, and a virtual
// destructor would occupy a slot in the platform's table of functions.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// Keeps a card's endpoint lists in step with the hardware and notifies the card's observers.
///
/// It has no reference to the card: it holds shares of the card's lists, observers and id, and may outlive the card.
/// The platform calls it on a thread of the platform; only the reference count is safe against that. Exceptions from
/// endpoints, lists and observers reach the platform. The last Release deletes the object.
class SONAVIT_API SoundCard::SoundCardDeviceUpdater final : public IMMNotificationClient
{
public:
    /// A new updater without shares; the handle owns its one reference. It needs an owner id, see setOwnerId().
    static COMPtr<SoundCardDeviceUpdater>::pointer createUpdater();

    ~SoundCardDeviceUpdater();
    SoundCardDeviceUpdater(const SoundCardDeviceUpdater&) = delete;
    SoundCardDeviceUpdater& operator=(const SoundCardDeviceUpdater&) = delete;

    /// Takes a share of the card's id, which is compared, case included, with the instance path of each endpoint. A nil
    /// handle is accepted, but the updater must hold an id when an event arrives.
    void setOwnerId(const SharedPointer<qor::String>& ownerId);

    /// Each takes a share of its argument in place of the share that it held. @return false, with a message
    /// (LOG_WARNING) and the old share kept, for a nil handle; a list without elements is accepted
    bool setRecordDeviceList(const SharedPointer<qor::Array<AudioDevice>>& list);
    bool setPlaybackDeviceList(const SharedPointer<qor::Array<AudioDevice>>& list);
    bool setPlaybackObserver(const SharedPointer<qor::Array<BorrowedPointer<SoundCardObserver>>>& observers);
    bool setRecordObserver(const SharedPointer<qor::Array<BorrowedPointer<SoundCardObserver>>>& observers);

    /// Stores this object, with an added reference, for IUnknown and IMMNotificationClient. @return E_NOINTERFACE, with
    /// null stored, for any other interface
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;

    /// Adds a reference. Safe on any thread. @return the new number of references
    ULONG STDMETHODCALLTYPE AddRef() override;

    /// Gives up a reference; the last one deletes the object. Safe on any thread. @return the new number of references,
    /// 0 after the deletion
    ULONG STDMETHODCALLTYPE Release() override;

    /// Refreshes the state of the endpoint in the list from the platform, and notifies the observers of that side.
    /// @p newState is only logged (LOG_DEBUG).
    /// @return E_FAIL, without a notification, for an endpoint of this card that is not in its list; otherwise S_OK
    HRESULT STDMETHODCALLTYPE OnDeviceStateChanged(LPCWSTR deviceId, DWORD newState) override;

    /// Appends an endpoint of this card, even if it is in the list already, and notifies the observers of that side.
    /// @return S_OK
    HRESULT STDMETHODCALLTYPE OnDeviceAdded(LPCWSTR deviceId) override;

    /// Removes the endpoint from the list and notifies the observers of that side. An endpoint that can no longer be
    /// opened counts as one of another card and stays in the list.
    /// @return E_FAIL, without a notification, for an endpoint of this card that is not in its list; otherwise S_OK
    HRESULT STDMETHODCALLTYPE OnDeviceRemoved(LPCWSTR deviceId) override;

    /// Both are ignored. @return S_OK
    HRESULT STDMETHODCALLTYPE OnDefaultDeviceChanged(EDataFlow flow, ERole role, LPCWSTR defaultDeviceId) override;
    HRESULT STDMETHODCALLTYPE OnPropertyValueChanged(LPCWSTR deviceId, const PROPERTYKEY key) override;

private:
    SoundCardDeviceUpdater();

    SharedPointer<qor::Array<AudioDevice>> selectDeviceList(const AudioDevice& device) const;
    SharedPointer<qor::Array<BorrowedPointer<SoundCardObserver>>> selectObserver(const AudioDevice& device) const;

    LONG m_refCount;
    SharedPointer<qor::String> m_ownerId;
    SharedPointer<qor::Array<AudioDevice>> m_recordDeviceList;
    SharedPointer<qor::Array<AudioDevice>> m_playbackDeviceList;
    SharedPointer<qor::Array<BorrowedPointer<SoundCardObserver>>> m_playbackObserver;
    SharedPointer<qor::Array<BorrowedPointer<SoundCardObserver>>> m_recordObserver;
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
