#include "COM/comptr.h"

#include "COM/endofcom.h"
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
}

void logExceptionOfRelease()
{
    SONAVIT_LOG(comptrlog, LOG_ERROR, out.append("COMPtr destructor caught an exception"));
}

COMInitializer::COMInitializer()
{
    SONAVIT_TRACE(comptrlog, "COMInitializer::COMInitializer");
    const HRESULT result = CoInitialize(nullptr);
    EndOfCOM end(SUCCEEDED(result)); // for an exception out of the message: no destructor runs then
    SONAVIT_LOG(comptrlog, LOG_DEBUG, out.append("CoInitialize returns "), out + signExtended(result));
    end.forget();
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
