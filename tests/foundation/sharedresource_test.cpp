#include "qor/resource.h"

#include "tests/foundation/supportallocations.h"
#include "tests/foundation/supportvirtualslot.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <type_traits>

using support::AllocationProbe;

namespace
{
struct Living
{
    Living() { ++alive; }
    virtual ~Living() noexcept(false)
    {
        --alive;
        ++destroyed;
        if (probe != nullptr)
            balanceAtTheEnd = probe->balance();
        if (watched != nullptr)
            countAtTheEnd = *watched;
        if (throws)
            throw 7;
    }

    static inline int alive = 0;
    static inline int destroyed = 0;
    static inline const AllocationProbe* probe = nullptr;
    static inline int balanceAtTheEnd = 0; ///< of the probe while the last object was destroyed
    static inline const std::int32_t* watched = nullptr;
    static inline std::int32_t countAtTheEnd = 0; ///< the watched count while the last object was destroyed

    bool throws = false;
};

struct Derived : Living
{
    ~Derived() override { ++derivedDestroyed; }

    static inline int derivedDestroyed = 0;
};

using Pointer = SharedPointer<Living>;
using Storage = qor::PointerStorage<Living, 0, 3>;

class SharedResource : public testing::Test
{
protected:
    void SetUp() override
    {
        Living::alive = 0;
        Living::destroyed = 0;
        Living::probe = nullptr;
        Living::watched = nullptr;
        Derived::derivedDestroyed = 0;
    }
    void TearDown() override { EXPECT_EQ(0, Living::alive); }

