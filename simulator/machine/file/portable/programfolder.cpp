#include "simulator/machine/file/programfolder.h"

#include <filesystem>

namespace sim
{
std::string programFolder()
{
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string() : program.parent_path().u8string();
}
}
