#include "simulator/windows/server/systemclass.h"

#include "simulator/windows/systemfunction.h"

#include <array>
#include <string>

namespace sim::server
{
namespace
{
HMODULE moduleOf(const void* code)
{
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       static_cast<LPCWSTR>(code), &module);
    return module;
}

/// The system's folder with the name of one of its files.
std::wstring systemFile(const wchar_t* name)
{
    std::wstring folder(MAX_PATH, L'\0');
    folder.resize(GetSystemDirectoryW(folder.data(), MAX_PATH));
    return folder + L"\\" + name;
}
}

bool isCalledByWaveFunctions()
{
    const std::array<HMODULE, 2> libraries = {GetModuleHandleW(L"winmm.dll"), GetModuleHandleW(L"wdmaud.drv")};
    std::array<void*, 32> calls = {};
    const USHORT count = CaptureStackBackTrace(0, static_cast<DWORD>(calls.size()), calls.data(), nullptr);
    for (USHORT i = 0; i < count; ++i)
    {
        const HMODULE module = moduleOf(calls[i]);
        if (module != nullptr && (module == libraries[0] || module == libraries[1]))
            return true;
    }
    return false;
}

HRESULT systemClassObject(REFCLSID clsid, REFIID iid, void** object)
{
    using GetClassObject = HRESULT STDAPICALLTYPE(REFCLSID, REFIID, void**);
    static auto* const function =
        systemFunction<GetClassObject>(systemFile(L"mmdevapi.dll").c_str(), "DllGetClassObject");
    return function == nullptr ? CLASS_E_CLASSNOTAVAILABLE : function(clsid, iid, object);
}
}
