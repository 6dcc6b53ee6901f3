#pragma once

#include "COM/comptr.h"
#include "libModuleCommon/export.h"
#include "platform/coreaudio.h"

// The base has virtual functions and no virtual destructor: objects of it end by Release, and a virtual destructor
// would take a place among the platform's functions.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// Tells a window, a function or both that an endpoint's volume or mute has changed, whoever changed it.
///
/// Make one, hold it in a COMPtr<VolumeChangeNotification>::pointer, which adopts its first reference, set window and
/// function, and give it to VolumeControllerInterface::registerVolumeChangeNotification(). It carries no data: read the
/// new state from the controller. The object ends with its last Release.
///
/// OnNotify comes on a thread of the platform and calls the function there; the window gets its message on its own
/// thread. Only the reference count is safe between threads: set window and function before registering.
class SONAVIT_API VolumeChangeNotification final : public IAudioEndpointVolumeCallback
{
public:
    /// Posted to the window on each change, with both parameters 0: the number of the old mixer's control change.
    static constexpr UINT message = 0x3D1;

    /// Reference count 1; neither window nor function.
    VolumeChangeNotification();

    /// These copy all fields, the reference count of the other object included: the result is good for nothing but to
    /// be read, as its count says nothing of its own references.
    VolumeChangeNotification(const VolumeChangeNotification& other);
    VolumeChangeNotification& operator=(const VolumeChangeNotification& other);

    /// The window that gets the message from now on; null for none.
    void setCallbackWindow(HWND window);

    /// The function that is called from now on, with @p context; null for none.
    void setCallbackFunction(void (*function)(void*), void* context);

    /// Knows IUnknown and IAudioEndpointVolumeCallback; anything else is E_NOINTERFACE with null stored.
    HRESULT STDMETHODCALLTYPE QueryInterface(const GUID& iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    /// Calls the function, then posts the message (PostMessageW), also to a null window. @p data is not looked at.
    /// @return S_OK
    HRESULT STDMETHODCALLTYPE OnNotify(AUDIO_VOLUME_NOTIFICATION_DATA* data) override;

private:
    ~VolumeChangeNotification();

    LONG m_referenceCount;
    HWND m_window;
    void (*m_callback)(void*);
    void* m_callbackContext;
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
