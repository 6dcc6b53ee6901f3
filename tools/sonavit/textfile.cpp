#include "tools/sonavit/textfile.h"

#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/text.h"

#include <array>
#include <cstddef>
#include <filesystem>
#include <fstream>

namespace sonavit::program
{
namespace
{
constexpr std::size_t longestFile = std::size_t{64} << 20;
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
    std::ofstream file(std::filesystem::u8path(path), std::ios::binary);
    file << text << std::flush;
    if (!file)
        throw OperationFailure("the file " + inQuotes(path) + " cannot be written");
}
}
