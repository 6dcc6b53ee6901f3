#include "qor/logging.h"

#include "qor/qorvalue.h"

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
    std::recursive_mutex sinkMutex;               // recursive: a sink may log, or release an object that logs
    std::shared_ptr<const LogFactory::Sink> sink; // null for the default
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
    const std::shared_ptr<const LogFactory::Sink> sink = log.sink;
    if (sink != nullptr)
        (*sink)(record);
    else
        writeToStandardError(record);
}

String unsignedDecimal(unsigned __int64 value)
{
    return String(std::to_string(value).c_str());
}
}

LoggerStream::LoggerStream() = default;
LoggerStream::LoggerStream(const LoggerStream& other) = default;
LoggerStream& LoggerStream::operator=(const LoggerStream& other) = default;
LoggerStream::~LoggerStream() = default;

LoggerStream& LoggerStream::operator+(int value)
{
    append(QORValue(value).toString(QORValue::nilValue));
    return *this;
}

LoggerStream& LoggerStream::operator+(unsigned int value)
{
    append(QORValue(value).toString(QORValue::nilValue));
    return *this;
}

LoggerStream& LoggerStream::operator+(unsigned __int64 value)
{
    append(unsignedDecimal(value));
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
    std::shared_ptr<const Sink> next = sink ? std::make_shared<const Sink>(std::move(sink)) : nullptr;
    Registry& log = registry();
    const std::lock_guard<std::recursive_mutex> lock(log.sinkMutex);
    log.sink.swap(next); // the old sink is destroyed after the lock is released
}

TraceLogger::TraceLogger(Logger* logger, const char* label, const char* file, int line)
    : m_logger(logger),
      m_label(label),
      m_file(file),
      m_line(line)
{
    if (m_logger != nullptr)
        deliver({LogRecord::Kind::enter, LoggerPriority::LOG_DEBUG, m_logger->channel(), m_label, m_file, m_line});
}

// An exception out of this destructor would end the process, so a record that fails is dropped.
TraceLogger::~TraceLogger()
{
    if (m_logger == nullptr)
        return;
    try
    {
        deliver({LogRecord::Kind::leave, LoggerPriority::LOG_DEBUG, m_logger->channel(), m_label, m_file, m_line});
    }
    catch (...) // exhausted memory, or whatever a sink throws
    {
    }
}
}
