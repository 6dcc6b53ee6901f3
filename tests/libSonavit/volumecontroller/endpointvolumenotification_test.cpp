// Registering a change notification with an endpoint controller, and how the registration ends.
#include "tests/libSonavit/volumecontroller/supportcontrollers.h"

#include "tests/libSonavit/supportchannels.h"

using support::EndpointController;
using support::EndpointControllerTest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr const char* registers = "IAudioEndpointVolume::RegisterControlChangeNotify(object)";
constexpr const char* unregisters = "IAudioEndpointVolume::UnregisterControlChangeNotify(object)";
constexpr qor::LOGGER_PRIORITY warning = qor::LoggerPriority::LOG_WARNING;

/// Counts its calls; the context of a notification.
struct Listener
{
    static void onChange(void* context) { ++static_cast<Listener*>(context)->calls; }

    COMPtr<VolumeChangeNotification>::pointer notification()
    {
        COMPtr<VolumeChangeNotification>::pointer made(new VolumeChangeNotification);
        made->setCallbackFunction(&Listener::onChange, this);
        return made;
    }

    int calls = 0;
};

class EndpointVolumeControllerRegistration : public EndpointControllerTest
{
protected:
    static LONG count(const COMPtr<VolumeChangeNotification>::pointer& notification)
    {
        return notification->m_referenceCount;
    }

    /// How many notifications the platform has.
    long registered() { return simulation().census().clients["IAudioEndpointVolumeCallback"]; }

    /// Another program changes the volume.
    void change(const sim::EndpointBuilder& endpoint)
    {
        m_level -= 1.0f;
        simulation().events().setVolume(endpoint.id(), m_level);
    }

    /// Unregisters a notification that a controller leaves registered.
    void unregister(const sim::EndpointBuilder& endpoint, const COMPtr<VolumeChangeNotification>::pointer& notification)
    {
        const COMPtr<IAudioEndpointVolume>::pointer platform = simulation().endpointVolume(endpoint.id());
        ASSERT_EQ(S_OK, platform->UnregisterControlChangeNotify(notification.get()));
    }

    Listener first;
    Listener second;

private:
    float m_level = 0.0f;
};
}

TEST_F(EndpointVolumeControllerRegistration, GivesTheNotificationToThePlatformInSilenceAndWithoutATrace)
{
    start();
    const COMPtr<VolumeChangeNotification>::pointer notification = first.notification();
    EndpointController controller(policy(speaker));

    const bool result = controller.registerVolumeChangeNotification(notification);

    EXPECT_TRUE(result);
    EXPECT_THAT(asked(), ElementsAre(registers));
    EXPECT_THAT(log.records(), IsEmpty());
    change(speaker);
    EXPECT_EQ(1, first.calls);
}

TEST_F(EndpointVolumeControllerRegistration, HoldsOneReferenceInAdditionToThePlatformsUntilTheController)
{
    start();
    const COMPtr<VolumeChangeNotification>::pointer notification = first.notification();
    {
        EndpointController controller(policy(speaker));

        controller.registerVolumeChangeNotification(notification);

        EXPECT_EQ(3, count(notification));
        EXPECT_EQ(1, registered());
    }
    EXPECT_EQ(1, count(notification));
    EXPECT_EQ(0, registered());
}

TEST_F(EndpointVolumeControllerRegistration, IsRefusedWithAWarningWithoutAnInterface)
{
    const COMPtr<VolumeChangeNotification>::pointer notification = first.notification();
    EndpointController controller((EndpointVolumeController()));

    const bool result = controller.registerVolumeChangeNotification(notification);

    EXPECT_FALSE(result);
    EXPECT_EQ(1, count(notification));
    EXPECT_EQ(nullptr, controller.m_notification.get());
    EXPECT_THAT(log.texts(), ElementsAre("Volume controller has not been initialized yet"));
    EXPECT_EQ(log.texts(), log.texts(warning, channels::volumeController));
    EXPECT_THAT(log.entered(), IsEmpty());
}

TEST_F(EndpointVolumeControllerRegistration, UnregistersTheFirstNotificationBeforeItRegistersTheSecond)
{
    start();
    const COMPtr<VolumeChangeNotification>::pointer one = first.notification();
    const COMPtr<VolumeChangeNotification>::pointer other = second.notification();
    EndpointController controller(policy(speaker));
    controller.registerVolumeChangeNotification(one);
    asked();

    const bool result = controller.registerVolumeChangeNotification(other);

    EXPECT_TRUE(result);
    EXPECT_THAT(asked(), ElementsAre(unregisters, registers));
    EXPECT_EQ(1, count(one));
    EXPECT_EQ(3, count(other));
    change(speaker);
    EXPECT_EQ(0, first.calls);
    EXPECT_EQ(1, second.calls);
}

