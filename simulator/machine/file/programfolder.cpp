#include "simulator/machine/file/programfolder.h"

#include <filesystem>

#if defined(_WIN32)
#include "platform/coreaudio.h"
#endif

namespace sim
{
#if defined(_WIN32)
std::string programFolder()
{
    constexpr DWORD longestPath = 32768;
    std::wstring path(longestPath, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), longestPath));
    return std::filesystem::path(path).parent_path().u8string();
}
#else
std::string programFolder()
{
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string() : program.parent_path().u8string();
}
#endif
}
