#include "qor/logging.h"
#include "tests/support/printers.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

using qor::LoggerPriority;
using qor::LogRecord;
using Sink = qor::LogFactory::Sink;

namespace
{
int callsOfFunction = 0;

void countCall(const LogRecord&)
{
    ++callsOfFunction;
}

LogRecord anyRecord()
{
    return {LogRecord::Kind::message, LoggerPriority::LOG_INFO, "test.sink", "text", nullptr, 0};
}

TEST(LogSinkValue, IsEmptyByDefaultAndFromNothing)
{
    void (*const noFunction)(const LogRecord&) = nullptr;

    EXPECT_FALSE(Sink());
    EXPECT_FALSE(Sink(nullptr));
    EXPECT_FALSE(Sink(noFunction));
    EXPECT_FALSE(Sink(std::function<void(const LogRecord&)>()));
}

TEST(LogSinkValue, ComparesWithNull)
{
    EXPECT_TRUE(Sink() == nullptr);
    EXPECT_FALSE(Sink() != nullptr);
    EXPECT_TRUE(Sink(countCall) != nullptr);
}

/// A function object that is false, like a file that is not open, and returns a number.
struct ClosedFile
{
    explicit operator bool() const { return false; }
    operator int() const { return 0; }
    [[nodiscard]] int operator()(const LogRecord&) const { return ++*calls; }

    int* calls;
};

TEST(LogSinkValue, CallsAFunctionObjectThatConvertsToFalse)
{
    int calls = 0;
    const Sink sink(ClosedFile{&calls});

    ASSERT_TRUE(sink);
    sink(anyRecord());

    EXPECT_EQ(1, calls);
}

TEST(LogSinkValue, CallsAFunction)
{
    callsOfFunction = 0;

    const Sink byName(countCall);
    const Sink byPointer(&countCall);
    byName(anyRecord());
    byPointer(anyRecord());

    EXPECT_EQ(2, callsOfFunction);
}

TEST(LogSinkValue, CallsAFunctionObjectOfTheStandardLibrary)
{
    qor::String text;
    const std::function<void(const LogRecord&)> function = [&](const LogRecord& record) { text = record.text; };

    const Sink sink(function);
    sink(anyRecord());

    EXPECT_EQ(qor::String("text"), text);
}

TEST(LogSinkValue, KeepsTheStateOfALambdaAcrossCallsAndCopies)
{
    int last = 0;
    const Sink sink([&last, calls = 0](const LogRecord&) mutable { last = ++calls; });

    const Sink copy(sink);
    sink(anyRecord());
    copy(anyRecord());

    EXPECT_EQ(2, last);
}

TEST(LogSinkValue, DestroysItsCallableWithTheLastCopy)
{
    const auto owned = std::make_shared<int>(1);
    {
        Sink copy;
        {
            const Sink sink([owned](const LogRecord&) {});
            copy = sink;
        }
        EXPECT_EQ(2, owned.use_count());
    }

    EXPECT_EQ(1, owned.use_count());
}

TEST(LogSinkValue, TakesACallableThatCanOnlyBeMoved)
{
    int seen = 0;
    const Sink sink([number = std::make_unique<int>(7), &seen](const LogRecord&) { seen = *number; });

    sink(anyRecord());

    EXPECT_EQ(7, seen);
}
}
