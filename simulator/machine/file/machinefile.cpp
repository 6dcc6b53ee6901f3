#include "simulator/machine/file/machinefile.h"

#include "simulator/machine/file/programfolder.h"
#include "simulator/machine/printable.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <utility>

namespace sim
{
namespace
{
namespace fs = std::filesystem;

constexpr const char* suffix = ".json";
constexpr std::uintmax_t largestFile = std::uintmax_t{64} << 20;
constexpr std::size_t longestName = 300;     ///< bytes of a file's name or a JSON pointer in a message
constexpr std::size_t longestFinding = 1000; ///< bytes of what was found, in a message

std::string describe(const std::string& file, std::size_t line, std::size_t column, const std::string& place,
                     const std::string& expected, const std::string& found)
{
    std::string text = printable(file, longestName);
    if (line != 0)
        text += ":" + std::to_string(line);
    if (column != 0)
        text += ":" + std::to_string(column);
    if (!place.empty())
        text += ": " + printable(place, longestName);
    return text + ": expected " + expected + ", found " + printable(found, longestFinding);
}

/// The path of that name in UTF-8; no value if it is not UTF-8 and the system, as Windows, needs that.
std::optional<fs::path> pathOf(const std::string& name)
{
    try
    {
        return fs::u8path(name);
    }
    catch (const std::exception&)
    {
        return std::nullopt;
    }
}

/// The folders of shipped machines; some of them may not exist.
std::vector<fs::path> machineFolders()
{
    const char* const chosen = std::getenv("SONAVIT_MACHINES");
    std::vector<fs::path> folders;
    if (chosen != nullptr && *chosen != '\0')
    {
        if (const auto folder = pathOf(chosen))
            folders.push_back(*folder);
        return folders;
    }
    const std::string program = programFolder();
    if (!program.empty())
    {
        folders.push_back(fs::u8path(program) / "machines");
        folders.push_back(fs::u8path(program).parent_path() / "share" / "sonavit" / "machines");
    }
#if defined(SONAVIT_MACHINES_DIR)
    folders.push_back(fs::u8path(SONAVIT_MACHINES_DIR));
#endif
    return folders;
}

/// The folder also contains the schema, which is not a machine.
bool isMachineFile(const fs::path& path)
{
    return path.extension() == suffix && path.stem().extension() != ".schema";
}

bool isPath(const std::string& nameOrFile)
{
    const bool hasFolder = nameOrFile.find_first_of("/\\") != std::string::npos;
    const std::optional<fs::path> path = pathOf(nameOrFile);
    return hasFolder || (path && path->extension() == suffix);
}

std::string knownNames()
{
    std::string result;
    for (const std::string& name : machineNames())
        result += (result.empty() ? "" : ", ") + name;
    return result.empty() ? "no machine at all" : printable(result, longestFinding);
}

[[noreturn]] void refuse(const std::string& path, const std::string& found)
{
    throw MachineFileError(path, 0, 0, "", "a machine file", found);
}

/// The path of a file that is worth opening: opening a pipe would wait, reading a device would never end.
fs::path regularFile(const std::string& name)
{
    const std::optional<fs::path> path = pathOf(name);
    if (!path)
        refuse(name, "nothing that can be opened");
    std::error_code error;
    const fs::file_status status = fs::status(*path, error);
    if (fs::is_directory(status))
        refuse(name, "a folder");
    if (fs::exists(status) && !fs::is_regular_file(status))
        refuse(name, "something that is not a regular file");
    const std::uintmax_t size = fs::file_size(*path, error);
    if (!error && size > largestFile)
        refuse(name, "one of more than 64 MiB");
    return *path;
}
}

MachineFileError::MachineFileError(std::string file, std::size_t line, std::size_t column, std::string place,
                                   std::string expected, std::string found)
    : std::runtime_error(describe(file, line, column, place, expected, found)),
      m_file(std::move(file)),
      m_line(line),
      m_column(column),
      m_place(std::move(place)),
      m_expected(std::move(expected)),
      m_found(std::move(found))
{
}

const std::string& MachineFileError::file() const
{
    return m_file;
}

std::size_t MachineFileError::line() const
{
    return m_line;
}

std::size_t MachineFileError::column() const
{
    return m_column;
}

const std::string& MachineFileError::place() const
{
    return m_place;
}

const std::string& MachineFileError::expected() const
{
    return m_expected;
}

const std::string& MachineFileError::found() const
{
    return m_found;
}

Machine readMachineFile(const std::string& path)
{
    std::ifstream file(regularFile(path), std::ios::binary);
    if (!file)
        refuse(path, "nothing that can be opened");
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (file.bad())
        refuse(path, "one that cannot be read to its end");
    return readMachine(text, path);
}

Machine findMachine(const std::string& nameOrFile)
{
    if (isPath(nameOrFile))
        return readMachineFile(nameOrFile);
    const std::string file = machineFile(nameOrFile);
    if (!file.empty())
        return readMachineFile(file);
    throw MachineFileError(inQuotes(nameOrFile), 0, 0, "", "the name of a machine (" + knownNames() + ") or of a file",
                           "neither");
}

std::vector<std::string> machineNames()
{
    std::vector<std::string> names;
    for (const fs::path& folder : machineFolders())
    {
        std::error_code error;
        for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
             entry.increment(error))
        {
            if (isMachineFile(entry->path()))
                names.push_back(entry->path().stem().u8string());
        }
    }
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

std::string machineFile(const std::string& name)
{
    for (const fs::path& folder : machineFolders())
    {
        const std::optional<fs::path> file = pathOf(name + suffix);
        std::error_code error;
        if (!name.empty() && file && isMachineFile(*file) && fs::is_regular_file(folder / *file, error))
            return (folder / *file).u8string();
    }
    return {};
}
}
