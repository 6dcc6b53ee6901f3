// The messages about machine files that cannot be used.
#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/printable.h"

#include <utility>

namespace sim
{
namespace
{
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
}
