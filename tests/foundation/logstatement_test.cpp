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
namespace statementlog
{
constexpr const char* channel = "test.statement";
qor::LoggerSlot logger;
}

namespace firstusebelowminimumlog
{
constexpr const char* channel = "test.firstUse.belowMinimum";
qor::LoggerSlot logger;
}

namespace firstusebelowthresholdlog
{
constexpr const char* channel = "test.firstUse.belowThreshold";
qor::LoggerSlot logger;
}

qor::String throwingOperand()
{
    throw std::string("evaluated");
}

TEST(LoggerPriorities, RunFromDebug1ToFatal5)
{
    EXPECT_EQ(1, LoggerPriority::LOG_DEBUG);
    EXPECT_EQ(2, LoggerPriority::LOG_INFO);
    EXPECT_EQ(3, LoggerPriority::LOG_WARNING);
    EXPECT_EQ(4, LoggerPriority::LOG_ERROR);
    EXPECT_EQ(5, LoggerPriority::LOG_FATAL);
}

TEST(LogStatement, WithMinimum3WritesAMessageOfPriority3OnAChannelWhoseThresholdIs2)
{
    support::LogCapture log(LoggerPriority::LOG_WARNING);
    log.setThreshold(statementlog::channel, 2);

    SONAVIT_LOG(statementlog, LOG_WARNING, out.append("Cannot use NULL pointer"));

    EXPECT_THAT(log.texts(LoggerPriority::LOG_WARNING, "test.statement"), ElementsAre("Cannot use NULL pointer"));
}

TEST(LogStatement, WithMinimum3WritesNoMessageOfPriority3OnAChannelWhoseThresholdIs3)
{
    support::LogCapture log(LoggerPriority::LOG_WARNING);
    log.setThreshold(statementlog::channel, 3);

    SONAVIT_LOG(statementlog, LOG_WARNING, out.append("Cannot use NULL pointer"));

    EXPECT_THAT(log.records(), IsEmpty());
}

TEST(LogStatement, WritesNoMessageBelowTheMinimum)
{
    support::LogCapture log(LoggerPriority::LOG_WARNING);

    SONAVIT_LOG(statementlog, LOG_INFO, out.append("Num connector = "));

    EXPECT_THAT(log.records(), IsEmpty());
}

TEST(LogStatement, WritesEachPriorityFromTheMinimumOn)
{
    support::LogCapture log(LoggerPriority::LOG_WARNING);

    SONAVIT_LOG(statementlog, LOG_DEBUG, out.append("debug"));
    SONAVIT_LOG(statementlog, LOG_INFO, out.append("info"));
    SONAVIT_LOG(statementlog, LOG_WARNING, out.append("warning"));
    SONAVIT_LOG(statementlog, LOG_ERROR, out.append("error"));
    SONAVIT_LOG(statementlog, LOG_FATAL, out.append("fatal"));

    EXPECT_THAT(log.texts(), ElementsAre("warning", "error", "fatal"));
}

TEST(LogStatement, StartsTheMessageWithItsSourceLineAndOneBlank)
{
    support::LogCapture log;
    std::string raw;
    qor::LogFactory::setSink([&](const qor::LogRecord& record) { raw = record.text.toUtf8(); });

    // clang-format off
    const int line = __LINE__; SONAVIT_LOG(statementlog, LOG_ERROR, out.append("CoCreateInstance returns "));
    // clang-format on

    EXPECT_EQ(std::to_string(line) + " CoCreateInstance returns ", raw);
}

TEST(LogStatement, AppendsThePartsInTheirOrder)
{
    support::LogCapture log;
    const qor::String name("speaker");

    SONAVIT_LOG(statementlog, LOG_INFO, (out.append(name).append(" = "), out + 7).append("!"));

    EXPECT_THAT(log.texts(), ElementsAre("speaker = 7!"));
}

TEST(LogStatement, NamesPriorityAndChannelInTheRecord)
{
    support::LogCapture log;

    SONAVIT_LOG(statementlog, LOG_FATAL, out.append("unfinished"));

    ASSERT_EQ(1u, log.records().size());
    const support::LogCapture::Record record = log.records()[0];
    EXPECT_EQ(qor::LogRecord::Kind::message, record.kind);
    EXPECT_EQ(LoggerPriority::LOG_FATAL, record.priority);
    EXPECT_EQ("test.statement", record.channel);
}

TEST(LogStatement, BelowTheMinimumEvaluatesNoOperand)
{
    support::LogCapture log(LoggerPriority::LOG_ERROR);

    EXPECT_NO_THROW(SONAVIT_LOG(statementlog, LOG_WARNING, out.append(throwingOperand())));
}

TEST(LogStatement, StoppedByTheThresholdEvaluatesNoOperand)
{
    support::LogCapture log(LoggerPriority::LOG_DEBUG);
    log.setThreshold(statementlog::channel, 4);

    EXPECT_NO_THROW(SONAVIT_LOG(statementlog, LOG_ERROR, out.append(throwingOperand())));
}

TEST(LogStatement, ThatIsWrittenEvaluatesItsOperands)
{
    support::LogCapture log(LoggerPriority::LOG_DEBUG);

    EXPECT_THROW(SONAVIT_LOG(statementlog, LOG_ERROR, out.append(throwingOperand())), std::string);
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST(LogStatement, ThatIsDisabledAllocatesNothing)
{
    support::LogCapture log(LoggerPriority::LOG_ERROR);
    log.setThreshold(statementlog::channel, 4);
    SONAVIT_LOG(statementlog, LOG_ERROR, out.append("makes the logger"));
    const support::AllocationProbe probe;

    SONAVIT_LOG(statementlog, LOG_WARNING, out.append("below the minimum, and long enough to need memory"));
    SONAVIT_LOG(statementlog, LOG_ERROR, out.append("at the threshold, and long enough to need memory"));

    EXPECT_EQ(0u, probe.count());
}

TEST(LogStatement, BelowTheMinimumMakesNoLogger)
{
    support::LogCapture log(LoggerPriority::LOG_ERROR);

    SONAVIT_LOG(firstusebelowminimumlog, LOG_WARNING, out.append("text"));

    EXPECT_EQ(nullptr, firstusebelowminimumlog::logger.load());
}

TEST(LogStatement, MakesTheLoggerTheFirstTimeAnyMessagePassesTheMinimum)
{
    support::LogCapture log(LoggerPriority::LOG_ERROR);
    log.setThreshold(firstusebelowthresholdlog::channel, 5); // only the process-wide test lets the message pass

    SONAVIT_LOG(firstusebelowthresholdlog, LOG_ERROR, out.append("text"));

    EXPECT_EQ(&qor::LogFactory::logger("test.firstUse.belowThreshold"), firstusebelowthresholdlog::logger.load());
    EXPECT_THAT(log.records(), IsEmpty());
}
}
