#include "simulator/machine/file/programfolder.h"

#include "platform/coreaudio.h"

#include <filesystem>
#include <string>

namespace sim
{
std::string programFolder()
{
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&programFolder), &module);
    constexpr DWORD longestPath = 32768;
    std::wstring path(longestPath, L'\0');
    path.resize(GetModuleFileNameW(module, path.data(), longestPath));
    return std::filesystem::path(path).parent_path().u8string();
}
}
