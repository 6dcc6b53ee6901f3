// What a notification does when the platform calls OnNotify.
#include "tests/libSonavit/supportpostbox.h"

#include "libSonavit/volumecontroller.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/support/librarytest.h"

#include <memory>
#include <string>
#include <thread>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr UINT volumeChanged = 977;

using Notification = COMPtr<VolumeChangeNotification>::pointer;

sim::PostedMessage messageTo(HWND window)
{
    return {window, volumeChanged, 0, 0};
}

/// The context of a callback, which records its argument and when it is called.
struct Listener
{
    static void onChange(void* context)
    {
        Listener& listener = *static_cast<Listener*>(context);
        ++listener.calls;
        listener.thread = std::this_thread::get_id();
        if (listener.box != nullptr)
            listener.postedBefore = listener.box->messages().size();
    }

    int calls = 0;
    std::thread::id thread;
    support::PostBox* box = nullptr;
    std::size_t postedBefore = 0;
};

/// The context of a callback that copies the log up to its call.
struct LogReader
{
    static void read(void* context)
    {
        LogReader& reader = *static_cast<LogReader*>(context);
        reader.texts = reader.log.texts(channels::volumeChangeNotification);
    }

    const support::LogCapture& log;
    std::vector<std::string> texts;
};

class VolumeChangeNotificationOnNotify : public support::LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        m_box = std::make_unique<support::PostBox>(run(bench.build()));
        ASSERT_NE(nullptr, box().window());
    }

    support::PostBox& box() { return *m_box; }

    /// The interfaces that a controller of the speaker holds.
    EndpointVolumeController policy()
    {
        EndpointVolumeController result;
        result.endpointVolume = simulation().endpointVolume(speaker.id());
        return result;
    }

    sim::MachineBuilder bench;
    sim::EndpointBuilder speaker = bench.card("Codec").speaker();

private:
    std::unique_ptr<support::PostBox> m_box;
};

using VolumeChangeNotificationDelivery = VolumeChangeNotificationOnNotify;
}

TEST_F(VolumeChangeNotificationOnNotify, LogsAndPostsToANullWindowWithNeitherWindowNorFunction)
{
    const Notification notification(new VolumeChangeNotification);

    const HRESULT result = notification->OnNotify(nullptr);

    EXPECT_EQ(S_OK, result);
    EXPECT_THAT(box().messages(), ElementsAre(messageTo(nullptr)));
    EXPECT_THAT(log.texts(), ElementsAre("OnNotify"));
    EXPECT_EQ(log.texts(), log.texts(qor::LoggerPriority::LOG_ERROR, channels::volumeChangeNotification));
}

TEST_F(VolumeChangeNotificationOnNotify, CallsTheFunctionAndPostsToANullWindowWithoutAWindow)
{
    Listener listener;
    const Notification notification(new VolumeChangeNotification);
    notification->setCallbackFunction(&Listener::onChange, &listener);

    const HRESULT result = notification->OnNotify(nullptr);

    EXPECT_EQ(S_OK, result);
    EXPECT_EQ(1, listener.calls);
    EXPECT_THAT(box().messages(), ElementsAre(messageTo(nullptr)));
}

TEST_F(VolumeChangeNotificationOnNotify, PostsToTheWindowWithBothParametersZero)
{
    const Notification notification(new VolumeChangeNotification);
    notification->setCallbackWindow(box().window());

    const HRESULT result = notification->OnNotify(nullptr);

    EXPECT_EQ(S_OK, result);
    EXPECT_THAT(box().messages(), ElementsAre(messageTo(box().window())));
    EXPECT_EQ(volumeChanged, +VolumeChangeNotification::message);
}

TEST_F(VolumeChangeNotificationOnNotify, LogsBeforeItCallsTheFunction)
{
    LogReader reader{log, {}};
    const Notification notification(new VolumeChangeNotification);
    notification->setCallbackFunction(&LogReader::read, &reader);

    notification->OnNotify(nullptr);

    EXPECT_THAT(reader.texts, ElementsAre("OnNotify"));
}

TEST_F(VolumeChangeNotificationOnNotify, CallsTheFunctionBeforeItPosts)
{
    Listener listener;
    listener.box = &box();
    listener.postedBefore = 99;
    const Notification notification(new VolumeChangeNotification);
    notification->setCallbackWindow(box().window());
    notification->setCallbackFunction(&Listener::onChange, &listener);

    notification->OnNotify(nullptr);

    EXPECT_EQ(0u, listener.postedBefore);
    EXPECT_THAT(box().messages(), ElementsAre(messageTo(box().window())));
}

TEST_F(VolumeChangeNotificationOnNotify, CallsNoFunctionAfterItWasSetToNull)
{
    Listener listener;
    const Notification notification(new VolumeChangeNotification);
    notification->setCallbackFunction(&Listener::onChange, &listener);

    notification->setCallbackFunction(nullptr, nullptr);
    notification->OnNotify(nullptr);

    EXPECT_EQ(0, listener.calls);
    EXPECT_THAT(box().messages(), ElementsAre(messageTo(nullptr)));
}

