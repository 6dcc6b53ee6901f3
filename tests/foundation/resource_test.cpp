#include "qor/resource.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
/// An object that counts its references as platform objects do, and records each call.
class Counted
{
public:
    explicit Counted(const char* name = "") : m_name(name) {}

    void addReference()
    {
        ++count;
        events.push_back("add " + m_name);
    }
    void release()
    {
        events.push_back("release " + m_name);
        if (releaseThrows)
            throw 7;
        --count;
    }

    static inline std::vector<std::string> events;

    int count = 1; // the reference of its creator
    bool releaseThrows = false;

private:
    std::string m_name;
};

struct CountedStorage
{
    using Element = Counted;

    static constexpr bool copyable = true;
    static Counted* nil() noexcept { return nullptr; }
    static Counted* copy(Counted* source)
    {
        if (source != nullptr)
            source->addReference();
        return source;
    }
    static void release(Counted*& value) noexcept(false)
    {
        Counted* const object = value;
        value = nullptr;
        if (object != nullptr)
            object->release();
    }
};

using Handle = qor::CopiedResource<CountedStorage>;

class CopiedResource : public testing::Test
{
protected:
    void SetUp() override { Counted::events.clear(); }
};

TEST_F(CopiedResource, IsNilByDefault)
{
    const Handle handle;

    EXPECT_EQ(nullptr, handle.get());
}

TEST_F(CopiedResource, HasTheSizeOfAPointer)
{
    EXPECT_EQ(sizeof(void*), sizeof(Handle));
    EXPECT_EQ(sizeof(void*), sizeof(BorrowedPointer<int>));
    EXPECT_EQ(sizeof(void*), sizeof(OwnedPointer<int>));
    EXPECT_FALSE(std::is_polymorphic_v<Handle>);
}

TEST_F(CopiedResource, BuiltFromARawPointerAdoptsItsReferenceAndReleasesItInTheDestructor)
{
    Counted object;

    {
        const Handle handle(&object);
        EXPECT_EQ(&object, handle.get());
        EXPECT_EQ(1, object.count);
    }

    EXPECT_EQ(0, object.count);
    EXPECT_THAT(Counted::events, ElementsAre("release "));
}

TEST_F(CopiedResource, RaisesTheCountTo2ByACopy)
{
    Counted object;
    const Handle handle(&object);

    {
        const Handle copy(handle);
        EXPECT_EQ(2, object.count);
        EXPECT_EQ(&object, copy.get());
    }

    EXPECT_EQ(1, object.count);
}

TEST_F(CopiedResource, AssignedToItselfChangesNoCount)
{
    Counted object;
    Handle handle(&object);
    const Handle& same = handle;

    handle = same;

    EXPECT_EQ(1, object.count);
    EXPECT_THAT(Counted::events, IsEmpty());
}

TEST_F(CopiedResource, CopiesTheNewValueBeforeItReleasesTheOldOne)
{
    Counted oldObject("old");
    Counted newObject("new");
    Handle handle(&oldObject);
    const Handle other(&newObject);

    Handle& result = handle = other;

    EXPECT_THAT(Counted::events, ElementsAre("add new", "release old"));
    EXPECT_EQ(&handle, &result);
    EXPECT_EQ(&newObject, handle.get());
    EXPECT_EQ(2, newObject.count);
    EXPECT_EQ(0, oldObject.count);
}

TEST_F(CopiedResource, AssignedItsOwnPointeeThroughAnotherHandleDoesNotReleaseItEarly)
{
    Counted object("object");
    Handle handle(&object);
    const Handle other(handle);
    Counted::events.clear();

    handle = other;

    EXPECT_THAT(Counted::events, ElementsAre("add object", "release object"));
    EXPECT_EQ(2, object.count);
}

TEST_F(CopiedResource, AssignedARawPointerAdoptsItsReferenceAndReleasesTheOldValue)
{
    Counted oldObject("old");
    Counted newObject("new");
    Handle handle(&oldObject);

    handle = &newObject;

    EXPECT_THAT(Counted::events, ElementsAre("add new", "release old", "release new"));
    EXPECT_EQ(&newObject, handle.get());
    EXPECT_EQ(1, newObject.count);
    EXPECT_EQ(0, oldObject.count);
}

TEST_F(CopiedResource, AssignedANilHandleReleasesAndIsNil)
{
    Counted object;
    Handle handle(&object);

    handle = Handle();

    EXPECT_EQ(nullptr, handle.get());
    EXPECT_EQ(0, object.count);
}

TEST_F(CopiedResource, IsNilAsACopyOfANilHandle)
{
    const Handle nil;

    const Handle copy(nil);

    EXPECT_EQ(nullptr, copy.get());
    EXPECT_THAT(Counted::events, IsEmpty());
}

TEST_F(CopiedResource, SwapsItsPointerWithoutACopyOrARelease)
{
    Counted first("first");
    Counted second("second");
    Handle handle(&first);
    Handle other(&second);
    Handle nil;

    handle.swap(other);
    other.swap(nil);

    EXPECT_THAT(Counted::events, IsEmpty());
    EXPECT_EQ(&second, handle.get());
    EXPECT_EQ(nullptr, other.get());
    EXPECT_EQ(&first, nil.get());
}

TEST_F(CopiedResource, GivesAccessToThePointee)
{
    Counted object;
    const Handle handle(&object);

    handle->count = 5;
    EXPECT_EQ(5, (*handle).count);

    handle->count = 1;
}

