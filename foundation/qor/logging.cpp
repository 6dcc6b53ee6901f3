#include "qor/logging.h"

#include "qor/logstatement.h"

#include <cstdio>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace qor
{
namespace
{
/// All state of the log. Never destroyed: static objects of other modules log while they are destroyed.
struct Registry
{
    std::mutex channelsMutex;
    std::map<std::string, std::unique_ptr<Logger>> channels;
    std::recursive_mutex sinkMutex; // recursive: a sink may log, or release an object that logs
    LogSink sink;                   // empty for the default
};

Registry& registry()
{
    static Registry& instance = *new Registry;
    return instance;
}

const char* priorityName(LOGGER_PRIORITY priority)
{
    switch (priority)
    {
    case LoggerPriority::LOG_DEBUG:
        return "debug";
    case LoggerPriority::LOG_INFO:
        return "info";
    case LoggerPriority::LOG_WARNING:
        return "warning";
    case LoggerPriority::LOG_ERROR:
        return "error";
    case LoggerPriority::LOG_FATAL:
        return "fatal";
    }
    return "unknown";
}

void writeToStandardError(const LogRecord& record)
{
    const std::string text = record.text.toUtf8();
    if (record.kind == LogRecord::Kind::message)
        std::fprintf(stderr, "[%s] %s: %s\n", priorityName(record.priority), record.channel, text.c_str());
    else
        std::fprintf(stderr, "[trace] %s: %s %s (%s:%d)\n", record.channel,
                     record.kind == LogRecord::Kind::enter ? "enter" : "leave", text.c_str(), record.file, record.line);
}

void deliver(const LogRecord& record)
{
    Registry& log = registry();
    const std::lock_guard<std::recursive_mutex> lock(log.sinkMutex);
    // Stays alive during the call, even if the sink sets another one.
    const LogSink sink = log.sink;
    if (sink)
        sink(record);
    else
        writeToStandardError(record);
}

void deliverEnter(const Logger& logger, const char* label, const char* file, int line)
{
    deliver({LogRecord::Kind::enter, LoggerPriority::LOG_DEBUG, logger.channel(), label, file, line});
}

// An exception out of a destructor would end the process, so a record that fails is dropped.
void deliverLeave(const Logger& logger, const char* label, const char* file, int line) noexcept
{
    try
    {
        deliver({LogRecord::Kind::leave, LoggerPriority::LOG_DEBUG, logger.channel(), label, file, line});
    }
    catch (...) // exhausted memory, or whatever a sink throws
    {
    }
}

constexpr unsigned int usualMessage = 120; // code units; a longer message takes a second allocation

/// Appends the digits of @p value, after a minus sign if it is @p negative, and before @p end.
void appendDecimal(LoggerStream& stream, unsigned __int64 value, bool negative = false, char end = '\0')
{
    char digits[24];
    char* place = digits + sizeof(digits) - 1;
    *place = '\0';
    if (end != '\0')
        *--place = end;
    do
    {
        *--place = static_cast<char>('0' + value % 10);
        value /= 10;
    } while (value != 0);
    if (negative)
        *--place = '-';
    if (stream.size() == 0)
        stream.reserve(usualMessage);
    stream.append(place);
}

void appendSigned(LoggerStream& stream, int value, char end = '\0')
{
    const unsigned int bits = static_cast<unsigned int>(value);
    appendDecimal(stream, value < 0 ? 0u - bits : bits, value < 0, end);
}
}

LoggerStream::LoggerStream() = default;
LoggerStream::LoggerStream(int line)
{
    appendSigned(*this, line, ' ');
}
LoggerStream::LoggerStream(const LoggerStream& other) = default;
LoggerStream& LoggerStream::operator=(const LoggerStream& other) = default;
LoggerStream::~LoggerStream() = default;

LoggerStream& LoggerStream::operator+(int value)
{
    appendSigned(*this, value);
    return *this;
}

LoggerStream& LoggerStream::operator+(unsigned int value)
{
    appendDecimal(*this, value);
    return *this;
}

LoggerStream& LoggerStream::operator+(unsigned __int64 value)
{
    appendDecimal(*this, value);
    return *this;
}

Logger::Logger(const char* channel) : m_channel(channel) {}

void Logger::log(LOGGER_PRIORITY priority, const LoggerStream& message)
{
    deliver({LogRecord::Kind::message, priority, channel(), message, nullptr, 0});
}

std::atomic<LOGGER_PRIORITY> LogFactory::m_minimum{LoggerPriority::LOG_ERROR}; // initialized at compile time

void LogFactory::setPriority(LOGGER_PRIORITY priority) noexcept
{
    m_minimum.store(priority, std::memory_order_relaxed);
}

void LogFactory::createLogger(const char* channel, Logger*& logger)
{
    logger = &LogFactory::logger(channel);
}

Logger& LogFactory::logger(const char* channel)
{
    Registry& log = registry();
    const std::lock_guard<std::mutex> lock(log.channelsMutex);
    std::unique_ptr<Logger>& entry = log.channels[channel];
    if (entry == nullptr)
        entry = std::make_unique<Logger>(channel);
    return *entry;
}

void LogFactory::setSink(Sink sink)
{
    Registry& log = registry();
    const std::lock_guard<std::recursive_mutex> lock(log.sinkMutex);
    std::swap(log.sink, sink); // the old sink is destroyed after the lock is released
}

TraceLogger::TraceLogger(Logger* logger, const char* label, const char* file, int line)
    : m_logger(logger),
      m_label(label),
      m_file(file),
      m_line(line)
{
    if (m_logger != nullptr)
        deliverEnter(*m_logger, m_label, m_file, m_line);
}

TraceLogger::~TraceLogger()
{
    if (m_logger != nullptr)
        deliverLeave(*m_logger, m_label, m_file, m_line);
}

Logger* messageLogger(const char* channel, LoggerSlot& slot, LOGGER_PRIORITY priority)
{
    Logger& logger = slotLogger(channel, slot);
    return logger.m_priority < priority ? &logger : nullptr;
}

TraceSiteFunction TraceScope::open(TraceSiteFunction siteOf)
{
    const TraceSite site = siteOf();
    Logger* const logger = traceLogger(site.channel, *site.slot);
    if (logger == nullptr)
        return nullptr;
    deliverEnter(*logger, site.label, site.file, site.line);
    return siteOf;
}

void TraceScope::close(TraceSiteFunction siteOf) noexcept
{
    const TraceSite site = siteOf();
    Logger* const logger = site.slot->load(std::memory_order_acquire); // the one of open(): a slot is filled once
    deliverLeave(*logger, site.label, site.file, site.line);
}
}
