#include "simulator/machine/file/machinefile.h"

#include "simulator/machine/file/check.h"
#include "simulator/machine/file/cursor.h"
#include "simulator/machine/file/fieldtables.h"
#include "simulator/machine/file/json.h"
#include "simulator/machine/file/utf8path.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>

namespace sim
{
namespace
{
namespace fs = std::filesystem;

constexpr std::uintmax_t largestFile = std::uintmax_t{64} << 20;

[[noreturn]] void refuse(const std::string& path, const std::string& found)
{
    throw MachineFileError(path, 0, 0, "", "a machine file", found);
}

/// The path of a file that is worth opening: opening a pipe would wait, reading a device would never end.
fs::path regularFile(const std::string& name)
{
    const std::optional<fs::path> path = pathOf(name);
    if (!path)
        refuse(name, "a file that cannot be opened");
    std::error_code error;
    const fs::file_status status = fs::status(*path, error);
    if (fs::is_directory(status))
        refuse(name, "a folder");
    if (fs::exists(status) && !fs::is_regular_file(status))
        refuse(name, "something that is not a regular file");
    const std::uintmax_t size = fs::file_size(*path, error);
    if (!error && size > largestFile)
        refuse(name, "a file larger than 64 MiB");
    return *path;
}

std::string contentOf(std::istream& file)
{
    std::string content;
    std::array<char, 0x10000> piece;
    while (file)
    {
        file.read(piece.data(), piece.size());
        content.append(piece.data(), static_cast<std::size_t>(file.gcount()));
    }
    return content;
}
}

Machine readMachineFile(const std::string& path)
{
    std::ifstream file(regularFile(path), std::ios::binary);
    if (!file)
        refuse(path, "a file that cannot be opened");
    const std::string text = contentOf(file);
    if (file.bad())
        refuse(path, "a file that cannot be read completely");
    return readMachine(text, path);
}

Machine readMachine(const std::string& text, const std::string& nameForMessages)
{
    const JsonValue json = parseJson(text, nameForMessages);
    Machine result = fieldsOf<Machine>().read(JsonCursor(json, nameForMessages));
    const std::vector<MachineProblem> problems = checkMachine(result);
    if (problems.empty())
        return result;

    const MachineProblem& first = problems.front();
    const std::string others = problems.size() == 1 ? "" : " (and " + std::to_string(problems.size() - 1) + " more)";
    throw MachineFileError(nameForMessages, json.nearest(first.place).line, 0, first.place, first.expected,
                           first.found + others);
}

std::string writeMachine(const Machine& machine)
{
    return printJson(fieldsOf<Machine>().write(machine));
}
}
