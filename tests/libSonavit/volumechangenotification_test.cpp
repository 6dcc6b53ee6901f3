#include "libSonavit/volumechangenotification.h"

#include "tests/foundation/supportallocations.h"
#include "tests/foundation/supportvirtualslot.h"
#include "tests/libSonavit/supportplace.h"
#include "tests/libSonavit/supportthreads.h"
#include "tests/support/librarytest.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <thread>
#include <type_traits>
#include <vector>

using support::placeOf;
using testing::IsEmpty;

namespace
{
using Notification = COMPtr<VolumeChangeNotification>::pointer;

void ignore(void*) {}

class VolumeChangeNotificationObject : public support::LibraryTest
{
protected:
    static LONG count(const Notification& notification) { return notification->m_referenceCount; }
};
}

TEST_F(VolumeChangeNotificationObject, BeginsWithOneReferenceAndNothingElse)
{
    const Notification notification(new VolumeChangeNotification);

    EXPECT_EQ(1, count(notification));
    EXPECT_EQ(nullptr, notification->m_window);
    EXPECT_EQ(nullptr, notification->m_callback);
    EXPECT_EQ(nullptr, notification->m_callbackContext);
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(VolumeChangeNotificationObject, KnowsIUnknown)
{
    const Notification notification(new VolumeChangeNotification);
    void* object = nullptr;

    const HRESULT result = notification->QueryInterface(IID_IUnknown, &object);

    EXPECT_EQ(S_OK, result);
    EXPECT_EQ(notification.get(), object);
    EXPECT_EQ(2, count(notification));
    notification->Release();
}

TEST_F(VolumeChangeNotificationObject, KnowsTheCallbackOfAnEndpointVolume)
{
    const Notification notification(new VolumeChangeNotification);
    void* object = nullptr;

    const HRESULT result = notification->QueryInterface(IID_IAudioEndpointVolumeCallback, &object);

    EXPECT_EQ(S_OK, result);
    EXPECT_EQ(notification.get(), object);
    EXPECT_EQ(2, count(notification));
    notification->Release();
}

TEST_F(VolumeChangeNotificationObject, KnowsNoOtherInterface)
{
    const Notification notification(new VolumeChangeNotification);

    for (const IID& iid : {IID_IAudioEndpointVolume, IID_IMMNotificationClient, IID_IPart, IID()})
    {
        void* object = notification.get();

        const HRESULT result = notification->QueryInterface(iid, &object);

        EXPECT_EQ(E_NOINTERFACE, result);
        EXPECT_EQ(nullptr, object);
        EXPECT_EQ(1, count(notification));
    }
}

TEST_F(VolumeChangeNotificationObject, HasItsOldCountAfterAQueryAndARelease)
{
    const Notification notification(new VolumeChangeNotification);
    void* object = nullptr;

    notification->QueryInterface(IID_IAudioEndpointVolumeCallback, &object);
    const ULONG left = static_cast<IAudioEndpointVolumeCallback*>(object)->Release();

    EXPECT_EQ(1u, left);
    EXPECT_EQ(1, count(notification));
}

TEST_F(VolumeChangeNotificationObject, ReturnsTheNewCountAndIsDestroyedAtZero)
{
    auto* const notification = new VolumeChangeNotification;

    EXPECT_EQ(2u, notification->AddRef());
    EXPECT_EQ(3u, notification->AddRef());
    EXPECT_EQ(2u, notification->Release());
    EXPECT_EQ(1u, notification->Release());
    EXPECT_EQ(0u, notification->Release());

    EXPECT_THAT(log.records(), IsEmpty());
}

#if !defined(_WIN32) // where a probe does not see the library's allocations
TEST_F(VolumeChangeNotificationObject, IsDestroyedByItsLastReleaseAndNoEarlierOne)
{
    const support::AllocationProbe probe;
    auto* const notification = new VolumeChangeNotification;
    notification->AddRef();

    const int withTwo = (notification->Release(), probe.balance());
    const ULONG left = notification->Release();
    const int withNone = probe.balance();

    EXPECT_EQ(1, withTwo);
    EXPECT_EQ(0, withNone);
    EXPECT_EQ(0u, left);
}
#endif

TEST_F(VolumeChangeNotificationObject, KeepsItsFieldsInTheirOrder)
{
    const Notification notification(new VolumeChangeNotification);

    EXPECT_LT(placeOf(*notification),
              placeOf(notification->m_referenceCount)); // after the pointer to the virtual table
    EXPECT_LT(placeOf(notification->m_referenceCount), placeOf(notification->m_window));
    EXPECT_LT(placeOf(notification->m_window), placeOf(notification->m_callback));
    EXPECT_LT(placeOf(notification->m_callback), placeOf(notification->m_callbackContext));
}

TEST_F(VolumeChangeNotificationObject, CountsFromTwoThreadsAtOnce)
{
    const Notification notification(new VolumeChangeNotification);

    const bool overlapped = support::overlapping(
        [&](unsigned int)
        {
            for (int turn = 0; turn < 500; ++turn)
            {
                notification->AddRef();
                notification->Release();
            }
        });

    EXPECT_TRUE(overlapped);
    EXPECT_EQ(1, count(notification));
}

TEST_F(VolumeChangeNotificationObject, AnswersEachNewCountToOneOfTwoThreadsOnly)
{
    const Notification notification(new VolumeChangeNotification);
    std::array<std::uint64_t, 2> sums = {0, 0};

    const bool overlapped = support::overlapping(
        [&](unsigned int thread)
        {
            for (int turn = 0; turn < 500; ++turn)
                sums[thread] += notification->AddRef();
        });

    EXPECT_TRUE(overlapped);
    const auto last = static_cast<std::uint64_t>(count(notification));
    EXPECT_EQ(last * (last + 1) / 2 - 1, sums[0] + sums[1]) << "the sum of 2, 3, ... " << last;
    notification->m_referenceCount = 1;
}

TEST_F(VolumeChangeNotificationObject, IsLastReleasedByOneOfTwoThreadsOnly)
{
    constexpr unsigned int objects = 30000;
    std::vector<VolumeChangeNotification*> notifications(objects);
    std::vector<std::atomic<unsigned int>> arrived(objects);
    std::array<std::vector<ULONG>, 2> left = {std::vector<ULONG>(objects), std::vector<ULONG>(objects)};
    for (VolumeChangeNotification*& notification : notifications)
    {
        notification = new VolumeChangeNotification;
        notification->AddRef();
    }

    const auto releaseEach = [&](unsigned int thread)
    {
        for (unsigned int i = 0; i < objects; ++i)
        {
            ++arrived[i];
            for (unsigned int turns = 0; arrived[i] < 2; ++turns)
            {
                if (turns > 1000)
                    std::this_thread::yield();
            }
            left[thread][i] = notifications[i]->Release();
        }
    };

    support::onThreads(2, releaseEach);

    for (unsigned int i = 0; i < objects; ++i)
        ASSERT_EQ(1u, left[0][i] + left[1][i]) << "object " << i;
}

TEST_F(VolumeChangeNotificationObject, CopiesAllFieldsTheCountIncluded)
{
    int context = 0;
    const Notification original(new VolumeChangeNotification);
    original->setCallbackWindow(reinterpret_cast<HWND>(0x10));
    original->setCallbackFunction(&ignore, &context);
    original->AddRef();

    auto* const copy = new VolumeChangeNotification(*original);

    EXPECT_EQ(2, copy->m_referenceCount);
    EXPECT_EQ(reinterpret_cast<HWND>(0x10), copy->m_window);
    EXPECT_EQ(&ignore, copy->m_callback);
    EXPECT_EQ(&context, copy->m_callbackContext);
    EXPECT_EQ(1u, copy->Release());
    EXPECT_EQ(0u, copy->Release());
    original->Release();
}

TEST_F(VolumeChangeNotificationObject, AssignsAllFieldsTheCountIncluded)
{
    int context = 0;
    const Notification source(new VolumeChangeNotification);
    source->setCallbackWindow(reinterpret_cast<HWND>(0x10));
    source->setCallbackFunction(&ignore, &context);
    auto* const target = new VolumeChangeNotification;
    target->AddRef();
    target->AddRef();

    VolumeChangeNotification& result = *target = *source;

    EXPECT_EQ(target, &result);
    EXPECT_EQ(1, target->m_referenceCount);
    EXPECT_EQ(reinterpret_cast<HWND>(0x10), target->m_window);
    EXPECT_EQ(&ignore, target->m_callback);
    EXPECT_EQ(&context, target->m_callbackContext);
    EXPECT_EQ(0u, target->Release());
}

TEST_F(VolumeChangeNotificationObject, ReplacesTheWindowAndTheFunctionThatItHad)
{
    int first = 0;
    int second = 0;
    const Notification notification(new VolumeChangeNotification);
    notification->setCallbackWindow(reinterpret_cast<HWND>(0x10));
    notification->setCallbackFunction(&ignore, &first);

    notification->setCallbackWindow(nullptr);
    notification->setCallbackFunction(&ignore, &second);

    EXPECT_EQ(nullptr, notification->m_window);
    EXPECT_EQ(&second, notification->m_callbackContext);
    EXPECT_EQ(1, count(notification));
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(VolumeChangeNotificationObject, HasFourVirtualOperationsInThePlatformsOrderAndACountOfThirtyTwoBits)
{
#if defined(SUPPORT_HAS_VIRTUAL_SLOTS)
    EXPECT_EQ(0u, support::virtualSlot(&VolumeChangeNotification::QueryInterface));
    EXPECT_EQ(1u, support::virtualSlot(&VolumeChangeNotification::AddRef));
    EXPECT_EQ(2u, support::virtualSlot(&VolumeChangeNotification::Release));
    EXPECT_EQ(3u, support::virtualSlot(&VolumeChangeNotification::OnNotify));
#endif
    EXPECT_FALSE(std::has_virtual_destructor_v<VolumeChangeNotification>);
    EXPECT_EQ(4u, sizeof(VolumeChangeNotification::m_referenceCount));
}
