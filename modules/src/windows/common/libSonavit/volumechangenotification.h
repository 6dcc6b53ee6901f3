#pragma once

#include "COM/comptr.h"
#include "libModuleCommon/export.h"
#include "platform/coreaudio.h"

// The platform's interface has virtual functions and no virtual destructor, which would change the layout of its
// virtual table. Release destroys the object.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// Notifies a window, a function or both that an endpoint's volume or mute has changed, including changes by this
/// process.
///
/// Create one with new, hold it in a COMPtr<VolumeChangeNotification>::pointer, which adopts its first reference, set
/// window and function, and pass it to VolumeControllerInterface::registerVolumeChangeNotification(). The notification
/// carries no data: read the new state from the controller. The last Release destroys the object.
///
/// The platform calls OnNotify on a thread of its own; the function runs on that thread, the window receives its
/// message on the window's thread. Only the reference count is thread-safe: set window and function before registering.
class SONAVIT_API VolumeChangeNotification final : public IAudioEndpointVolumeCallback
{
public:
    /// The message that is posted to the window on each change, with both parameters 0; equal to
    /// MM_MIXM_CONTROL_CHANGE.
    static constexpr UINT message = 0x3D1;

    /// Reference count 1; neither window nor function.
    VolumeChangeNotification();

    /// Required behaviour: both copy all fields, including the reference count, which then does not count the
    /// references on the copy.
    VolumeChangeNotification(const VolumeChangeNotification& other);
    VolumeChangeNotification& operator=(const VolumeChangeNotification& other);

    /// Sets the window that receives the message; null for none. Takes no ownership.
    void setCallbackWindow(HWND window);

    /// Sets the function that is called with @p context; null for none. Takes no ownership of @p context.
    void setCallbackFunction(void (*function)(void*), void* context);

    /// Answers IUnknown and IAudioEndpointVolumeCallback, with a new reference; for any other interface it stores null
    /// and returns E_NOINTERFACE.
    HRESULT STDMETHODCALLTYPE QueryInterface(const GUID& iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    /// Logs "OnNotify" (LOG_ERROR), calls the function, then posts the message (PostMessageW), even to a null window.
    /// @p data is ignored and may be null.
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
