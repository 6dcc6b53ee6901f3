#include "tests/libSonavit/audiodeviceendpoint/devicetest.h"

#include <type_traits>

namespace
{
class AudioDeviceIsEndpoint : public devicetest::DeviceTest
{
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        start();
    }
};

TEST_F(AudioDeviceIsEndpoint, AnswersTrueForAnEndpointAndKeepsNoReference)
{
    kept.directSoundTexts = 1;
    const AudioDevice device(reference(speaker.id()));

    EXPECT_TRUE(device.isEndpoint());

    EXPECT_EQ(1, references("IMMDevice " + speaker.id()));
}

TEST_F(AudioDeviceIsEndpoint, AnswersFalseForAnAdapterDevice)
{
    const AudioDevice device(reference(card.adapter().id));

    EXPECT_FALSE(device.isEndpoint());
}

TEST_F(AudioDeviceIsEndpoint, QueriesEachTime)
{
    kept.directSoundTexts = 1;
    const AudioDevice device(reference(speaker.id()));
    sim::PlannedFault fault = simulation().faults().fail("IMMDevice::QueryInterface", E_NOINTERFACE).at(1);

    EXPECT_FALSE(device.isEndpoint());
    EXPECT_TRUE(device.isEndpoint());
    EXPECT_EQ(1u, fault.fired());
}

class AudioDeviceEquality : public devicetest::DeviceTest
{
};

TEST_F(AudioDeviceEquality, IgnoresCase)
{
    AudioDevice lower;
    AudioDevice upper;
    lower.m_properties.deviceId = "{0.0.0.00000000}.{0abc}";
    upper.m_properties.deviceId = "{0.0.0.00000000}.{0ABC}";

    EXPECT_TRUE(lower == upper);
}

TEST_F(AudioDeviceEquality, ComparesTheIdOnly)
{
    start();
    kept.directSoundTexts = 1;
    const AudioDevice bound(reference(speaker.id()));
    AudioDevice empty;
    EXPECT_FALSE(bound == empty);

    empty.m_properties.deviceId = bound.deviceProperty().deviceId;

    EXPECT_TRUE(bound == empty);
}

template<class T, class = void>
struct HasInequality : std::false_type
{
};

template<class T>
struct HasInequality<T, std::void_t<decltype(std::declval<const T&>() != std::declval<const T&>())>> : std::true_type
{
};

TEST_F(AudioDeviceEquality, HasNoOppositeOperator)
{
    EXPECT_FALSE(HasInequality<AudioDevice>::value);
}
}
