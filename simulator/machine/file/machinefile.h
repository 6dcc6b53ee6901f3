/// Machines as files. machines/README.md shows how to describe one, machines/machine.schema.json what there may be.
#pragma once

#include "simulator/machine/machine.h"

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace sim
{
/// A machine file that cannot be used. what() says where, what was expected and what stood there:
/// `desk.json:14: /endpoints/0/flow: expected "render" or "capture", found "sideways"`.
class MachineFileError : public std::runtime_error
{
public:
    /// @param line   counted from 1; 0 where no line is to blame
    /// @param column counted from 1 in bytes; 0 but for what is not JSON
    /// @param place  JSON pointer
    MachineFileError(std::string file, std::size_t line, std::size_t column, std::string place, std::string expected,
                     std::string found);

    const std::string& file() const;
    std::size_t line() const;
    std::size_t column() const;
    const std::string& place() const;
    const std::string& expected() const;
    const std::string& found() const;

private:
    std::string m_file;
    std::size_t m_line;
    std::size_t m_column;
    std::string m_place;
    std::string m_expected;
    std::string m_found;
};

/// Reads a machine from the file @p path (UTF-8). Throws MachineFileError.
Machine readMachineFile(const std::string& path);

/// Reads a machine from the content of a file, which error messages call @p nameForMessages. Throws MachineFileError.
Machine readMachine(const std::string& text, const std::string& nameForMessages);

/// The content of a file that reads back as an equal machine. What equals its default is left out.
std::string writeMachine(const Machine& machine);

/// Reads the machine that ships under that name, or the file of that path. Throws MachineFileError; for a name that is
/// unknown its text lists those that there are.
///
/// Shipped machines are looked for in the folder that the environment variable SONAVIT_MACHINES names; where it is not
/// set, in `machines` beside the running program, then where an installation has them (`../share/sonavit/machines`),
/// then in the folder of the sources that the program was built from.
Machine findMachine(const std::string& nameOrFile);

/// The names of the machines that findMachine() knows, in alphabetical order.
std::vector<std::string> machineNames();

/// The file of the machine that ships under that name; empty where there is none.
std::string machineFile(const std::string& name);
}
