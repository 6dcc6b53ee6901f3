#include "tests/support/logcapture.h"

#include <algorithm>

namespace support
{
namespace
{
/// Takes the line number and the one blank behind it off the front of a message. @return the number, 0 without a prefix
int cutPrefix(std::string& text)
{
    const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    if (digits == 0 || digits > 9 || text.compare(digits, 1, " ") != 0)
        return 0;
    const int line = std::stoi(text.substr(0, digits));
    text.erase(0, digits + 1);
    return line;
}
}

LogCapture::LogCapture(qor::LOGGER_PRIORITY minimum) : m_oldMinimum(qor::LogFactory::getPriority())
{
    qor::LogFactory::setSink([this](const qor::LogRecord& record) { add(record); });
    qor::LogFactory::setPriority(minimum);
}

LogCapture::~LogCapture()
{
    for (const auto& [logger, threshold] : m_oldThresholds)
        logger->m_priority = threshold;
    qor::LogFactory::setPriority(m_oldMinimum);
    qor::LogFactory::setSink({});
}

void LogCapture::setThreshold(const char* channel, int priority)
{
    qor::Logger& logger = qor::LogFactory::logger(channel);
    m_oldThresholds.emplace(&logger, logger.m_priority);
    logger.m_priority = priority;
}

void LogCapture::clear()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_records.clear();
}

std::vector<LogCapture::Record> LogCapture::records(std::string_view channel) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<Record> found;
    for (const Record& record : m_records)
    {
        if (channel.empty() || record.channel == channel)
            found.push_back(record);
    }
    return found;
}

std::vector<std::string> LogCapture::texts(std::string_view channel) const
{
    return textsOf(qor::LogRecord::Kind::message, channel);
}

std::vector<std::string> LogCapture::texts(qor::LOGGER_PRIORITY priority, std::string_view channel) const
{
    std::vector<std::string> found;
    for (const Record& record : records(channel))
    {
        if (record.kind == qor::LogRecord::Kind::message && record.priority == priority)
            found.push_back(record.text);
    }
    return found;
}

std::vector<std::string> LogCapture::entered(std::string_view channel) const
{
    return textsOf(qor::LogRecord::Kind::enter, channel);
}

std::vector<std::string> LogCapture::left(std::string_view channel) const
{
    return textsOf(qor::LogRecord::Kind::leave, channel);
}

void LogCapture::add(const qor::LogRecord& record)
{
    Record copy = {record.kind, record.priority, record.channel, record.text.toUtf8(), "", record.line};
    if (record.kind == qor::LogRecord::Kind::message)
        copy.line = cutPrefix(copy.text);
    else
        copy.file = record.file;
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_records.push_back(std::move(copy));
}

std::vector<std::string> LogCapture::textsOf(qor::LogRecord::Kind kind, std::string_view channel) const
{
    std::vector<std::string> found;
    for (const Record& record : records(channel))
    {
        if (record.kind == kind)
            found.push_back(record.text);
    }
    return found;
}
}
