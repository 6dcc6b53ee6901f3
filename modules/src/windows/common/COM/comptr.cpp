#include "COM/comptr.h"

#include "COM/resultcode.h"
#include "qor/logstatement.h"

namespace
{
/// Log channel of the guard around Release and of COMInitializer.
namespace comptrlog
{
constexpr const char* channel = "comptr";
qor::LoggerSlot logger;
}

/// Undoes a successful CoInitialize of this thread unless forget() was called.
class InitializationGuard
{
public:
    explicit InitializationGuard(HRESULT result) noexcept : m_initialized(SUCCEEDED(result)) {}
    InitializationGuard(const InitializationGuard&) = delete;
    InitializationGuard& operator=(const InitializationGuard&) = delete;

    ~InitializationGuard()
    {
        if (m_initialized)
            CoUninitialize();
    }

    void forget() noexcept { m_initialized = false; }

private:
    bool m_initialized;
};
}

void logExceptionOfRelease()
{
    SONAVIT_LOG(comptrlog, LOG_ERROR, out.append("COMPtr destructor caught an exception"));
}

COMInitializer::COMInitializer()
{
    SONAVIT_TRACE(comptrlog, "COMInitializer::COMInitializer");
    const HRESULT result = CoInitialize(nullptr);
    InitializationGuard guard(result); // for an exception out of the message: no destructor runs then
    SONAVIT_LOG(comptrlog, LOG_DEBUG, out.append("CoInitialize returns "), out + signExtended(result));
    guard.forget();
}

COMInitializer::~COMInitializer()
{
    CoUninitialize();
}

unsigned int comReferenceCount(IUnknown* object)
{
    const ULONG raised = object->AddRef();
    object->Release();
    return static_cast<unsigned int>(raised - 1);
}
