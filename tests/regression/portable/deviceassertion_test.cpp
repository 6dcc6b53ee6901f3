// The assertions of the endpoint device named the line below their check. The test reads the sources, which under Wine
// are not at the path that the compiler has seen.
#include "qor/exception.h"
#include "tests/libSonavit/audiodeviceendpoint/devicetest.h"
#include "tests/libSonavit/supportlogline.h"

#include <functional>
#include <string>

namespace
{
/// The source line that the assertion out of @p action names; empty if there is none.
std::string assertedLine(const std::function<void()>& action)
{
    try
    {
        action();
    }
    catch (const qor::AssertionFailure& failure)
    {
        return support::sourceLineOf(failure);
    }
    return {};
}

using AudioDeviceAssertion = devicetest::DeviceTest;
}

TEST_F(AudioDeviceAssertion, NamesTheLineOfItsCheck)
{
    AudioDevice empty;

    EXPECT_THAT(assertedLine([&] { empty.volumeController(); }), testing::HasSubstr("m_device.get() != nullptr"));
    EXPECT_THAT(assertedLine([&] { empty.activateDeviceInterface<IAudioEndpointVolume>(); }),
                testing::HasSubstr("m_device.get() != nullptr"));
    EXPECT_THAT(assertedLine([&] { empty.setFormat({}); }), testing::HasSubstr("m_propertyStore.get() != nullptr"));
}
