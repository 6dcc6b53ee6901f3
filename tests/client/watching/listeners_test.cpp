#include "client/watching/listeners.h"

#include "client/watching/inbox.h"
#include "tests/support/manualclock.h"

#include <gtest/gtest.h>

#include <memory>

using namespace sonavit;

namespace
{
std::shared_ptr<watching::Inbox> inbox()
{
    return std::make_shared<watching::Inbox>(std::make_shared<worker::Alarm>(),
                                             std::make_shared<support::ManualClock>());
}

/// @p listener is an object with these interfaces and no other, and counts the references that it gives.
template<class Interface>
void expectOnly(Interface& listener, const IID& own, const IID& other)
{
    for (const IID& iid : {IID_IUnknown, own})
    {
        void* object = nullptr;
        EXPECT_EQ(S_OK, listener.QueryInterface(iid, &object));
        EXPECT_EQ(&listener, object);
        EXPECT_EQ(1u, listener.Release());
    }
    void* object = &listener;
    EXPECT_EQ(E_NOINTERFACE, listener.QueryInterface(other, &object));
    EXPECT_EQ(nullptr, object);
    EXPECT_EQ(E_POINTER, listener.QueryInterface(own, nullptr));
}
}

TEST(ListenerQueryInterface, HandsOutTheClientOfTheSystemAndNothingElse)
{
    auto* const listener = new watching::DeviceListener(inbox());

    expectOnly(*listener, IID_IMMNotificationClient, IID_IAudioEndpointVolumeCallback);

    EXPECT_EQ(0u, listener->Release());
}

TEST(ListenerQueryInterface, HandsOutTheCallbackOfAVolumeAndNothingElse)
{
    auto* const listener = new watching::VolumeListener(inbox(), EndpointId("{0.0.0.00000000}.1"));

    expectOnly(*listener, IID_IAudioEndpointVolumeCallback, IID_IMMNotificationClient);

    EXPECT_EQ(0u, listener->Release());
}
