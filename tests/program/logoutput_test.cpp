#include "tools/sonavit/logoutput.h"

#include "tests/support/logcapture.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace sonavit::program;

namespace
{
/// Puts one record of each priority into the log.
void logAll()
{
    qor::Logger& logger = qor::LogFactory::logger("test.output");
    for (const qor::LOGGER_PRIORITY priority :
         {qor::LoggerPriority::LOG_DEBUG, qor::LoggerPriority::LOG_INFO, qor::LoggerPriority::LOG_WARNING,
          qor::LoggerPriority::LOG_ERROR, qor::LoggerPriority::LOG_FATAL})
    {
        if (qor::LogFactory::getPriority() > priority)
            continue;
        qor::LoggerStream stream;
        stream.append("text");
        logger.log(priority, stream);
    }
}

std::string recordsFrom(const std::optional<qor::LOGGER_PRIORITY>& least)
{
    std::ostringstream stream;
    const LogOutput output(stream, least);
    logAll();
    return stream.str();
}
}

TEST(ProgramLogOutput, PrintsARecordOfEachPriorityOnALine)
{
    EXPECT_EQ("debug test.output: text\n"
              "info test.output: text\n"
              "warning test.output: text\n"
              "error test.output: text\n"
              "fatal test.output: text\n",
              recordsFrom(qor::LoggerPriority::LOG_DEBUG));
}

TEST(ProgramLogOutput, PrintsNoRecordBelowThePriority)
{
    EXPECT_EQ("error test.output: text\nfatal test.output: text\n", recordsFrom(qor::LoggerPriority::LOG_ERROR));
    EXPECT_EQ("", recordsFrom(std::nullopt));
}

TEST(ProgramLogOutput, MarksWhereAnOperationIsEnteredAndLeft)
{
    std::ostringstream stream;
    const LogOutput output(stream, qor::LoggerPriority::LOG_DEBUG);
    {
        qor::Logger* logger = &qor::LogFactory::logger("test.output");
        const qor::TraceLogger trace(logger, "Class::operation", __FILE__, __LINE__);
    }

    EXPECT_EQ("debug test.output: > Class::operation\ndebug test.output: < Class::operation\n", stream.str());
}

TEST(ProgramLogOutput, PrintsOneLineForATextOfSeveral)
{
    std::ostringstream stream;
    const LogOutput output(stream, qor::LoggerPriority::LOG_ERROR);
    qor::LoggerStream text;
    text.append("a\nb");
    qor::LogFactory::logger("test.output").log(qor::LoggerPriority::LOG_ERROR, text);

    EXPECT_EQ("error test.output: a\xEF\xBF\xBD"
              "b\n",
              stream.str());
}

TEST(ProgramLogOutput, RestoresThePriority)
{
    const qor::LOGGER_PRIORITY before = qor::LogFactory::getPriority();

    recordsFrom(qor::LoggerPriority::LOG_DEBUG);

    EXPECT_EQ(before, qor::LogFactory::getPriority());
}
