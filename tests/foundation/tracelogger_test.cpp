#include "qor/logstatement.h"

#include "tests/foundation/supportallocations.h"
#include "tests/support/logcapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using qor::LoggerPriority;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
namespace scopelog
{
constexpr const char* channel = "test.scope";
qor::LoggerSlot logger;
}

namespace traceonlylog
{
constexpr const char* channel = "test.scope.traceOnly";
qor::LoggerSlot logger;
}

unsigned int sitesAsked = 0;

qor::TraceSite countedSite()
{
    ++sitesAsked;
    return {scopelog::channel, &scopelog::logger, "counted", __FILE__, __LINE__};
}

void inner()
{
    SONAVIT_TRACE(scopelog, "Inner::inner()");
}

void outer()
{
    SONAVIT_TRACE(scopelog, "Outer::outer(const IPart* part)");
    inner();
}

TEST(TraceLogger, RecordsEntryAndLeavingUnderItsLabel)
{
    support::LogCapture log;

    inner();

    EXPECT_THAT(log.entered("test.scope"), ElementsAre("Inner::inner()"));
    EXPECT_THAT(log.left("test.scope"), ElementsAre("Inner::inner()"));
}

TEST(TraceLogger, EndsInnerFunctionsBeforeOuterOnes)
{
    support::LogCapture log;

    outer();

    EXPECT_THAT(log.entered(), ElementsAre("Outer::outer(const IPart* part)", "Inner::inner()"));
    EXPECT_THAT(log.left(), ElementsAre("Inner::inner()", "Outer::outer(const IPart* part)"));
}

TEST(TraceLogger, AsksForItsSiteWithinTheMinimumOnly)
{
    sitesAsked = 0;
    {
        const support::LogCapture log(LoggerPriority::LOG_INFO);
        const qor::TraceScope scope(countedSite);
    }
    EXPECT_EQ(0u, sitesAsked);
    {
        const support::LogCapture log(LoggerPriority::LOG_DEBUG);
        const qor::TraceScope scope(countedSite);
    }
    EXPECT_EQ(2u, sitesAsked); // entered and left
}

TEST(TraceLogger, RecordsLeavingWhenAnExceptionPasses)
{
    support::LogCapture log;

    const auto throwing = []
    {
        SONAVIT_TRACE(scopelog, "throwing()");
        throw 1;
    };

    EXPECT_THROW(throwing(), int);
    EXPECT_THAT(log.left(), ElementsAre("throwing()"));
}

TEST(TraceLogger, NamesFileLineChannelAndPriorityInBothRecords)
{
    support::LogCapture log;

    {
        const qor::TraceLogger trace(&qor::LogFactory::logger("test.scope"), "label", "file.cpp", 168);
    }

    const std::vector<support::LogCapture::Record> records = log.records();
    ASSERT_EQ(2u, records.size());
    EXPECT_EQ(qor::LogRecord::Kind::enter, records[0].kind);
    EXPECT_EQ(qor::LogRecord::Kind::leave, records[1].kind);
    for (const support::LogCapture::Record& record : records)
    {
        EXPECT_EQ(LoggerPriority::LOG_DEBUG, record.priority);
        EXPECT_EQ("test.scope", record.channel);
        EXPECT_EQ("file.cpp", record.file);
        EXPECT_EQ(168, record.line);
    }
}

TEST(TraceLogger, WithANullLoggerDoesNothing)
{
    support::LogCapture log;

    {
        const qor::TraceLogger trace(nullptr, "label", "file.cpp", 168);
    }

    EXPECT_THAT(log.records(), IsEmpty());
}

TEST(TraceLogger, WithMinimum2GetsNoLogger)
{
    support::LogCapture log(LoggerPriority::LOG_INFO);

    EXPECT_EQ(nullptr, qor::traceLogger(scopelog::channel, scopelog::logger));
    inner();

    EXPECT_THAT(log.records(), IsEmpty());
}

