/// @file
/// Machines as files. machines/README.md shows how to describe one, machines/machine.schema.json defines the format.
#pragma once

#include "simulator/machine/machine.h"

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace sim
{
/// A machine file that cannot be used. what() contains the position, what was expected and what was found:
/// `desk.json:14: /endpoints/0/flow: expected "render" or "capture", found "sideways"`. It is one line of printable
/// UTF-8 of at most about 2,000 bytes, whatever the file contains; the accessors return the whole data.
class MachineFileError : public std::runtime_error
{
public:
    /// @param line   counted from 1; 0 if the error concerns no line
    /// @param column counted from 1 in bytes; 0 unless the file is not JSON
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

/// There is neither a shipped machine nor a file of that name.
class UnknownMachine final : public MachineFileError
{
public:
    using MachineFileError::MachineFileError;
};

/// Reads a machine from the file @p path (UTF-8). Throws MachineFileError, also for anything that is not a regular file
/// and for a file of more than 64 MiB; neither is opened.
Machine readMachineFile(const std::string& path);

/// Reads a machine from @p text, the content of a file. Error messages contain @p nameForMessages as the file's name.
/// Throws MachineFileError.
Machine readMachine(const std::string& text, const std::string& nameForMessages);

/// The content of a file. Fields with their usual value are left out, and so are members that do not belong to the kind
/// of an event, of a property value or of a fault's outcome, such as the level of an event that plugs an endpoint.
/// readMachine() reads the content as an equal machine if @p machine passes the checks of a file, such members have
/// their usual value, and all strings are UTF-8 without a zero character.
std::string writeMachine(const Machine& machine);

/// Reads the shipped machine of that name, or the file of that path. Throws MachineFileError; for an unknown name
/// UnknownMachine, whose message lists the existing ones.
///
/// The folder of shipped machines is the value of the environment variable SONAVIT_MACHINES. If it is not set, the
/// folders are `machines` next to the running program (on Windows, next to the DLL that contains the machine), then
/// `../share/sonavit/machines` as in an installation, then the folder in the sources from which the program was built.
Machine findMachine(const std::string& nameOrFile);

/// The names of the machines that findMachine() knows, in alphabetical order.
std::vector<std::string> machineNames();

/// The file of the shipped machine of that name; empty if there is none.
std::string machineFile(const std::string& name);
}
