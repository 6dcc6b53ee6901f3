#include "qor/logging.h"

#include "qor/logstatement.h"
#include "tests/support/logcapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <set>
#include <string>
#include <thread>
#include <vector>

using qor::LogFactory;
using qor::Logger;
using qor::LoggerPriority;
using qor::LoggerStream;
using qor::LogRecord;
using testing::ElementsAre;

namespace
{
constexpr int threadCount = 8;

/// Runs @p work on several threads that start at nearly the same time.
template<class Work>
void race(Work work)
{
    std::atomic<int> waiting{threadCount};
    std::vector<std::thread> threads;
    for (int index = 0; index < threadCount; ++index)
    {
        threads.emplace_back(
            [&, index]
            {
                --waiting;
                while (waiting != 0)
                    std::this_thread::yield();
                work(index);
            });
    }
    for (std::thread& thread : threads)
        thread.join();
}

LoggerStream stream(const char* text)
{
    LoggerStream result;
    result.append(text);
    return result;
}

TEST(LogFactoryPriority, IsErrorUntilItIsSet)
{
    EXPECT_EQ(LoggerPriority::LOG_ERROR, LogFactory::getPriority());
}

TEST(LogFactoryPriority, SilencesAllThatIsBelowIt)
{
    const support::LogCapture log(LoggerPriority::LOG_ERROR);

    EXPECT_TRUE(LogFactory::isSilent(LoggerPriority::LOG_DEBUG));
    EXPECT_TRUE(LogFactory::isSilent(LoggerPriority::LOG_WARNING));
    EXPECT_FALSE(LogFactory::isSilent(LoggerPriority::LOG_ERROR));
    EXPECT_FALSE(LogFactory::isSilent(LoggerPriority::LOG_FATAL));
    LogFactory::setPriority(LoggerPriority::LOG_DEBUG);
    EXPECT_FALSE(LogFactory::isSilent(LoggerPriority::LOG_DEBUG));
}

TEST(LogFactoryPriority, IsWhatWasSet)
{
    const support::LogCapture log(LoggerPriority::LOG_ERROR);

    LogFactory::setPriority(LoggerPriority::LOG_INFO);

    EXPECT_EQ(LoggerPriority::LOG_INFO, LogFactory::getPriority());
}

TEST(LogFactoryPriority, CanBeSetWhileOtherThreadsLog)
{
    const support::LogCapture log;
    Logger& logger = LogFactory::logger("test.minimum");
    std::atomic<int> silenced{0};

    race(
        [&](int index)
        {
            for (int i = 0; i < 500; ++i)
            {
                if (index % 2 == 0)
                    LogFactory::setPriority(i % 2 == 0 ? LoggerPriority::LOG_DEBUG : LoggerPriority::LOG_FATAL);
                else if (LogFactory::isSilent(LoggerPriority::LOG_ERROR))
                    ++silenced;
                else
                    logger.log(LoggerPriority::LOG_ERROR, stream("text"));
            }
        });

    EXPECT_EQ(static_cast<std::size_t>(threadCount / 2 * 500 - silenced), log.texts("test.minimum").size());
}

TEST(LogFactoryCreateLogger, StoresTheLoggerOfTheChannelThroughTheReference)
{
    Logger* logger = nullptr;

    LogFactory::createLogger("test.create", logger);

    ASSERT_NE(nullptr, logger);
    EXPECT_STREQ("test.create", logger->channel());
}

TEST(LogFactoryCreateLogger, FindsTheLoggerThatIsThere)
{
    Logger* first = nullptr;
    Logger* second = nullptr;

    LogFactory::createLogger("test.find", first);
    LogFactory::createLogger(std::string("test.find").c_str(), second);

    EXPECT_EQ(first, second);
    EXPECT_EQ(first, &LogFactory::logger("test.find"));
}

TEST(LogFactoryCreateLogger, MakesOneLoggerForEachChannel)
{
    EXPECT_NE(&LogFactory::logger("test.one"), &LogFactory::logger("test.other"));
}

TEST(LogFactoryCreateLogger, GivesRacingThreadsTheSameObject)
{
    for (int round = 0; round < 50; ++round)
    {
        const std::string channel = "test.race." + std::to_string(round);
        std::vector<Logger*> loggers(threadCount);

        race([&](int index) { LogFactory::createLogger(channel.c_str(), loggers[static_cast<std::size_t>(index)]); });

        ASSERT_NE(nullptr, loggers[0]);
        ASSERT_EQ(1u, std::set<Logger*>(loggers.begin(), loggers.end()).size());
    }
}

TEST(LogFactoryCreateLogger, MakesOneLoggerForEachChannelWhenThreadsMakeManyAtOnce)
{
    constexpr int channelCount = 10000; // more than a thread makes before another one runs
    std::vector<std::vector<Logger*>> loggers(threadCount, std::vector<Logger*>(channelCount));

    race(
        [&](int index)
        {
            for (int channel = 0; channel < channelCount; ++channel)
            {
                Logger*& logger = loggers[static_cast<std::size_t>(index)][static_cast<std::size_t>(channel)];
                LogFactory::createLogger(("test.race.many." + std::to_string(channel)).c_str(), logger);
            }
        });

    for (const std::vector<Logger*>& found : loggers)
        ASSERT_EQ(loggers[0], found);
    for (int channel = 0; channel < channelCount; ++channel)
        ASSERT_EQ("test.race.many." + std::to_string(channel),
                  loggers[0][static_cast<std::size_t>(channel)]->channel());
}

TEST(LoggerSlot, GivesRacingThreadsTheSameObject)
{
    for (int round = 0; round < 50; ++round)
    {
        const std::string channel = "test.race.slot." + std::to_string(round);
        qor::LoggerSlot slot(nullptr);
        std::vector<Logger*> loggers(threadCount);

        race([&](int index) { loggers[static_cast<std::size_t>(index)] = &qor::slotLogger(channel.c_str(), slot); });

        ASSERT_EQ(1u, std::set<Logger*>(loggers.begin(), loggers.end()).size());
        ASSERT_EQ(loggers[0], slot.load());
    }
}

TEST(LoggerThreshold, IsASigned32BitNumberThatStartsAt0)
{
    const Logger& logger = LogFactory::logger("test.threshold");

    EXPECT_EQ(0, logger.m_priority);
    EXPECT_TRUE((std::is_same_v<std::int32_t, decltype(logger.m_priority)>));
}

TEST(LoggerLog, WritesOneRecordWhateverTheThresholds)
{
    support::LogCapture log(LoggerPriority::LOG_FATAL);
    log.setThreshold("test.log", 5);

    LogFactory::logger("test.log").log(LoggerPriority::LOG_DEBUG, stream("text"));

    EXPECT_THAT(log.texts(LoggerPriority::LOG_DEBUG, "test.log"), ElementsAre("text"));
}

TEST(LogSink, GetsOneRecordAtATime)
{
    std::atomic<int> inside{0};
    std::atomic<int> overlaps{0};
    int calls = 0; // plain: the serialisation keeps the additions whole
    const support::LogCapture restores;
    LogFactory::setSink(
        [&](const LogRecord&)
        {
            if (++inside != 1)
                ++overlaps;
            ++calls;
            --inside;
        });
    Logger& logger = LogFactory::logger("test.serialised");
    const LoggerStream message = stream("text");

    race(
        [&](int)
        {
            for (int i = 0; i < 500; ++i)
            {
                const qor::TraceLogger trace(&logger, "label", "file.cpp", 1);
                logger.log(LoggerPriority::LOG_ERROR, message);
            }
        });

    EXPECT_EQ(0, overlaps);
    EXPECT_EQ(threadCount * 500 * 3, calls);
}

TEST(LogSink, KeepsAnotherThreadOutWhileItHandlesARecord)
{
    constexpr int rounds = 20;
    std::atomic<int> inside{0};
    std::atomic<int> overlaps{0};
    std::atomic<int> arriving{0};
    const support::LogCapture restores;
    LogFactory::setSink(
        [&](const LogRecord&)
        {
            if (++inside != 1)
                ++overlaps;
            while (arriving != 2) // the other thread is about to log as well
                std::this_thread::yield();
            for (int i = 0; i < 200 && overlaps == 0; ++i) // time for a thread that is not kept out
                std::this_thread::yield();
            --inside;
        });
    Logger& logger = LogFactory::logger("test.overlap");
    const LoggerStream message = stream("text");
    const auto logOnce = [&]
    {
        ++arriving;
        logger.log(LoggerPriority::LOG_ERROR, message);
    };

    for (int round = 0; round < rounds; ++round)
    {
        arriving = 0;
        std::thread other(logOnce);
        logOnce();
        other.join();
    }

    EXPECT_EQ(0, overlaps);
}

TEST(LogSink, CanBeReplacedWhileOtherThreadsLog)
{
    constexpr int rounds = 5000;
    std::atomic<int> calls{0};
    const support::LogCapture restores;
    const auto place = [&]
    { LogFactory::setSink([&calls, text = std::string(100, 'x')](const LogRecord&) { calls += text[99] == 'x'; }); };
    place();
    Logger& logger = LogFactory::logger("test.replacement");
    const LoggerStream message = stream("text");

    race(
        [&](int index)
        {
            for (int i = 0; i < rounds; ++i)
            {
                if (index % 2 == 0)
                    place();
                else
                    logger.log(LoggerPriority::LOG_ERROR, message);
            }
        });

    EXPECT_EQ(threadCount / 2 * rounds, calls);
}

TEST(LogSink, CanLogItself)
{
    std::vector<std::string> texts;
    const support::LogCapture restores;
    LogFactory::setSink(
        [&](const LogRecord& record)
        {
            texts.push_back(record.text.toUtf8());
            if (texts.size() == 1)
                LogFactory::logger("test.nested").log(LoggerPriority::LOG_ERROR, stream("inner"));
        });

    LogFactory::logger("test.nested").log(LoggerPriority::LOG_ERROR, stream("outer"));

    EXPECT_THAT(texts, ElementsAre("outer", "inner"));
}

TEST(LogSink, CanPutAnotherInItsPlace)
{
    std::vector<std::string> texts;
    const support::LogCapture restores;
    const std::string first = "first sink, with a text too long for the object itself: ";
    LogFactory::setSink(
        [&texts, first](const LogRecord& record)
        {
            LogFactory::setSink([&texts](const LogRecord& later)
                                { texts.push_back("second: " + later.text.toUtf8()); });
            texts.push_back(first + record.text.toUtf8());
        });
    Logger& logger = LogFactory::logger("test.replaced");

    logger.log(LoggerPriority::LOG_ERROR, stream("a"));
    logger.log(LoggerPriority::LOG_ERROR, stream("b"));

    EXPECT_THAT(texts, ElementsAre(first + "a", "second: b"));
}

TEST(LogSink, ByDefaultWritesAMessageAsOneLineOnStandardError)
{
    LogFactory::setSink({});
    testing::internal::CaptureStderr();

    LogFactory::logger("test.default").log(LoggerPriority::LOG_ERROR, stream("168 CoCreateInstance returns \xE9"));

    EXPECT_EQ("[error] test.default: 168 CoCreateInstance returns \xC3\xA9\n", testing::internal::GetCapturedStderr());
}

TEST(LogSink, ByDefaultNamesEachPriority)
{
    LogFactory::setSink({});
    Logger& logger = LogFactory::logger("test.default");
    testing::internal::CaptureStderr();

    logger.log(LoggerPriority::LOG_DEBUG, stream("a"));
    logger.log(LoggerPriority::LOG_INFO, stream("b"));
    logger.log(LoggerPriority::LOG_WARNING, stream("c"));
    logger.log(LoggerPriority::LOG_ERROR, stream("d"));
    logger.log(LoggerPriority::LOG_FATAL, stream("e"));

    EXPECT_EQ("[debug] test.default: a\n[info] test.default: b\n[warning] test.default: c\n"
              "[error] test.default: d\n[fatal] test.default: e\n",
              testing::internal::GetCapturedStderr());
}

TEST(LogSink, ByDefaultCallsANumberThatIsNoPriorityUnknown)
{
    LogFactory::setSink({});
    testing::internal::CaptureStderr();

    LogFactory::logger("test.default").log(static_cast<qor::LOGGER_PRIORITY>(7), stream("f"));

    EXPECT_EQ("[unknown] test.default: f\n", testing::internal::GetCapturedStderr());
}

TEST(LogSink, ByDefaultWritesEntryAndLeavingAsOneLineEach)
{
    LogFactory::setSink({});
    testing::internal::CaptureStderr();

    {
        const qor::TraceLogger trace(&LogFactory::logger("test.default"), "Label::of()", "file.cpp", 168);
    }

    EXPECT_EQ("[trace] test.default: enter Label::of() (file.cpp:168)\n"
              "[trace] test.default: leave Label::of() (file.cpp:168)\n",
              testing::internal::GetCapturedStderr());
}

TEST(LogSink, ThatIsEmptyRestoresTheDefault)
{
    LogFactory::setSink([](const LogRecord&) {});
    LogFactory::setSink({});
    testing::internal::CaptureStderr();

    LogFactory::logger("test.default").log(LoggerPriority::LOG_FATAL, stream("again"));

    EXPECT_EQ("[fatal] test.default: again\n", testing::internal::GetCapturedStderr());
}

/// A static object that is constructed before anything logs, so it is destroyed after static objects of the log.
struct LateObject
{
    ~LateObject()
    {
        if (!logs)
            return;
        Logger* logger = nullptr;
        LogFactory::createLogger("test.late", logger);
        logger->log(LoggerPriority::LOG_ERROR, stream("enumerator RELEASED"));
        LogFactory::logger("test.late.new").log(LoggerPriority::LOG_ERROR, stream("made at the end"));
    }

    bool logs = false;
};

LateObject lateObject;

TEST(LogRegistryDeathTest, OutlivesTheStaticObjects)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";

    const auto logAtTheEnd = []
    {
        LogFactory::setSink({});
        LogFactory::logger("test.late").log(LoggerPriority::LOG_ERROR, stream("before the end"));
        lateObject.logs = true;
        std::exit(0);
    };

    EXPECT_EXIT(logAtTheEnd(), testing::ExitedWithCode(0), "test.late: enumerator RELEASED");
    EXPECT_EXIT(logAtTheEnd(), testing::ExitedWithCode(0), "test.late.new: made at the end");
}
}
