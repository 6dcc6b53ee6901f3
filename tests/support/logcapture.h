#pragma once

#include "qor/logging.h"

#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace support
{
/// Collects what is logged while it lives.
///
/// Its end restores the default sink, the process-wide minimum and each threshold that was changed through it. One
/// capture lives at a time; records may come from any thread.
class LogCapture
{
public:
    /// One record, its texts as UTF-8.
    struct Record
    {
        qor::LogRecord::Kind kind;
        qor::LOGGER_PRIORITY priority;
        std::string channel;
        std::string text; ///< of a message without its line-number prefix, if it has one; of enter and leave the label
        std::string file; ///< of a traced function; empty for a message
        int line;         ///< of a traced function; of a message the number in its prefix, 0 if it has none
    };

    /// Messages of @p minimum and above come through; LOG_DEBUG lets trace records through as well.
    explicit LogCapture(qor::LOGGER_PRIORITY minimum = qor::LoggerPriority::LOG_DEBUG);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// Sets the channel's own threshold until the capture ends.
    void setThreshold(const char* channel, int priority);

    /// Forgets the records caught so far.
    void clear();

    // An empty channel stands for all of them.

    std::vector<Record> records(std::string_view channel = {}) const;

    /// Messages of any priority, or of just one, in their order and without the line-number prefix.
    std::vector<std::string> texts(std::string_view channel = {}) const;
    std::vector<std::string> texts(qor::LOGGER_PRIORITY priority, std::string_view channel = {}) const;

    /// Labels of the traced functions in the order in which they began, and in which they ended.
    std::vector<std::string> entered(std::string_view channel = {}) const;
    std::vector<std::string> left(std::string_view channel = {}) const;

private:
    void add(const qor::LogRecord& record);
    std::vector<std::string> textsOf(qor::LogRecord::Kind kind, std::string_view channel) const;

    const qor::LOGGER_PRIORITY m_oldMinimum;
    std::map<qor::Logger*, int> m_oldThresholds;
    mutable std::mutex m_mutex;
    std::vector<Record> m_records;
};
}