TEST(TraceLogger, WithMinimum2MakesNoLoggerForATraceOnlyPath)
{
    support::LogCapture log(LoggerPriority::LOG_INFO);

    {
        SONAVIT_TRACE(traceonlylog, "traceOnly()");
    }

    EXPECT_EQ(nullptr, traceonlylog::logger.load());
}

TEST(TraceLogger, WithMinimum1GetsTheChannelsLoggerMadeOnFirstUse)
{
    support::LogCapture log(LoggerPriority::LOG_DEBUG);

    EXPECT_EQ(&qor::LogFactory::logger("test.scope"), qor::traceLogger(scopelog::channel, scopelog::logger));
    EXPECT_EQ(&qor::LogFactory::logger("test.scope"), scopelog::logger.load());
}

TEST(TraceLogger, StaysSilentOnAChannelWhoseThresholdIs1)
{
    support::LogCapture log(LoggerPriority::LOG_DEBUG);
    log.setThreshold(scopelog::channel, 1);

    EXPECT_EQ(nullptr, qor::traceLogger(scopelog::channel, scopelog::logger));
    inner();

    EXPECT_THAT(log.records(), IsEmpty());
}

TEST(TraceLogger, LeavesUnderTheLoggerThatItEnteredWith)
{
    support::LogCapture log;

    {
        SONAVIT_TRACE(scopelog, "label");
        qor::LogFactory::setPriority(LoggerPriority::LOG_FATAL);
    }

    EXPECT_THAT(log.left(), ElementsAre("label"));
}

TEST(TraceLogger, RecordsNoEndOfAScopeThatBeganWhileNothingWasTraced)
{
    support::LogCapture log(LoggerPriority::LOG_INFO);

    {
        SONAVIT_TRACE(scopelog, "label");
        qor::LogFactory::setPriority(LoggerPriority::LOG_DEBUG);
    }

    EXPECT_THAT(log.records(), IsEmpty());
}

TEST(TraceLogger, OfAStatementNamesItsFileAndLineInBothRecords)
{
    support::LogCapture log;

    const int line = __LINE__ + 2;
    {
        SONAVIT_TRACE(scopelog, "label");
    }

    ASSERT_EQ(2u, log.records().size());
    for (const support::LogCapture::Record& record : log.records())
    {
        EXPECT_EQ(line, record.line);
        EXPECT_EQ(__FILE__, record.file);
    }
}

TEST(TraceLogger, DropsTheRecordOfTheEndWithoutMemoryForIt)
{
    support::LogCapture log;
    support::AllocationProbe probe;

    {
        SONAVIT_TRACE(scopelog, "label");
        probe.failAll();
    }

    probe.succeed();
    EXPECT_THAT(log.entered(), ElementsAre("label"));
#if !defined(_WIN32) // there the operators of the DLL are out of reach
    EXPECT_THAT(log.left(), IsEmpty());
#endif
}

TEST(TraceLogger, DropsTheRecordOfTheEndIfTheSinkThrows)
{
    const support::LogCapture restores;
    int leavings = 0;
    qor::LogFactory::setSink(
        [&](const qor::LogRecord& record)
        {
            if (record.kind != qor::LogRecord::Kind::leave)
                return;
            ++leavings;
            throw 1;
        });

    EXPECT_NO_THROW(outer());

    EXPECT_EQ(2, leavings) << "each scope is still reported";
}

TEST(TraceLogger, LetsAnExceptionGoOnWhenTheSinkThrowsMeanwhile)
{
    const support::LogCapture restores;
    qor::LogFactory::setSink(
        [](const qor::LogRecord& record)
        {
            if (record.kind == qor::LogRecord::Kind::leave)
                throw 1;
        });
    const auto throwing = []
    {
        SONAVIT_TRACE(scopelog, "throwing()");
        throw std::string("first");
    };

    EXPECT_THROW(throwing(), std::string);
}
}