TEST_F(EndpointVolumeControllerRegistration, OfTheSameNotificationTwiceLeavesItRegisteredOnce)
{
    start();
    const COMPtr<VolumeChangeNotification>::pointer notification = first.notification();
    EndpointController controller(policy(speaker));
    controller.registerVolumeChangeNotification(notification);

    controller.registerVolumeChangeNotification(notification);

    EXPECT_THAT(asked(), ElementsAre(registers, unregisters, registers));
    EXPECT_EQ(3, count(notification));
    change(speaker);
    EXPECT_EQ(1, first.calls);
}

TEST_F(EndpointVolumeControllerRegistration, DoesNotLookWhetherTheFirstCouldBeUnregistered)
{
    start();
    const COMPtr<VolumeChangeNotification>::pointer one = first.notification();
    const COMPtr<VolumeChangeNotification>::pointer other = second.notification();
    EndpointController controller(policy(speaker));
    controller.registerVolumeChangeNotification(one);
    const sim::PlannedFault fault =
        simulation().faults().fail("IAudioEndpointVolume::UnregisterControlChangeNotify").at(1);

    const bool result = controller.registerVolumeChangeNotification(other);

    EXPECT_EQ(1u, fault.fired());
    EXPECT_TRUE(result);
    EXPECT_EQ(2, registered());
    EXPECT_EQ(2, count(one)) << "the controller has given up its own";
    EXPECT_THAT(log.texts(), IsEmpty());
    unregister(speaker, one);
}

TEST_F(EndpointVolumeControllerRegistration, LogsARefusalOfThePlatformInDecimalAndKeepsTheNotification)
{
    start();
    const COMPtr<VolumeChangeNotification>::pointer notification = first.notification();
    const sim::PlannedFault fault = simulation().faults().fail("IAudioEndpointVolume::RegisterControlChangeNotify");
    {
        EndpointController controller(policy(speaker));

        const bool result = controller.registerVolumeChangeNotification(notification);

        EXPECT_EQ(1u, fault.fired());
        EXPECT_FALSE(result);
        EXPECT_EQ(notification.get(), controller.m_notification.get());
        EXPECT_EQ(2, count(notification));
        EXPECT_THAT(log.texts(), ElementsAre("Unable to register control change notification 18446744071562084357"));
        EXPECT_EQ(log.texts(), log.texts(warning, channels::volumeController));
        asked();
    }
    EXPECT_THAT(asked(), ElementsAre(unregisters));
    EXPECT_EQ(1, count(notification));
}

TEST_F(EndpointVolumeControllerRegistration, OfNothingIsRefusedByThePlatform)
{
    start();
    {
        EndpointController controller(policy(speaker));

        const bool result = controller.registerVolumeChangeNotification(COMPtr<VolumeChangeNotification>::pointer());

        EXPECT_FALSE(result);
        EXPECT_EQ(nullptr, controller.m_notification.get());
        EXPECT_THAT(log.texts(warning, channels::volumeController),
                    ElementsAre("Unable to register control change notification 18446744071562084355"));
    }
    EXPECT_THAT(asked(), ElementsAre("IAudioEndpointVolume::RegisterControlChangeNotify(null)"));
}

TEST_F(EndpointVolumeControllerRegistration, OfNothingTakesTheFirstNotificationOff)
{
    start();
    const COMPtr<VolumeChangeNotification>::pointer notification = first.notification();
    EndpointController controller(policy(speaker));
    controller.registerVolumeChangeNotification(notification);

    controller.registerVolumeChangeNotification(COMPtr<VolumeChangeNotification>::pointer());

    EXPECT_EQ(1, count(notification));
    EXPECT_EQ(0, registered());
}

TEST_F(EndpointVolumeControllerRegistration, EndsWithTheFirstCopyForAllOfThem)
{
    start();
    const COMPtr<VolumeChangeNotification>::pointer notification = first.notification();
    EndpointController controller(policy(speaker));
    controller.registerVolumeChangeNotification(notification);
    asked();
    {
        const EndpointController copy(controller);

        EXPECT_EQ(4, count(notification));
        EXPECT_THAT(asked(), IsEmpty());
    }

    EXPECT_THAT(asked(), ElementsAre(unregisters));
    EXPECT_EQ(2, count(notification)) << "the controller's and the test's";
    EXPECT_EQ(notification.get(), controller.m_notification.get());
    change(speaker);
    EXPECT_EQ(0, first.calls);
}

