#include "COM/comptr.h"

#include "qor/array.h"
#include "tests/COM/supportcountedobject.h"
#include "tests/support/logcapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

using qor::LoggerPriority;
using support::CallList;
using support::CountedObject;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
using Handle = COMPtr<CountedObject>::pointer;

static_assert(!std::is_nothrow_destructible_v<Handle>, "what Release throws must get out of the destructor");

/// Stores its own address, so that a handler can distinguish it from a copy.
struct Refusal
{
    explicit Refusal(const Refusal*& place) { place = this; }
};

/// An object that throws at its first Release.
struct COMPtrReleaseGuard : testing::Test
{
    COMPtrReleaseGuard()
    {
        object.atRelease = [this]
        {
            object.atRelease = nullptr;
            throw Refusal(thrown);
        };
    }

    /// Calls @p action, which must throw a Refusal. @return the object that was caught, not a copy
    template<class Action>
    const Refusal* caughtFrom(const Action& action)
    {
        try
        {
            action();
        }
        catch (const Refusal& refusal)
        {
            return &refusal == thrown ? thrown : nullptr;
        }
        return nullptr;
    }

    void expectTheRecord()
    {
        EXPECT_THAT(log.texts(), ElementsAre("COMPtr destructor caught an exception"));
        EXPECT_THAT(log.texts(LoggerPriority::LOG_ERROR, "comptr"),
                    ElementsAre("COMPtr destructor caught an exception"));
    }

    CallList calls;
    CountedObject object{calls, "object"};
    CountedObject other{calls, "other"};
    const Refusal* thrown = nullptr;
    support::LogCapture log;
};
}

TEST_F(COMPtrReleaseGuard, LogsAndRethrowsTheSameExceptionFromTheDestructor)
{
    const Refusal* const caught = caughtFrom([&] { const Handle handle(&object); });

    EXPECT_NE(nullptr, caught);
    EXPECT_THAT(calls, ElementsAre("object Release"));
    expectTheRecord();
}

TEST_F(COMPtrReleaseGuard, LogsAndRethrowsTheSameExceptionFromAnAssignment)
{
    Handle handle(&object);
    const Handle source(&other);

    const Refusal* const caught = caughtFrom([&] { handle = source; });

    EXPECT_NE(nullptr, caught);
    EXPECT_EQ(&other, handle.get());
    EXPECT_EQ(2u, other.count);
    expectTheRecord();
}

TEST_F(COMPtrReleaseGuard, LogsAndRethrowsTheSameExceptionWhenNullIsAssigned)
{
    Handle handle(&object);

    const Refusal* const caught = caughtFrom([&] { handle = nullptr; });

    EXPECT_NE(nullptr, caught);
    EXPECT_EQ(nullptr, handle.get());
    expectTheRecord();
}

TEST_F(COMPtrReleaseGuard, LetsTheExceptionOutOfAListOfHandlesAndReleasesTheRest)
{
    const auto refuse = std::exchange(object.atRelease, nullptr);

    const Refusal* const caught = caughtFrom(
        [&]
        {
            qor::Array<Handle> handles;
            handles.append(Handle(&object));
            handles.append(Handle(&other));
            object.atRelease = refuse;
        });

    EXPECT_NE(nullptr, caught);
    EXPECT_EQ(0u, object.count);
    EXPECT_EQ(0u, other.count);
    expectTheRecord();
}

TEST_F(COMPtrReleaseGuard, HandlesExceptionsOfAnyType)
{
    object.atRelease = [] { throw 42; };

    EXPECT_THROW(const Handle handle(&object), int);

    expectTheRecord();
}

TEST_F(COMPtrReleaseGuard, RethrowsEvenIfTheMessageIsDisabled)
{
    log.setThreshold("comptr", LoggerPriority::LOG_ERROR);

    const Refusal* const caught = caughtFrom([&] { const Handle handle(&object); });

    EXPECT_NE(nullptr, caught);
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(COMPtrReleaseGuard, LogsNothingForAnOrdinaryRelease)
{
    {
        const Handle handle(&other);
        const Handle nil;
    }

    EXPECT_EQ(0u, other.count);
    EXPECT_THAT(log.records(), IsEmpty());
}
