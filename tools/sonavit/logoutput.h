#pragma once

#include "qor/logging.h"

#include <optional>
#include <ostream>

namespace sonavit
{
/// Sends the library's records of some priority and above to a stream, or nowhere, for as long as it lives.
class LogOutput
{
public:
    /// @param least no value for no records at all
    LogOutput(std::ostream& stream, const std::optional<qor::LOGGER_PRIORITY>& least);

    /// Gives the log back as it was; its sink is then the library's own.
    ~LogOutput();
    LogOutput(const LogOutput&) = delete;
    LogOutput& operator=(const LogOutput&) = delete;

private:
    qor::LOGGER_PRIORITY m_before;
};
}