    static void expectNil(const Pointer& pointer)
    {
        EXPECT_EQ(nullptr, pointer.m_value);
        EXPECT_EQ(nullptr, pointer.m_count);
        EXPECT_EQ(nullptr, pointer.m_destroyer);
    }
};

TEST_F(SharedResource, IsNilByDefault)
{
    const AllocationProbe probe;

    const Pointer pointer;

    EXPECT_EQ(0u, probe.count());
    expectNil(pointer);
}

TEST_F(SharedResource, HoldsValueCountAndDestroyerInThatOrder)
{
    const Pointer pointer;

    EXPECT_EQ(3 * sizeof(void*), sizeof(Pointer));
    EXPECT_EQ(static_cast<const void*>(&pointer), static_cast<const void*>(&pointer.m_value));
    EXPECT_LT(static_cast<const void*>(&pointer.m_value), static_cast<const void*>(&pointer.m_count));
    EXPECT_LT(static_cast<const void*>(&pointer.m_count), static_cast<const void*>(&pointer.m_destroyer));
    EXPECT_TRUE((std::is_same_v<std::int32_t*, decltype(pointer.m_count)>)) << "a plain number, not an atomic one";
}

TEST_F(SharedResource, BuiltFromARawPointerAllocatesACountOf1AndADestroyer)
{
    Living* const object = new Living;
    const AllocationProbe probe;

    const Pointer pointer(object);

    EXPECT_EQ(2u, probe.count());
    EXPECT_EQ(1, *pointer.m_count);
    EXPECT_NE(nullptr, pointer.m_destroyer);
    EXPECT_EQ(object, pointer.get());
}

TEST_F(SharedResource, BuiltFromANullPointerIsCountedAsWell)
{
    const AllocationProbe probe;

    const Pointer pointer(nullptr);

    EXPECT_EQ(2u, probe.count());
    EXPECT_EQ(1, *pointer.m_count);
    EXPECT_EQ(nullptr, pointer.get());
}

TEST_F(SharedResource, WithoutMemoryForTheCountKeepsThatFieldNullAndRaisesNothing)
{
    Living object;
    AllocationProbe probe;
    probe.failOnce();

    const Pointer pointer(&object);
    const Pointer copy(pointer);

    EXPECT_EQ(&object, pointer.get());
    EXPECT_EQ(nullptr, pointer.m_count);
    EXPECT_NE(nullptr, pointer.m_destroyer);
    expectNil(copy);
    pointer.m_destroyer->forget(); // without a count nothing owns it
    delete pointer.m_destroyer;
}

TEST_F(SharedResource, WithoutMemoryForTheDestroyerKeepsThatFieldNullAndRaisesNothing)
{
    Living object;
    AllocationProbe probe;
    probe.failOnce(1);

    {
        const Pointer pointer(&object);
        const Pointer copy(pointer);

        EXPECT_EQ(&object, copy.get());
        EXPECT_EQ(2, *copy.m_count);
        EXPECT_EQ(nullptr, copy.m_destroyer);
    }

    EXPECT_EQ(0, probe.balance());
    EXPECT_EQ(1, Living::alive);
}

TEST_F(SharedResource, SharesTheThreeFieldsWithItsCopies)
{
    const Pointer pointer(new Living);
    const AllocationProbe probe;

    const Pointer copy(pointer);

    EXPECT_EQ(0u, probe.count());
    EXPECT_EQ(pointer.m_value, copy.m_value);
    EXPECT_EQ(pointer.m_count, copy.m_count);
    EXPECT_EQ(pointer.m_destroyer, copy.m_destroyer);
    EXPECT_EQ(2, *copy.m_count);
}

TEST_F(SharedResource, CopiedFromANilHandleIsNilAndAllocatesNothing)
{
    const Pointer nil;
    const AllocationProbe probe;

    const Pointer copy(nil);

    EXPECT_EQ(0u, probe.count());
    expectNil(copy);
}

TEST_F(SharedResource, DestroysItsObjectOnceWithTheLastOfThreeCopies)
{
    auto first = std::make_unique<Pointer>(new Living);
    auto second = std::make_unique<Pointer>(*first);
    auto third = std::make_unique<Pointer>(*second);

    second.reset();
    first.reset();
    EXPECT_EQ(0, Living::destroyed);
    third.reset();

    EXPECT_EQ(1, Living::destroyed);
}

TEST_F(SharedResource, DestroysADerivedObjectThroughTheVirtualDestructor)
{
    {
        const Pointer pointer(new Derived);
    }

    EXPECT_EQ(1, Derived::derivedDestroyed);
}

TEST_F(SharedResource, FreesTheCountBeforeItDestroysTheObject)
{
    const AllocationProbe probe;
    {
        const Pointer pointer(new Living);
        ASSERT_EQ(3, probe.balance()); // object, count, destroyer
        Living::probe = &probe;
    }

    EXPECT_EQ(2, Living::balanceAtTheEnd);
    EXPECT_EQ(0, probe.balance());
}

TEST_F(SharedResource, AssignedToItselfChangesNothing)
{
    Pointer pointer(new Living);
    const Pointer& same = pointer;

    pointer = same;

    EXPECT_EQ(1, *pointer.m_count);
    EXPECT_EQ(0, Living::destroyed);
}

TEST_F(SharedResource, ReleasesItsResourceBeforeItTakesTheOther)
{
    const Pointer other(new Living);
    Pointer pointer(new Living);
    Living::watched = other.m_count;

    Pointer& result = pointer = other;
    Living::watched = nullptr;

    EXPECT_EQ(1, Living::countAtTheEnd);
    EXPECT_EQ(2, *other.m_count);
    EXPECT_EQ(&pointer, &result);
    EXPECT_EQ(other.get(), pointer.get());
}

TEST_F(SharedResource, AssignedAHandleOnTheSameObjectKeepsIt)
{
    Pointer pointer(new Living);
    const Pointer other(pointer);

    pointer = other;

    EXPECT_EQ(2, *pointer.m_count);
    EXPECT_EQ(0, Living::destroyed);
}

TEST_F(SharedResource, AssignedANilHandleReleasesAndKeepsAStaleDestroyer)
{
    Pointer pointer(new Living);
    const std::uintptr_t destroyer = reinterpret_cast<std::uintptr_t>(pointer.m_destroyer);

    pointer = Pointer();

    EXPECT_EQ(1, Living::destroyed);
    EXPECT_EQ(nullptr, pointer.m_value);
    EXPECT_EQ(nullptr, pointer.m_count);
    EXPECT_EQ(destroyer, reinterpret_cast<std::uintptr_t>(pointer.m_destroyer));
}

TEST_F(SharedResource, CopiedAfterItsReleaseIsNil)
{
    Pointer pointer(new Living);
    pointer = Pointer();

    const Pointer copy(pointer);

    expectNil(copy);
}

TEST_F(SharedResource, TakesAnotherObjectAfterItsRelease)
{
    Pointer pointer(new Living);
    pointer = Pointer();

    pointer = Pointer(new Living);

    EXPECT_EQ(1, Living::alive);
    EXPECT_EQ(1, *pointer.m_count);
}

TEST_F(SharedResource, GivesAccessToThePointee)
{
    const SharedPointer<int> pointer(new int(5));

    ++*pointer;

    EXPECT_EQ(6, *pointer.operator->());
    EXPECT_EQ(6, *pointer.get());
}

TEST_F(SharedResource, LetsAnExceptionOfTheObjectPassAndIsNilThen)
{
    Pointer pointer(new Living);
    pointer->throws = true;

    EXPECT_THROW(pointer = Pointer(), int);

    EXPECT_EQ(nullptr, pointer.get());
    EXPECT_EQ(nullptr, pointer.m_count);
    EXPECT_FALSE(std::is_nothrow_destructible_v<Pointer>);
}

TEST_F(SharedResource, IsDestroyedByItsDestroyer)
{
    {
        const qor::SharedResourceDestroyer<Storage> destroyer(new Living);
        EXPECT_EQ(1, Living::alive);
    }

    EXPECT_EQ(0, Living::alive);
}

TEST_F(SharedResource, StaysAliveWhenItsDestroyerHasForgottenIt)
{
    Living object;

    {
        qor::SharedResourceDestroyer<Storage> destroyer(&object);
        destroyer.forget();
    }

    EXPECT_EQ(1, Living::alive);
}

TEST_F(SharedResource, MayBeNullForItsDestroyer)
{
    EXPECT_NO_THROW({ const qor::SharedResourceDestroyer<Storage> destroyer(nullptr); });
}

#if defined(SUPPORT_HAS_VIRTUAL_SLOTS)
TEST(SharedResourceDestroyerBase, HasItsVirtualOperationsInTheirFixedOrder)
{
    EXPECT_EQ(2u, support::virtualSlot(&qor::SharedResourceDestroyerBase::forget)); // after those of the destructor
}
#endif
}
