/// The source lines from which something is logged or thrown. Tests compare them and know none of them.
#pragma once

#include "tests/support/logcapture.h"

#include <fstream>
#include <string>
#include <vector>

namespace support
{
/// The lines of the messages that begin with @p text, in the order of the log.
inline std::vector<int> linesOf(const LogCapture& log, const std::string& text)
{
    std::vector<int> lines;
    for (const LogCapture::Record& record : log.records())
    {
        if (record.kind == qor::LogRecord::Kind::message && record.text.compare(0, text.size(), text) == 0)
            lines.push_back(record.line);
    }
    return lines;
}

/// The source line that @p failure names, as text; empty if the source is not there.
template<class Failure>
std::string sourceLineOf(const Failure& failure)
{
    std::ifstream source(failure.file());
    std::string line;
    for (unsigned long long number = 0; number < failure.line(); ++number)
        std::getline(source, line);
    return line;
}
}