TEST_F(VolumeChangeNotificationOnNotify, PassesANullContextOn)
{
    static bool wasNull;
    wasNull = false;
    const Notification notification(new VolumeChangeNotification);
    notification->setCallbackFunction([](void* context) { wasNull = context == nullptr; }, nullptr);

    notification->OnNotify(nullptr);

    EXPECT_TRUE(wasNull);
}

TEST_F(VolumeChangeNotificationOnNotify, IgnoresItsData)
{
    Listener listener;
    const Notification notification(new VolumeChangeNotification);
    notification->setCallbackFunction(&Listener::onChange, &listener);

    const HRESULT result = notification->OnNotify(reinterpret_cast<AUDIO_VOLUME_NOTIFICATION_DATA*>(8));

    EXPECT_EQ(S_OK, result);
    EXPECT_EQ(1, listener.calls);
}

TEST_F(VolumeChangeNotificationOnNotify, SucceedsEvenIfItsWindowIsGone)
{
    const Notification notification(new VolumeChangeNotification);
    notification->setCallbackWindow(reinterpret_cast<HWND>(0x0DEAD));
#if !defined(_WIN32)
    const sim::PlannedFault fault = simulation().faults().fail("PostMessageW", E_HANDLE);
#endif

    const HRESULT result = notification->OnNotify(nullptr);

    EXPECT_EQ(S_OK, result);
#if !defined(_WIN32)
    EXPECT_EQ(1u, fault.fired());
#endif
    EXPECT_THAT(box().messages(), IsEmpty());
}

TEST_F(VolumeChangeNotificationOnNotify, LeavesNoTrace)
{
    const Notification notification(new VolumeChangeNotification);

    notification->OnNotify(nullptr);

    EXPECT_THAT(log.entered(), IsEmpty());
    EXPECT_THAT(log.left(), IsEmpty());
}

TEST_F(VolumeChangeNotificationDelivery, ReachesFunctionAndWindowAtOnceWhereThePlatformCallsAtOnce)
{
    Listener listener;
    const Notification notification(new VolumeChangeNotification);
    notification->setCallbackFunction(&Listener::onChange, &listener);
    notification->setCallbackWindow(box().window());
    VolumeController<EndpointVolumeController> controller(policy());
    controller.registerVolumeChangeNotification(notification);

    simulation().events().setVolume(speaker.id(), -20.0f);

    EXPECT_EQ(1, listener.calls);
    EXPECT_EQ(std::this_thread::get_id(), listener.thread);
    EXPECT_THAT(box().messages(), ElementsAre(messageTo(box().window())));
    EXPECT_THAT(log.texts(channels::volumeChangeNotification), ElementsAre("OnNotify"));
}

TEST_F(VolumeChangeNotificationDelivery, CallsTheFunctionOnThePlatformsThreadAndPostsToTheWindowsThread)
{
    simulation().deliverAtOnce(false);
    Listener listener;
    const Notification notification(new VolumeChangeNotification);
    notification->setCallbackFunction(&Listener::onChange, &listener);
    notification->setCallbackWindow(box().window());
    VolumeController<EndpointVolumeController> controller(policy());
    controller.registerVolumeChangeNotification(notification);

    simulation().events().setVolume(speaker.id(), -20.0f);
    simulation().events().setVolume(speaker.id(), {}, true);
    simulation().events().waitForClients();

    EXPECT_EQ(2, listener.calls);
    EXPECT_NE(std::this_thread::get_id(), listener.thread);
    EXPECT_THAT(box().messages(), ElementsAre(messageTo(box().window()), messageTo(box().window())));
}

TEST_F(VolumeChangeNotificationDelivery, NotifiesOfAChangeByItsOwnProcess)
{
    Listener listener;
    const Notification notification(new VolumeChangeNotification);
    notification->setCallbackFunction(&Listener::onChange, &listener);
    VolumeController<EndpointVolumeController> controller(policy());
    controller.registerVolumeChangeNotification(notification);

    controller.setMasterVolumeLevelPercent(50);
    controller.setMute(true);

    EXPECT_EQ(2, listener.calls);
}

TEST_F(VolumeChangeNotificationDelivery, EndsWithTheControllerAndLeavesTheNotificationToItsHolder)
{
    Listener listener;
    const Notification notification(new VolumeChangeNotification);
    notification->setCallbackFunction(&Listener::onChange, &listener);
    {
        VolumeController<EndpointVolumeController> controller(policy());
        controller.registerVolumeChangeNotification(notification);
    }

    simulation().events().setVolume(speaker.id(), -20.0f);

    EXPECT_EQ(0, listener.calls);
    EXPECT_EQ(1, notification->m_referenceCount);
}