TEST_F(CopiedResource, ComparesWithNullAndWithPointers)
{
    Counted object;
    Counted other;
    const Handle handle(&object);

    EXPECT_TRUE(handle != nullptr);
    EXPECT_FALSE(handle == nullptr);
    EXPECT_TRUE(Handle() == nullptr);
    EXPECT_TRUE(handle == &object);
    EXPECT_TRUE(handle != &other);
}

TEST_F(CopiedResource, LetsAnExceptionOfAReleasePassOutOfItsDestructor)
{
    Counted object;
    object.releaseThrows = true;

    EXPECT_FALSE(std::is_nothrow_destructible_v<Handle>);
    EXPECT_THROW(Handle{&object}, int);
}

TEST_F(CopiedResource, HoldsTheNewValueWhenTheReleaseOfTheOldOneThrows)
{
    Counted oldObject("old");
    oldObject.releaseThrows = true;
    Counted newObject("new");
    Handle handle(&oldObject);
    const Handle other(&newObject);

    EXPECT_THROW(handle = other, int);

    EXPECT_EQ(&newObject, handle.get());
    EXPECT_EQ(2, newObject.count);
}

/// Counts its living objects, and those of classes derived from it.
struct Living
{
    Living() { ++alive; }
    virtual ~Living() { --alive; }

    static inline int alive = 0;
};

struct Derived : Living
{
    ~Derived() override { aliveAtTheEnd = Living::alive; }

    static inline int aliveAtTheEnd = 0;
};

TEST(BorrowedPointer, LeavesItsObjectAlive)
{
    Living object;

    {
        const BorrowedPointer<Living> pointer(&object);
        const BorrowedPointer<Living> copy(pointer);
        EXPECT_EQ(&object, copy.get());
    }

    EXPECT_EQ(1, Living::alive);
}

TEST(BorrowedPointer, ForgetsItsOldObjectByAssignment)
{
    Living first;
    Living second;
    BorrowedPointer<Living> pointer(&first);

    pointer = &second;
    EXPECT_EQ(&second, pointer.get());
    pointer = BorrowedPointer<Living>();
    EXPECT_EQ(nullptr, pointer.get());

    EXPECT_EQ(2, Living::alive);
}

struct Incomplete;

TEST(BorrowedPointer, NeedsNoCompleteType)
{
    const BorrowedPointer<Incomplete> pointer;

    EXPECT_EQ(nullptr, pointer.get());
}

TEST(OwnedPointer, DeletesItsObjectThroughTheVirtualDestructor)
{
    {
        const OwnedPointer<Living> pointer(new Derived);
        EXPECT_EQ(1, Living::alive);
    }

    EXPECT_EQ(0, Living::alive);
    EXPECT_EQ(1, Derived::aliveAtTheEnd);
}

TEST(OwnedPointer, DeletesTheOldObjectWhenANewPointerIsAssigned)
{
    OwnedPointer<Living> pointer(new Living);

    pointer = new Living;
    EXPECT_EQ(1, Living::alive);

    pointer = nullptr;
    EXPECT_EQ(0, Living::alive);
    EXPECT_EQ(nullptr, pointer.get());
}

TEST(OwnedPointer, TakesAnObjectWhileItIsNil)
{
    OwnedPointer<Living> pointer;

    pointer = new Living;

    EXPECT_EQ(1, Living::alive);
    EXPECT_NE(nullptr, pointer.get());
}

/// Reads its owner while it is destroyed.
template<template<class> class Handle>
class Observer
{
public:
    Observer(const Handle<Observer>& owner, const Observer*& seen, bool throws = false)
        : m_owner(owner),
          m_seen(seen),
          m_throws(throws)
    {
    }

    ~Observer() noexcept(false)
    {
        m_seen = m_owner.get();
        if (m_throws)
            throw 1;
    }

private:
    const Handle<Observer>& m_owner;
    const Observer*& m_seen;
    const bool m_throws;
};

TEST(OwnedPointer, IsNilOnlyAfterItsObjectIsDestroyed)
{
    const Observer<OwnedPointer>* seen = nullptr;
    OwnedPointer<Observer<OwnedPointer>> pointer;
    auto* const object = new Observer<OwnedPointer>(pointer, seen);
    pointer = object;

    pointer = nullptr;

    EXPECT_EQ(object, seen);
    EXPECT_EQ(nullptr, pointer.get());
}

TEST(OwnedPointer, IsNilEvenIfTheDestructorOfItsObjectThrows)
{
    const Observer<OwnedPointer>* seen = nullptr;
    OwnedPointer<Observer<OwnedPointer>> pointer;
    pointer = new Observer<OwnedPointer>(pointer, seen, true);

    EXPECT_THROW(pointer = nullptr, int);

    EXPECT_EQ(nullptr, pointer.get());
}

TEST(SharedPointer, IsNilOnlyAfterItsObjectIsDestroyed)
{
    const Observer<SharedPointer>* seen = nullptr;
    SharedPointer<Observer<SharedPointer>> pointer;
    auto* const object = new Observer<SharedPointer>(pointer, seen);
    pointer = SharedPointer<Observer<SharedPointer>>(object);

    pointer = SharedPointer<Observer<SharedPointer>>();

    EXPECT_EQ(object, seen);
    EXPECT_EQ(nullptr, pointer.get());
}
}
