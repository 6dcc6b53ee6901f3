#include "simulator/windows/server/registration.h"

#include <string>

namespace sim::server
{
namespace
{
constexpr const wchar_t* keyName = L"Software\\Classes\\CLSID\\{BCDE0395-E52F-467C-8E3D-C4579291692E}\\InprocServer32";
constexpr const wchar_t* serverValue = nullptr; ///< the value without a name
constexpr const wchar_t* keptValue = L"BeforeSonavitMachine";
constexpr const wchar_t* modelValue = L"ThreadingModel";

/// The key of the class, closed at the end of the scope.
class Key
{
public:
    Key()
        : m_result(RegCreateKeyExW(HKEY_LOCAL_MACHINE, keyName, 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr, &m_key,
                                   nullptr))
    {
    }
    ~Key()
    {
        if (m_result == ERROR_SUCCESS)
            RegCloseKey(m_key);
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    LSTATUS result() const { return m_result; }

    /// Empty if there is no such value.
    std::wstring read(const wchar_t* name) const
    {
        DWORD bytes = 0;
        if (RegGetValueW(m_key, nullptr, name, RRF_RT_REG_SZ, nullptr, nullptr, &bytes) != ERROR_SUCCESS)
            return {};
        std::wstring text(bytes / sizeof(wchar_t), L'\0');
        if (RegGetValueW(m_key, nullptr, name, RRF_RT_REG_SZ, nullptr, text.data(), &bytes) != ERROR_SUCCESS)
            return {};
        text.resize(bytes / sizeof(wchar_t) - 1); // less the terminating zero
        return text;
    }

    LSTATUS write(const wchar_t* name, const std::wstring& text) const
    {
        return RegSetValueExW(m_key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                              static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    }

    LSTATUS remove(const wchar_t* name) const { return RegDeleteValueW(m_key, name); }

private:
    HKEY m_key = nullptr;
    const LSTATUS m_result;
};

/// The file of this library.
std::wstring ownFile()
{
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&registerServer), &module);
    constexpr DWORD longestPath = 32768;
    std::wstring path(longestPath, L'\0');
    path.resize(GetModuleFileNameW(module, path.data(), longestPath));
    return path;
}
}

HRESULT registerServer()
{
    const Key key;
    if (key.result() != ERROR_SUCCESS)
        return HRESULT_FROM_WIN32(key.result());
    LSTATUS result = ERROR_SUCCESS;
    const std::wstring present = key.read(serverValue);
    if (!present.empty() && key.read(keptValue).empty())
        result = key.write(keptValue, present);
    if (result == ERROR_SUCCESS)
        result = key.write(serverValue, ownFile());
    if (result == ERROR_SUCCESS)
        result = key.write(modelValue, L"Both");
    return HRESULT_FROM_WIN32(result);
}

HRESULT unregisterServer()
{
    const Key key;
    if (key.result() != ERROR_SUCCESS)
        return HRESULT_FROM_WIN32(key.result());
    const std::wstring before = key.read(keptValue);
    if (before.empty())
        return S_OK;
    LSTATUS result = key.write(serverValue, before);
    if (result == ERROR_SUCCESS)
        result = key.remove(keptValue);
    return HRESULT_FROM_WIN32(result);
}
}
