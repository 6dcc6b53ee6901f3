#include "COM/comptr.h"

#include "tests/COM/supportcountedobject.h"
#include "tests/support/logcapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <type_traits>

using support::CallList;
using support::CountedObject;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
using Handle = COMPtr<CountedObject>::pointer;

static_assert(sizeof(Handle) == sizeof(void*), "a handle is as cheap as a pointer");
static_assert(!std::is_polymorphic_v<Handle>, "a handle has no table of operations");
static_assert(std::is_convertible_v<CountedObject*, Handle>, "a platform pointer passes into a handle as it is");

struct COMPtrPointer : testing::Test
{
    CallList calls;
    CountedObject object{calls, "object"};
    CountedObject other{calls, "other"};
};
}

TEST_F(COMPtrPointer, IsNilByDefault)
{
    const Handle handle;

    EXPECT_EQ(nullptr, handle.get());
}

TEST_F(COMPtrPointer, AdoptsTheReferenceOfARawPointerAndReleasesItInTheDestructor)
{
    {
        const Handle handle(&object);

        EXPECT_EQ(&object, handle.get());
        EXPECT_THAT(calls, IsEmpty());
    }
    EXPECT_THAT(calls, ElementsAre("object Release"));
    EXPECT_EQ(0u, object.count);
}

TEST_F(COMPtrPointer, ReachesTheObject)
{
    const Handle handle(&object);

    EXPECT_EQ(&object, &*handle);
    EXPECT_EQ(1u, handle->count);
}

TEST_F(COMPtrPointer, RaisesTheCountToTwoInACopy)
{
    const Handle handle(&object);
    {
        const Handle copy(handle);

        EXPECT_EQ(2u, object.count);
        EXPECT_EQ(&object, copy.get());
    }
    EXPECT_EQ(1u, object.count);
    EXPECT_THAT(calls, ElementsAre("object AddRef", "object Release"));
}

TEST_F(COMPtrPointer, CopiesNilWithoutACall)
{
    const Handle nil;
    {
        const Handle copy(nil);
        Handle assigned;
        assigned = nil;

        EXPECT_EQ(nullptr, copy.get());
        EXPECT_EQ(nullptr, assigned.get());
    }
    EXPECT_THAT(calls, IsEmpty());
}

TEST_F(COMPtrPointer, TakesTheNewReferenceBeforeItReleasesTheOldOne)
{
    Handle handle(&object);
    const Handle source(&other);

    handle = source;

    EXPECT_THAT(calls, ElementsAre("other AddRef", "object Release"));
    EXPECT_EQ(&other, handle.get());
}

TEST_F(COMPtrPointer, ChangesNoCountWhenItIsAssignedToItself)
{
    Handle handle(&object);
    const Handle& same = handle;

    handle = same;

    EXPECT_THAT(calls, IsEmpty());
    EXPECT_EQ(&object, handle.get());
}

TEST_F(COMPtrPointer, KeepsAnObjectThatAnotherHandleOnItIsAssignedFrom)
{
    Handle handle(&object);
    const Handle another(handle);
    calls.clear();

    handle = another;

    EXPECT_THAT(calls, ElementsAre("object AddRef", "object Release"));
    EXPECT_EQ(2u, object.count);
}

TEST_F(COMPtrPointer, AdoptsAnAssignedRawPointerAndReleasesTheOldObject)
{
    {
        Handle handle(&object);

        handle = &other;

        EXPECT_EQ(&other, handle.get());
        EXPECT_EQ(0u, object.count);
        EXPECT_EQ(1u, other.count);
    }
    EXPECT_EQ(0u, other.count);
}

TEST_F(COMPtrPointer, IsNilAndHasReleasedAfterNullWasAssigned)
{
    Handle handle(&object);

    handle = nullptr;

    EXPECT_EQ(nullptr, handle.get());
    EXPECT_THAT(calls, ElementsAre("object Release"));
}

TEST(ComReferenceCount, AnswersOneForAnObjectHeldByOneReference)
{
    CallList calls;
    CountedObject object(calls, "object");

    EXPECT_EQ(1u, comReferenceCount(&object));
    EXPECT_EQ(1u, object.count);
}

TEST(ComReferenceCount, AddsAReferenceAndTakesItBack)
{
    CallList calls;
    CountedObject object(calls, "object");

    comReferenceCount(&object);

    EXPECT_THAT(calls, ElementsAre("object AddRef", "object Release"));
}

TEST(ComReferenceCount, UsesTheResultOfAddRefOnly)
{
    CallList calls;
    CountedObject object(calls, "object");
    object.count = 4;
    object.releaseSurplus = 40;

    EXPECT_EQ(4u, comReferenceCount(&object));
}
