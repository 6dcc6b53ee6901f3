#include "tools/sonavit/logoutput.h"

#include "tools/sonavit/output/text.h"

#include <string>

namespace sonavit::program
{
namespace
{
const char* priorityWord(qor::LOGGER_PRIORITY priority)
{
    switch (priority)
    {
    case qor::LoggerPriority::LOG_DEBUG:
        return "debug";
    case qor::LoggerPriority::LOG_INFO:
        return "info";
    case qor::LoggerPriority::LOG_WARNING:
        return "warning";
    case qor::LoggerPriority::LOG_ERROR:
        return "error";
    case qor::LoggerPriority::LOG_FATAL:
        return "fatal";
    }
    return "?";
}

void write(std::ostream& stream, const qor::LogRecord& record)
{
    const char* mark = "";
    if (record.kind != qor::LogRecord::Kind::message)
        mark = record.kind == qor::LogRecord::Kind::enter ? "> " : "< ";
    stream << priorityWord(record.priority) << ' ' << record.channel << ": " << mark << printable(record.text.toUtf8())
           << "\n";
}
}

LogOutput::LogOutput(std::ostream& stream, const std::optional<qor::LOGGER_PRIORITY>& least)
    : m_before(qor::LogFactory::getPriority())
{
    if (!least)
    {
        qor::LogFactory::setSink([](const qor::LogRecord&) {});
        return;
    }
    qor::LogFactory::setPriority(*least);
    qor::LogFactory::setSink([&stream](const qor::LogRecord& record) { write(stream, record); });
}

LogOutput::~LogOutput()
{
    qor::LogFactory::setSink({});
    qor::LogFactory::setPriority(m_before);
}
}
