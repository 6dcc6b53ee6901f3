// What COM and the system call in SonavitMachine.dll.
#include "platform/coreaudio.h"
#include "simulator/windows/enumeratorfactory.h"
#include "simulator/windows/server/machineserver.h"
#include "simulator/windows/server/registration.h"
#include "simulator/windows/server/systemclass.h"

using namespace sim;

namespace
{
/// Keeps the library in the process: COM frees libraries without objects, and the records belong to the whole process.
void stayToTheEnd()
{
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<LPCWSTR>(&stayToTheEnd), &module);
}
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID* object)
{
    if (object == nullptr)
        return E_POINTER;
    *object = nullptr;
    if (!IsEqualGUID(clsid, __uuidof(MMDeviceEnumerator)))
        return CLASS_E_CLASSNOTAVAILABLE;
    if (server::isCalledByWaveFunctions())
        return server::systemClassObject(clsid, iid, object);
    const HRESULT result = server::start();
    if (FAILED(result))
        return result;
    stayToTheEnd();
    return enumeratorFactory().QueryInterface(iid, object);
}

STDAPI DllCanUnloadNow()
{
    return S_FALSE;
}

STDAPI DllRegisterServer()
{
    return server::registerServer();
}

STDAPI DllUnregisterServer()
{
    return server::unregisterServer();
}

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID)
{
    if (reason == DLL_PROCESS_DETACH)
        server::writeRecords();
    return TRUE;
}