TEST_F(EndpointVolumeControllerRegistration, IsTakenOffOnceMoreByTheOriginalAfterItsCopy)
{
    start();
    const COMPtr<VolumeChangeNotification>::pointer notification = first.notification();
    {
        EndpointController controller(policy(speaker));
        controller.registerVolumeChangeNotification(notification);
        const EndpointController copy(controller);
        asked();
    }

    const sim::JournalEntries ends = simulation().journal().of("IAudioEndpointVolume::UnregisterControlChangeNotify");
    ASSERT_EQ(2u, ends.size());
    EXPECT_EQ(S_OK, ends[0].result);
    EXPECT_TRUE(FAILED(ends[1].result));
    EXPECT_EQ(1, count(notification));
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(EndpointVolumeControllerRegistration, PassesAtAssignmentAndTheOverwrittenOneStaysWithThePlatform)
{
    start();
    const COMPtr<VolumeChangeNotification>::pointer one = first.notification();
    const COMPtr<VolumeChangeNotification>::pointer other = second.notification();
    {
        EndpointController controller(policy(speaker));
        controller.registerVolumeChangeNotification(one);
        EndpointController source(policy(headphones));
        source.registerVolumeChangeNotification(other);
        asked();

        controller = source;

        EXPECT_THAT(asked(), IsEmpty());
        EXPECT_EQ(other.get(), controller.m_notification.get());
        EXPECT_EQ(2, count(one));
        EXPECT_EQ(4, count(other));
    }
    EXPECT_EQ(1, count(other));
    EXPECT_EQ(1, registered());
    change(speaker);
    EXPECT_EQ(1, first.calls);
    unregister(speaker, one);
}

TEST_F(EndpointVolumeControllerRegistration, StaysWhereItWasWhenTheControllerIsRebound)
{
    start();
    const COMPtr<VolumeChangeNotification>::pointer notification = first.notification();
    {
        EndpointController controller(policy(speaker));
        controller.registerVolumeChangeNotification(notification);
        asked();

        controller.initialize(policy(headphones));

        EXPECT_THAT(asked(), IsEmpty());
        EXPECT_EQ(notification.get(), controller.m_notification.get());
        EXPECT_EQ(3, count(notification));
        change(headphones);
        EXPECT_EQ(0, first.calls);
        change(speaker);
        EXPECT_EQ(1, first.calls);
    }
    unregister(speaker, notification);
}

TEST_F(EndpointVolumeControllerRegistration, IsTakenOffTheNewInterfaceAfterTheControllerWasRebound)
{
    start();
    const COMPtr<VolumeChangeNotification>::pointer one = first.notification();
    const COMPtr<VolumeChangeNotification>::pointer other = second.notification();
    {
        EndpointController controller(policy(speaker));
        controller.registerVolumeChangeNotification(one);
        controller.initialize(policy(headphones));
        simulation().journal().clear();

        controller.registerVolumeChangeNotification(other);

        EXPECT_EQ(simulation().journal().of("IAudioEndpointVolume::*").calls(),
                  simulation().journal().entries().on(headphones.id()).calls());
        EXPECT_THAT(asked(), ElementsAre(unregisters, registers));
    }
    EXPECT_EQ(1, registered());
    EXPECT_EQ(2, count(one));
    unregister(speaker, one);
}

TEST_F(EndpointVolumeControllerRegistration, IsLeftAloneByAControllerThatLostItsInterface)
{
    start();
    const COMPtr<VolumeChangeNotification>::pointer notification = first.notification();
    {
        EndpointController controller(policy(speaker));
        controller.registerVolumeChangeNotification(notification);
        controller.initialize(EndpointVolumeController());
        asked();
    }

    EXPECT_THAT(asked(), IsEmpty());
    EXPECT_EQ(2, count(notification));
    unregister(speaker, notification);
}

TEST_F(EndpointVolumeControllerRegistration, IsTakenOffThenReleasedAndTheInterfaceIsReleasedLast)
{
    start();
    const COMPtr<VolumeChangeNotification>::pointer notification = first.notification();
    LONG atUnregistering = 0;
    LONG atRelease = 0;
    {
        EndpointController controller(policy(speaker));
        controller.registerVolumeChangeNotification(notification);
        simulation().faults().run("IAudioEndpointVolume::UnregisterControlChangeNotify",
                                  [&] { atUnregistering = count(notification); });
        simulation().faults().run("IAudioEndpointVolume::Release", [&] { atRelease = count(notification); });
    }

    EXPECT_EQ(3, atUnregistering);
    EXPECT_EQ(1, atRelease);
}

TEST_F(EndpointVolumeControllerRegistration, IsNotTakenOffWhereThereIsNone)
{
    start();
    {
        const EndpointController controller(policy(speaker));
    }

    EXPECT_THAT(asked(), IsEmpty());
}
