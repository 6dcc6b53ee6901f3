// The search for machines by name.
#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/file/programfolder.h"
#include "simulator/machine/file/utf8path.h"
#include "simulator/machine/printable.h"

#include <algorithm>
#include <cstdlib>

namespace sim
{
namespace
{
namespace fs = std::filesystem;

constexpr const char* suffix = ".json";
constexpr std::size_t longestList = 1000; ///< bytes of the names in a message

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
    return result.empty() ? "none found" : printable(result, longestList);
}
}

Machine findMachine(const std::string& nameOrFile)
{
    if (isPath(nameOrFile))
        return readMachineFile(nameOrFile);
    const std::string file = machineFile(nameOrFile);
    if (!file.empty())
        return readMachineFile(file);
    throw UnknownMachine(inQuotes(nameOrFile), 0, 0, "", "the name of a machine (" + knownNames() + ") or of a file",
                         "no such name");
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
