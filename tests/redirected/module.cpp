// A DLL with two kinds of imports: CoCreateInstance from a library that is loaded at the first call, CoCreateInstanceEx
// from an API set. It does not know the simulator.

#include "platform/windows/defineidentifiers.h"

extern "C" __declspec(dllexport) HRESULT createOnDemand()
{
    IMMDeviceEnumerator* enumerator = nullptr;
    const HRESULT result = CoCreateInstance(__uuidof(MMDeviceEnumerator), nullptr, CLSCTX_INPROC_SERVER,
                                            __uuidof(IMMDeviceEnumerator), reinterpret_cast<void**>(&enumerator));
    if (enumerator != nullptr)
        enumerator->Release();
    return result;
}

extern "C" __declspec(dllexport) HRESULT createByApiSet()
{
    MULTI_QI query = {&__uuidof(IMMDeviceEnumerator), nullptr, S_OK};
    const HRESULT result =
        CoCreateInstanceEx(__uuidof(MMDeviceEnumerator), nullptr, CLSCTX_INPROC_SERVER, nullptr, 1, &query);
    if (query.pItf != nullptr)
        query.pItf->Release();
    return result;
}
