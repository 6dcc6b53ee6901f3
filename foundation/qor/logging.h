#pragma once

#include "qor/export.h"
#include "qor/integers.h"
#include "qor/string.h"

#include <atomic>
#include <cstdint>
#include <functional>

namespace qor
{
/// Holds the priorities of log records, so that their names stay out of the way of system headers.
struct LoggerPriority
{
    enum LOGGER_PRIORITY
    {
        LOG_DEBUG = 1,   ///< entry tracing, reference counts, step-by-step detail
        LOG_INFO = 2,    ///< what was found
        LOG_WARNING = 3, ///< a refused operation, or a result that the caller survives
        LOG_ERROR = 4,   ///< a platform call that failed
        LOG_FATAL = 5    ///< an internal inconsistency or an unfinished path
    };
};

using LOGGER_PRIORITY = LoggerPriority::LOGGER_PRIORITY;

/// A text under construction for the log. Its `+` adds a number to this very object and returns it.
class QOR_API LoggerStream : public String
{
public:
    LoggerStream();
    LoggerStream(const LoggerStream& other);
    LoggerStream& operator=(const LoggerStream& other);
    ~LoggerStream();
    using String::operator=;

    /// Adds the decimal text of @p value. @return this object
    LoggerStream& operator+(int value);
    LoggerStream& operator+(unsigned int value);

    /// As above. A 32-bit result code is sign-extended by its caller, so that a failure prints as a very large number.
    LoggerStream& operator+(unsigned __int64 value);
};

/// One record as a sink receives it. Pointers are valid for the length of the call; those to literals longer.
struct LogRecord
{
    enum class Kind
    {
        message, ///< a text of some priority, with the line number of its statement in front
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

/// One channel of the log. Made by LogFactory, which keeps it for the life of the process.
class QOR_API Logger
{
public:
    explicit Logger(const char* channel);
    Logger(const Logger&) = delete;
    Logger& operator=(const Logger&) = delete;

    /// Hands one message to the sink, unconditionally: the tests stand in the logging statement. Any thread.
    void log(LOGGER_PRIORITY priority, const LoggerStream& message);

    const char* channel() const noexcept { return m_channel.c_str(); }

    /// The channel's own threshold: messages of a priority strictly above it are written. Set it before other threads
    /// log.
    std::int32_t m_priority = 0;

private:
    std::string m_channel;
};

/// Registry of the channels, and the process-wide settings of the log. Nothing here is ever destroyed. Any thread.
class QOR_API LogFactory
{
public:
    using Sink = std::function<void(const LogRecord&)>;

    /// Process-wide minimum: messages of a lower priority are not built. LOG_ERROR until set.
    static LOGGER_PRIORITY getPriority() noexcept { return m_minimum.load(std::memory_order_relaxed); }
    static void setPriority(LOGGER_PRIORITY priority) noexcept;

    /// Stores the logger of @p channel in @p logger, made on first use. Racing threads get the same object.
    static void createLogger(const char* channel, Logger*& logger);

    /// The logger of @p channel, made on first use; for setting its threshold beforehand.
    static Logger& logger(const char* channel);

    /// Sends all records to @p sink from now on; an empty one restores the default, one line on standard error.
    /// Calls of the sink are serialised: it must not wait for a thread that may log. A sink must not throw.
    static void setSink(Sink sink);

private:
    static std::atomic<LOGGER_PRIORITY> m_minimum; // read ahead of every message, built or not
};

/// Records that a function begins and, at the end of its scope, that it ends. With a null logger it does nothing.
class QOR_API TraceLogger
{
public:
    /// @param label text of both records; a literal, like @p file
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
} // namespace qor
