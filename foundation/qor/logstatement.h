/// The front end of the log: two statements that cost a call and a compare while they are not written.
///
/// Each module of the library names its channel in a namespace of its own:
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
/// The place of a channel's logger, empty until a first record passes the process-wide test.
using LoggerSlot = std::atomic<Logger*>;

/// The logger of a channel, made on first use; threads that race get the same object.
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

/// The logger that a trace scope records to, or null when it is to stay silent.
inline Logger* traceLogger(const char* channel, LoggerSlot& slot)
{
    if (LogFactory::getPriority() > LoggerPriority::LOG_DEBUG)
        return nullptr;
    Logger& logger = slotLogger(channel, slot);
    return logger.m_priority < LoggerPriority::LOG_DEBUG ? &logger : nullptr;
}
} // namespace qor

/// Writes one message. The statement behind @p level appends to `out`, a LoggerStream that already holds the line
/// number; it is not evaluated unless the message is written. The two tests differ on purpose: a message of exactly the
/// process-wide minimum passes, one of exactly the channel's threshold does not. A statement stands on one source line,
/// as compilers disagree about the line of a longer one.
#define SONAVIT_LOG(module, level, ...)                                                \
    do                                                                                 \
    {                                                                                  \
        if (qor::LogFactory::getPriority() > qor::LoggerPriority::level)               \
            break;                                                                     \
        qor::Logger& sonavitLogger = qor::slotLogger(module::channel, module::logger); \
        if (sonavitLogger.m_priority >= qor::LoggerPriority::level)                    \
            break;                                                                     \
        qor::LoggerStream out;                                                         \
        (out + __LINE__).append(" ");                                                  \
        __VA_ARGS__;                                                                   \
        sonavitLogger.log(qor::LoggerPriority::level, out);                            \
    } while (false)

/// Opens a trace scope for the rest of the enclosing block. Labels are written by hand: readers of the log match on
/// them, so that several functions share one and some name another function than the one they stand in.
#define SONAVIT_TRACE(module, label) \
    const qor::TraceLogger sonavitTrace(qor::traceLogger(module::channel, module::logger), label, __FILE__, __LINE__)
