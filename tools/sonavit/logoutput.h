#pragma once

#include "qor/logging.h"

#include <optional>
#include <ostream>

namespace sonavit::program
{
/// Prints the library's log records of some priority and above to a stream, one per line, or none of them, for as long
/// as it lives: "error libSonavit.soundcard: …". Entering an operation is marked ">", leaving it "<".
class LogOutput
{
public:
    /// @param least lowest priority to print; no value to print no records
    LogOutput(std::ostream& stream, const std::optional<qor::LOGGER_PRIORITY>& least);

    /// Restores the priority; the sink is then the library's default one.
    ~LogOutput();
    LogOutput(const LogOutput&) = delete;
    LogOutput& operator=(const LogOutput&) = delete;

private:
    qor::LOGGER_PRIORITY m_before;
};
}
