#include "simulator/machine/file/programfolder.h"

#include "platform/coreaudio.h"

#include <filesystem>
#include <string>

namespace sim
{
std::string programFolder()
{
    constexpr DWORD longestPath = 32768;
    std::wstring path(longestPath, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), longestPath));
    return std::filesystem::path(path).parent_path().u8string();
}
}
