/// The statements of the log. One whose priority is below the process-wide minimum costs a load and a comparison.
///
/// Each module of the library declares its channel in a namespace:
///
///     namespace topologylog
///     {
///     inline constexpr const char* channel = "libSonavit.audioDeviceTopology";
///     inline qor::LoggerSlot logger;
///     }
#pragma once

#include "qor/logging.h"

#include <atomic>

namespace qor
{
/// Holds the logger of a channel; null until a message passes the process-wide minimum for the first time, and never
/// set back.
using LoggerSlot = std::atomic<Logger*>;

/// The logger of a channel, made on first use; racing threads get the same object.
inline Logger& slotLogger(const char* channel, LoggerSlot& slot)
{
    Logger* logger = slot.load(std::memory_order_acquire);
    if (logger == nullptr)
    {
        LogFactory::createLogger(channel, logger);
        slot.store(logger, std::memory_order_release);
    }
    return *logger;
}

/// The logger of a TraceLogger, or null if nothing is to be traced.
inline Logger* traceLogger(const char* channel, LoggerSlot& slot)
{
    if (LogFactory::getPriority() > LoggerPriority::LOG_DEBUG)
        return nullptr;
    Logger& logger = slotLogger(channel, slot);
    return logger.m_priority < LoggerPriority::LOG_DEBUG ? &logger : nullptr;
}

/// The logger of a message, or null if the channel does not write messages of that priority. For a message that has
/// passed the process-wide minimum.
QOR_API QOR_COLD Logger* messageLogger(const char* channel, LoggerSlot& slot, LOGGER_PRIORITY priority);

/// One SONAVIT_TRACE: what its records say, and the channel that they go to.
struct TraceSite
{
    const char* channel;
    LoggerSlot* slot;
    const char* label;
    const char* file;
    int line;
};

/// Gives the site of a scope. A function, as a static variable of an inline function would keep the dynamic linker from
/// unloading each module that has one.
using TraceSiteFunction = TraceSite (*)();

/// A TraceLogger whose arguments are known when the program is compiled: with the gate closed, a load, a comparison and
/// a test are all that is left of it.
class QOR_API TraceScope
{
public:
    explicit TraceScope(TraceSiteFunction site)
        : m_open(LogFactory::getPriority() > LoggerPriority::LOG_DEBUG ? nullptr : open(site))
    {
    }

    ~TraceScope()
    {
        if (m_open != nullptr)
            close(m_open);
    }

    TraceScope(const TraceScope&) = delete;
    TraceScope& operator=(const TraceScope&) = delete;

private:
    // No address of this object leaves it, so compilers keep its field in a register or do without it.
    QOR_COLD static TraceSiteFunction open(TraceSiteFunction site);
    QOR_COLD static void close(TraceSiteFunction site) noexcept;

    TraceSiteFunction m_open; // null if nothing is traced
};
}

/// Writes one message. The statement after @p level appends to `out`, a LoggerStream that already contains the line
/// number; it is evaluated only if the message is written. Required behaviour: a message whose priority equals the
/// process-wide minimum passes, one whose priority equals the channel's threshold does not. Write each use on one
/// source line: compilers number the lines of a longer statement differently.
#define SONAVIT_LOG(module, level, ...)                                                      \
    do                                                                                       \
    {                                                                                        \
        if (qor::LogFactory::getPriority() > qor::LoggerPriority::level)                     \
            break;                                                                           \
        qor::Logger* const sonavitLogger =                                                   \
            qor::messageLogger(module::channel, module::logger, qor::LoggerPriority::level); \
        if (sonavitLogger == nullptr)                                                        \
            break;                                                                           \
        qor::LoggerStream out(__LINE__);                                                     \
        __VA_ARGS__;                                                                         \
        sonavitLogger->log(qor::LoggerPriority::level, out);                                 \
    } while (false)

/// Opens a trace scope for the rest of the enclosing block. Required behaviour: labels are literals that readers of the
/// log search for; several functions share a label, and some labels name another function.
#define SONAVIT_TRACE(module, label)                                              \
    const qor::TraceScope sonavitTrace(                                           \
        []() noexcept -> qor::TraceSite {                                         \
            return {module::channel, &module::logger, label, __FILE__, __LINE__}; \
        })
