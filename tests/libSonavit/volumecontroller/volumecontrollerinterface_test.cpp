#include "supportcontrollers.h"

#include "tests/foundation/supportvirtualslot.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

using support::EndpointController;
using support::RegularController;

namespace
{
template<class Field>
std::uintptr_t placeOf(const Field& field)
{
    return reinterpret_cast<std::uintptr_t>(&field);
}

class VolumeControllerInterfaceObject : public support::EndpointControllerTest
{
};
}

#if defined(SUPPORT_HAS_VIRTUAL_SLOTS)
TEST_F(VolumeControllerInterfaceObject, HasItsOperationsInTheirOrder)
{
    using support::virtualSlot;
    using Interface = VolumeControllerInterface;

    EXPECT_EQ(0u, virtualSlot(&Interface::numChannel));
    EXPECT_EQ(1u, virtualSlot(&Interface::volumeLevelPercent));
    EXPECT_EQ(2u, virtualSlot(&Interface::volumeLevelDecibel));
    EXPECT_EQ(3u, virtualSlot(&Interface::volumeRangeDecibel));
    EXPECT_EQ(4u, virtualSlot(&Interface::masterVolumeLevelPercent));
    EXPECT_EQ(5u, virtualSlot(&Interface::masterVolumeLevelDecibel));
    EXPECT_EQ(6u, virtualSlot(&Interface::setVolumeLevelPercent));
    EXPECT_EQ(7u, virtualSlot(&Interface::setVolumeLevelDecibel));
    EXPECT_EQ(8u, virtualSlot(&Interface::setMasterVolumeLevelPercent));
    EXPECT_EQ(9u, virtualSlot(&Interface::setMasterVolumeLevelDecibel));
    EXPECT_EQ(10u, virtualSlot(&Interface::registerVolumeChangeNotification));
    EXPECT_EQ(11u, virtualSlot(&Interface::ownerName));
    EXPECT_EQ(12u, virtualSlot(&Interface::ownerType));
    EXPECT_EQ(13u, virtualSlot(&Interface::isMuted));
    EXPECT_EQ(14u, virtualSlot(&Interface::setMute));
    EXPECT_EQ(15u, virtualSlot(&Interface::hasVolumeControl));
    EXPECT_EQ(16u, virtualSlot(&Interface::hasMuteControl));
}
#endif

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

TEST_F(VolumeControllerInterfaceObject, HasTwinsThatHoldThePolicyThenTheNotification)
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
