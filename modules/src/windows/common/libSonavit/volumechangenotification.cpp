#include "libSonavit/volumechangenotification.h"

#include "COM/identifiers.h"
#include "platform/interlocked.h"
#include "qor/logstatement.h"

namespace
{
/// The log channel of this module.
namespace notificationlog
{
constexpr const char* channel = "libSonavit.volumeChangeNotification";
qor::LoggerSlot logger;
}
}

VolumeChangeNotification::VolumeChangeNotification()
    : m_referenceCount(1),
      m_window(nullptr),
      m_callback(nullptr),
      m_callbackContext(nullptr)
{
}

VolumeChangeNotification::VolumeChangeNotification(const VolumeChangeNotification& other) = default;
VolumeChangeNotification& VolumeChangeNotification::operator=(const VolumeChangeNotification& other) = default;

VolumeChangeNotification::~VolumeChangeNotification()
{
    m_window = nullptr;
    m_callback = nullptr;
    m_callbackContext = nullptr;
}

void VolumeChangeNotification::setCallbackWindow(HWND window)
{
    m_window = window;
}

void VolumeChangeNotification::setCallbackFunction(void (*function)(void*), void* context)
{
    m_callback = function;
    m_callbackContext = context;
}

HRESULT VolumeChangeNotification::QueryInterface(const GUID& iid, void** object)
{
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IAudioEndpointVolumeCallback)
        return E_NOINTERFACE;
    *object = this;
    AddRef();
    return S_OK;
}

ULONG VolumeChangeNotification::AddRef()
{
    return static_cast<ULONG>(platform::interlockedIncrement(&m_referenceCount));
}

ULONG VolumeChangeNotification::Release()
{
    const LONG count = platform::interlockedDecrement(&m_referenceCount);
    if (count == 0)
        delete this;
    return static_cast<ULONG>(count);
}

/// Required behaviour: logged at LOG_ERROR, so that changes appear in a log with the default threshold.
HRESULT VolumeChangeNotification::OnNotify(AUDIO_VOLUME_NOTIFICATION_DATA*)
{
    SONAVIT_LOG(notificationlog, LOG_ERROR, out.append("OnNotify"));
    if (m_callback != nullptr)
        m_callback(m_callbackContext);
    PostMessageW(m_window, message, 0, 0);
    return S_OK;
}
