#include "tools/sonavit/textfile.h"

#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/text.h"

#include <array>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace sonavit::program
{
namespace
{
constexpr std::size_t longestFile = std::size_t{64} << 20;

bool isWritten(const std::filesystem::path& path, const std::string& text)
{
    std::ofstream file(path, std::ios::binary);
    file << text << std::flush;
    file.close();
    return !file.fail();
}

[[noreturn]] void refuse(const std::string& path)
{
    throw OperationFailure("the file " + inQuotes(path) + " cannot be written");
}
}

std::string readFile(const std::string& path)
{
    std::ifstream file(std::filesystem::u8path(path), std::ios::binary);
    std::string text;
    std::array<char, 4096> part{};
    while (file.read(part.data(), part.size()) || file.gcount() > 0) // no iterator: those throw for a folder
    {
        text.append(part.data(), static_cast<std::size_t>(file.gcount()));
        if (text.size() > longestFile)
            throw OperationFailure("the file " + inQuotes(path) + " is larger than 64 MiB");
    }
    if (!file.is_open() || file.bad())
        throw OperationFailure("the file " + inQuotes(path) + " cannot be read");
    return text;
}

void writeFile(const std::string& path, const std::string& text)
{
    if (!isWritten(std::filesystem::u8path(path), text))
        refuse(path);
}

/// A link stays one: the file that it leads to is replaced.
void replaceFile(const std::string& path, const std::string& text)
{
    std::filesystem::path target = std::filesystem::u8path(path);
    std::error_code error;
    if (std::filesystem::exists(target, error))
    {
        if (!std::filesystem::is_regular_file(target, error))
            return writeFile(path, text);
        target = std::filesystem::canonical(target, error);
    }
    std::filesystem::path part = target;
    part += ".part";
    if (std::filesystem::exists(part, error))
        throw OperationFailure("the file " + inQuotes(part.u8string()) + " already exists");
    const bool isComplete = isWritten(part, text);
    error.clear();
    if (isComplete)
        std::filesystem::rename(part, target, error);
    if (isComplete && !error)
        return;
    std::filesystem::remove(part, error);
    refuse(path);
}
}
