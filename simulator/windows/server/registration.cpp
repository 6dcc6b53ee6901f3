#include "simulator/windows/server/registration.h"

#include <string>

namespace sim::server
{
namespace
{
constexpr const wchar_t* keyName = L"Software\\Classes\\CLSID\\{BCDE0395-E52F-467C-8E3D-C4579291692E}\\InprocServer32";
constexpr const wchar_t* serverValue = nullptr; ///< the value without a name
constexpr const wchar_t* modelValue = L"ThreadingModel";
constexpr const wchar_t* keptServer = L"BeforeSonavitMachine";
constexpr const wchar_t* keptModel = L"ThreadingModelBeforeSonavitMachine";

/// A string of the registry.
struct Text
{
    DWORD type = REG_SZ; ///< REG_SZ or REG_EXPAND_SZ
    std::wstring text;   ///< with its environment variables; empty if there is no such value
};

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

    Text read(const wchar_t* name) const
    {
        constexpr DWORD kinds = RRF_RT_REG_SZ | RRF_RT_REG_EXPAND_SZ | RRF_NOEXPAND;
        Text result;
        DWORD bytes = 0;
        if (RegGetValueW(m_key, nullptr, name, kinds, nullptr, nullptr, &bytes) != ERROR_SUCCESS)
            return {};
        result.text.resize(bytes / sizeof(wchar_t));
        if (RegGetValueW(m_key, nullptr, name, kinds, &result.type, result.text.data(), &bytes) != ERROR_SUCCESS)
            return {};
        result.text.resize(bytes / sizeof(wchar_t) - 1); // less the terminating zero
        return result;
    }

    LSTATUS write(const wchar_t* name, const Text& value) const
    {
        return RegSetValueExW(m_key, name, 0, value.type, reinterpret_cast<const BYTE*>(value.text.c_str()),
                              static_cast<DWORD>((value.text.size() + 1) * sizeof(wchar_t)));
    }

    /// Removes the value, if there is one.
    LSTATUS remove(const wchar_t* name) const
    {
        const LSTATUS result = RegDeleteValueW(m_key, name);
        return result == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : result;
    }

    /// Writes the value, or removes it if @p value is empty.
    LSTATUS restore(const wchar_t* name, const Text& value) const
    {
        return value.text.empty() ? remove(name) : write(name, value);
    }

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
bool isOwnFile(const Text& server)
{
    return CompareStringOrdinal(server.text.c_str(), -1, ownFile().c_str(), -1, TRUE) == CSTR_EQUAL;
}

/// The server from before; empty if there was none.
Text earlierServer(const Key& key)
{
    const Text kept = key.read(keptServer);
    return isOwnFile(kept) ? Text() : kept;
}

/// Keeps what is registered, unless that is this library, or something is kept already.
LSTATUS keepEarlier(const Key& key)
{
    const Text present = key.read(serverValue);
    if (present.text.empty() || isOwnFile(present) || !earlierServer(key).text.empty())
        return ERROR_SUCCESS;
    const LSTATUS result = key.write(keptServer, present);
    return result == ERROR_SUCCESS ? key.restore(keptModel, key.read(modelValue)) : result;
}

LSTATUS restoreEarlier(const Key& key)
{
    const Text before = earlierServer(key);
    if (before.text.empty() && !isOwnFile(key.read(serverValue)))
        return ERROR_SUCCESS; // another server
    LSTATUS result = key.restore(serverValue, before);
    if (result == ERROR_SUCCESS)
        result = key.restore(modelValue, before.text.empty() ? Text() : key.read(keptModel));
    if (result == ERROR_SUCCESS)
        result = key.remove(keptServer);
    return result == ERROR_SUCCESS ? key.remove(keptModel) : result;
}
}

HRESULT registerServer()
{
    const Key key;
    if (key.result() != ERROR_SUCCESS)
        return HRESULT_FROM_WIN32(key.result());
    LSTATUS result = keepEarlier(key);
    if (result == ERROR_SUCCESS)
        result = key.write(serverValue, {REG_SZ, ownFile()});
    if (result == ERROR_SUCCESS)
        result = key.write(modelValue, {REG_SZ, L"Both"});
    return HRESULT_FROM_WIN32(result);
}

HRESULT unregisterServer()
{
    const Key key;
    return HRESULT_FROM_WIN32(key.result() == ERROR_SUCCESS ? restoreEarlier(key) : key.result());
}
}
