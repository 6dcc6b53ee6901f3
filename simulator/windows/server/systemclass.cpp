#include "simulator/windows/server/systemclass.h"

#include "simulator/windows/systemfunction.h"

#include <algorithm>
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
    const std::array<HMODULE, 2> waves = {GetModuleHandleW(L"winmm.dll"), GetModuleHandleW(L"wdmaud.drv")};
    const std::array<HMODULE, 4> between = {moduleOf(reinterpret_cast<const void*>(&isCalledByWaveFunctions)),
                                            GetModuleHandleW(L"ole32.dll"), GetModuleHandleW(L"combase.dll"),
                                            GetModuleHandleW(L"rpcrt4.dll")};
    std::array<void*, 32> calls = {};
    const USHORT count = CaptureStackBackTrace(0, static_cast<DWORD>(calls.size()), calls.data(), nullptr);
    const auto isBetween = [&](const void* code)
    { return std::find(between.begin(), between.end(), moduleOf(code)) != between.end(); };
    const auto caller = std::find_if_not(calls.begin(), calls.begin() + count, isBetween);
    return caller != calls.begin() + count && std::find(waves.begin(), waves.end(), moduleOf(*caller)) != waves.end() &&
           moduleOf(*caller) != nullptr;
}

HRESULT systemClassObject(REFCLSID clsid, REFIID iid, void** object)
{
    using GetClassObject = HRESULT STDAPICALLTYPE(REFCLSID, REFIID, void**);
    static auto* const function =
        systemFunction<GetClassObject>(systemFile(L"mmdevapi.dll").c_str(), "DllGetClassObject");
    return function == nullptr ? CLASS_E_CLASSNOTAVAILABLE : function(clsid, iid, object);
}
}
