#include "platform/atlcomptr.h"

#include "platform/interlocked.h"

#include <gtest/gtest.h>

#include <utility>

namespace
{

/// Counts its references and, unlike a real object, survives the last one so that the count can be read.
class CountedObject final : public IUnknown
{
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override
    {
        *object = nullptr;
        return E_NOINTERFACE;
    }

    ULONG STDMETHODCALLTYPE AddRef() override { return ++count; }

    ULONG STDMETHODCALLTYPE Release() override { return --count; }

    ULONG count = 1; ///< the test's own reference
};

/// What a platform call does with the place that it is given.
void handOut(CountedObject& object, IUnknown** place)
{
    object.AddRef();
    *place = &object;
}

using Pointer = ATL::CComPtr<IUnknown>;

}

TEST(AtlComPtr, TakesAReferenceOfItsOwnOnAPlainPointerAndGivesItBack)
{
    CountedObject object;
    {
        const Pointer pointer(&object);

        EXPECT_EQ(2u, object.count);
        EXPECT_EQ(&object, pointer.p);
    }
    EXPECT_EQ(1u, object.count);
}

TEST(AtlComPtr, IsEmptyByDefaultAndOnNull)
{
    const Pointer byDefault;
    const Pointer onNull(static_cast<IUnknown*>(nullptr));

    EXPECT_EQ(nullptr, byDefault.p);
    EXPECT_EQ(nullptr, onNull.p);
}

TEST(AtlComPtr, CopiesShareTheObject)
{
    CountedObject object;
    const Pointer first(&object);
    {
        const Pointer second(first);
        Pointer third;
        third = first;

        EXPECT_EQ(4u, object.count);
        EXPECT_EQ(&object, third.p);
    }
    EXPECT_EQ(2u, object.count);
}

TEST(AtlComPtr, AssignmentLetsGoOfWhatWasHeld)
{
    CountedObject held;
    CountedObject next;
    Pointer pointer(&held);

    pointer = &next;

    EXPECT_EQ(1u, held.count);
    EXPECT_EQ(2u, next.count);
}

TEST(AtlComPtr, AssignmentToItselfChangesNothing)
{
    CountedObject object;
    Pointer pointer(&object);
    const Pointer& same = pointer;

    pointer = same;

    EXPECT_EQ(2u, object.count);
    EXPECT_EQ(&object, pointer.p);
}

TEST(AtlComPtr, MovesWithoutTouchingTheCount)
{
    CountedObject object;
    Pointer source(&object);

    Pointer target(std::move(source));

    EXPECT_EQ(2u, object.count);
    EXPECT_EQ(&object, target.p);
}

TEST(AtlComPtr, AttachAdoptsAndDetachGivesAway)
{
    CountedObject held;
    CountedObject object;
    Pointer pointer(&held);

    pointer.Attach(&object);
    EXPECT_EQ(1u, held.count);
    EXPECT_EQ(1u, object.count);

    EXPECT_EQ(&object, pointer.Detach());
    EXPECT_EQ(nullptr, pointer.p);
    EXPECT_EQ(1u, object.count);
}

TEST(AtlComPtr, OffersItsPlaceToPlatformCalls)
{
    CountedObject object;
    {
        Pointer pointer;
        handOut(object, &pointer);

        EXPECT_EQ(2u, object.count);
        EXPECT_EQ(&object, static_cast<IUnknown*>(pointer));
    }
    EXPECT_EQ(1u, object.count);
}

TEST(AtlComPtr, ReleaseEmptiesItOnce)
{
    CountedObject object;
    Pointer pointer(&object);

    pointer.Release();
    pointer.Release();

    EXPECT_EQ(nullptr, pointer.p);
    EXPECT_EQ(1u, object.count);
}

TEST(AtlComPtr, CallsGoToTheObject)
{
    CountedObject object;
    const Pointer pointer(&object);
    void* found = &object;

    EXPECT_EQ(E_NOINTERFACE, pointer->QueryInterface(IID_IUnknown, &found));
    EXPECT_EQ(nullptr, found);
}
