#include "tools/sonavit/textfile.h"

#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/text.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace sonavit::program
{
std::string readFile(const std::string& path)
{
    std::ifstream file(std::filesystem::u8path(path), std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
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
