#pragma once

#include "libSonavit/soundcard.h"

// The base has virtual functions and no virtual destructor: objects of it end by Release, and a virtual destructor
// would take a place among the platform's functions.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// Keeps a card's endpoint lists in step with the hardware and tells the card's observers.
///
/// It does not know the card: it holds shares of the card's lists, observers and id, and may outlive it. The platform
/// calls it on a thread of its own; only the reference count is safe for that. Exceptions from endpoints, lists and
/// observers pass through to the platform. The object ends with its last Release.
class SONAVIT_API SoundCard::SoundCardDeviceUpdater final : public IMMNotificationClient
{
public:
    /// A new updater without any share; the handle holds its one reference. It needs an owner id, see setOwnerId().
    static COMPtr<SoundCardDeviceUpdater>::pointer createUpdater();

    ~SoundCardDeviceUpdater();
    SoundCardDeviceUpdater(const SoundCardDeviceUpdater&) = delete;
    SoundCardDeviceUpdater& operator=(const SoundCardDeviceUpdater&) = delete;

    /// Takes a share of the card's id, which is compared, case included, with the instance path of each endpoint. A nil
    /// handle is taken as well, but the id that is held must not be nil by the time an event comes.
    void setOwnerId(const SharedPointer<qor::String>& ownerId);

    /// Take a share each. A nil handle is refused, with a message (LOG_WARNING) and false; a list without elements is
    /// not.
    bool setRecordDeviceList(const SharedPointer<qor::Array<AudioDevice>>& list);
    bool setPlaybackDeviceList(const SharedPointer<qor::Array<AudioDevice>>& list);
    bool setPlaybackObserver(const SharedPointer<qor::Array<BorrowedPointer<SoundCardObserver>>>& observers);
    bool setRecordObserver(const SharedPointer<qor::Array<BorrowedPointer<SoundCardObserver>>>& observers);

    /// Knows IUnknown and IMMNotificationClient; anything else is E_NOINTERFACE with null stored.
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    /// Has the list's own endpoint read its state, and tells the observers of that side. @p newState is only logged.
    /// @return E_FAIL, with nobody told, for an endpoint of this card that its list does not hold; otherwise S_OK
    HRESULT STDMETHODCALLTYPE OnDeviceStateChanged(LPCWSTR deviceId, DWORD newState) override;

    /// Appends the endpoint, if it is of this card, also where the list holds it already; tells the observers. @return
    /// S_OK
    HRESULT STDMETHODCALLTYPE OnDeviceAdded(LPCWSTR deviceId) override;

    /// Takes the endpoint out and tells the observers. One that can no longer be opened counts as foreign and stays.
    /// @return E_FAIL, with nobody told, for an endpoint of this card that its list does not hold; otherwise S_OK
    HRESULT STDMETHODCALLTYPE OnDeviceRemoved(LPCWSTR deviceId) override;

    /// These change nothing. @return S_OK
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
