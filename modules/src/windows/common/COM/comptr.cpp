#include "COM/comptr.h"

#include "COM/resultcode.h"

COMInitializer::COMInitializer()
{
    SONAVIT_TRACE(comptrlog, "COMInitializer::COMInitializer");
    const HRESULT result = CoInitialize(nullptr);
    SONAVIT_LOG(comptrlog, LOG_DEBUG, out.append("CoInitialize returns "), out + signExtended(result));
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
