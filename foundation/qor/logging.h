#pragma once

#include "qor/export.h"
#include "qor/integers.h"
#include "qor/logsink.h"
#include "qor/string.h"

#include <atomic>
#include <cstdint>

namespace qor
{
/// Scope of the priorities of log records: their names would clash with those of system headers.
struct LoggerPriority
{
    enum LOGGER_PRIORITY
    {
        LOG_DEBUG = 1,   ///< entry tracing, reference counts, step-by-step detail
        LOG_INFO = 2,    ///< facts about what was found
        LOG_WARNING = 3, ///< a refused operation, or a result that the caller can handle
        LOG_ERROR = 4,   ///< a platform call that failed
        LOG_FATAL = 5    ///< an internal inconsistency or an unfinished path
    };
};

using LOGGER_PRIORITY = LoggerPriority::LOGGER_PRIORITY;

/// A string under construction for the log. Unlike elsewhere, `+` appends to this object and returns it.
class QOR_API LoggerStream : public String
{
public:
    LoggerStream();

    /// Starts with the digits of @p line and a blank, as each message of the library does.
    explicit LoggerStream(int line);

    LoggerStream(const LoggerStream& other);
    LoggerStream& operator=(const LoggerStream& other);
    ~LoggerStream();
    using String::operator=;

    /// Appends the decimal digits of @p value. @return this object
    LoggerStream& operator+(int value);
    LoggerStream& operator+(unsigned int value);

    /// As above. Callers sign-extend a 32-bit result code, so a failure code is written as a very large number.
    LoggerStream& operator+(unsigned __int64 value);
};

/// One record as a sink receives it. Its pointers are valid during the call of the sink.
struct LogRecord
{
    enum class Kind
    {
        message, ///< the text is the message, which starts with the line number of its statement
        enter,   ///< a traced function begins; the text is its label
        leave    ///< a traced function ends; the text is its label
    };

    Kind kind;
    LOGGER_PRIORITY priority; ///< LOG_DEBUG for enter and leave
    const char* channel;
    String text;
    const char* file; ///< source file of a traced function; null for a message
    int line;         ///< source line of a traced function; 0 for a message
};

/// One channel of the log. LogFactory makes it and keeps it until the process ends.
class QOR_API Logger
{
public:
    explicit Logger(const char* channel);
    Logger(const Logger&) = delete;
    Logger& operator=(const Logger&) = delete;

    /// Passes one message to the sink without any test; the logging statement compares the priorities. Any thread. What
    /// the sink throws reaches the caller.
    QOR_COLD void log(LOGGER_PRIORITY priority, const LoggerStream& message);

    const char* channel() const noexcept { return m_channel.c_str(); }

    /// The channel's own threshold: a message is written only if its priority is strictly above it. Set it before other
    /// threads log.
    std::int32_t m_priority = 0;

private:
    std::string m_channel;
};

/// Registry of the channels, and the process-wide settings of the log, which are never destroyed. Any thread.
class QOR_API LogFactory
{
public:
    using Sink = LogSink;

    /// Process-wide minimum: messages of a lower priority are not built. LOG_ERROR by default.
    static LOGGER_PRIORITY getPriority() noexcept { return m_minimum.load(std::memory_order_relaxed); }
    static void setPriority(LOGGER_PRIORITY priority) noexcept;

    /// Whether the minimum keeps all messages of @p priority, and of lower ones, from being written; for
    /// LoggerPriority::LOG_DEBUG also all trace scopes.
    static bool isSilent(LOGGER_PRIORITY priority) noexcept { return getPriority() > priority; }

    /// Stores the logger of @p channel in @p logger, made on first use. Racing threads get the same object.
    QOR_COLD static void createLogger(const char* channel, Logger*& logger);

    /// The logger of @p channel, made on first use; lets a caller set its threshold before anything is logged.
    static Logger& logger(const char* channel);

    /// Sends all further records to @p sink; an empty one restores the default, which writes one line to standard
    /// error.
    ///
    /// The sink is called under a lock, by one thread at a time: it must not wait for a thread that may log. It may log
    /// itself. It should not throw: an exception reaches the function that logs, except at the end of a trace scope.
    static void setSink(Sink sink);

private:
    static std::atomic<LOGGER_PRIORITY> m_minimum; // read before each message, whether it is built or not
};

/// Records that a function begins and, at the end of its scope, that it ends. With a null logger it does nothing.
///
/// The record of the end is lost without memory for it, or if the sink throws; the destructor throws nothing.
class QOR_API TraceLogger
{
public:
    /// @param label text of both records; a literal, as is @p file
    TraceLogger(Logger* logger, const char* label, const char* file, int line);
    ~TraceLogger();
    TraceLogger(const TraceLogger&) = delete;
    TraceLogger& operator=(const TraceLogger&) = delete;

private:
    Logger* m_logger;
    const char* m_label;
    const char* m_file;
    int m_line;
};
}
