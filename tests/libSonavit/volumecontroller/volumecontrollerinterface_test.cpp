#include "tests/libSonavit/volumecontroller/supportcontrollers.h"

#include "tests/libSonavit/supportplace.h"

#include <cstddef>
#include <type_traits>

using support::EndpointController;
using support::placeOf;
using support::RegularController;

namespace
{
class VolumeControllerInterfaceObject : public support::EndpointControllerTest
{
};
}

TEST_F(VolumeControllerInterfaceObject, HasNoDataAndAVirtualDestructor)
{
    EXPECT_EQ(sizeof(void*), sizeof(VolumeControllerInterface));
    EXPECT_TRUE(std::is_abstract_v<VolumeControllerInterface>);
    EXPECT_TRUE(std::has_virtual_destructor_v<VolumeControllerInterface>);
}

TEST_F(VolumeControllerInterfaceObject, HasARangeOfThreeFloatsInTheirOrder)
{
    using Range = VolumeControllerInterface::DbVolumeRange;

    EXPECT_EQ(0u, offsetof(Range, minLevel));
    EXPECT_EQ(4u, offsetof(Range, maxLevel));
    EXPECT_EQ(8u, offsetof(Range, stepping));
    EXPECT_EQ(12u, sizeof(Range));
}

TEST_F(VolumeControllerInterfaceObject, HasPoliciesWithTheirFieldsInTheirOrder)
{
    const EndpointVolumeController endpoint;
    EXPECT_EQ(placeOf(endpoint), placeOf(endpoint.endpointVolume));
    EXPECT_LT(placeOf(endpoint.endpointVolume), placeOf(endpoint.ownerType));
    EXPECT_LT(placeOf(endpoint.ownerType), placeOf(endpoint.ownerName));
    EXPECT_EQ(nullptr, endpoint.endpointVolume.get());
    EXPECT_EQ(GUID(), endpoint.ownerType);

    const RegularVolumeController regular;
    EXPECT_EQ(placeOf(regular), placeOf(regular.volumeLevel));
    EXPECT_LT(placeOf(regular.volumeLevel), placeOf(regular.mute));
    EXPECT_LT(placeOf(regular.mute), placeOf(regular.ownerType));
    EXPECT_LT(placeOf(regular.ownerType), placeOf(regular.ownerName));
    EXPECT_EQ(nullptr, regular.volumeLevel.get());
    EXPECT_EQ(nullptr, regular.mute.get());
}

TEST_F(VolumeControllerInterfaceObject, HasImplementationsThatHoldThePolicyThenTheNotification)
{
    const EndpointController endpoint((EndpointVolumeController()));
    EXPECT_LT(placeOf(endpoint.m_policy), placeOf(endpoint.m_notification));

    const RegularController regular((RegularVolumeController()));
    EXPECT_LT(placeOf(regular.m_policy), placeOf(regular.m_notification));
}

TEST_F(VolumeControllerInterfaceObject, EndsAControllerThroughTheInterface)
{
    start();
    {
        const SharedPointer<VolumeControllerInterface> shared(new EndpointController(policy(speaker)));
        EXPECT_EQ(1, references(speaker));
    }

    EXPECT_EQ(0, references(speaker));
}

TEST_F(VolumeControllerInterfaceObject, LetsPassWhatThePlatformThrowsAtTheEndOfAController)
{
    start();
    VolumeControllerInterface* const controller = new EndpointController(policy(speaker));
    const sim::PlannedFault fault = simulation().faults().raise("IAudioEndpointVolume::Release");

    EXPECT_THROW(delete controller, sim::InjectedException);

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ("COMPtr destructor caught an exception", log.texts(qor::LoggerPriority::LOG_ERROR).front());
}
