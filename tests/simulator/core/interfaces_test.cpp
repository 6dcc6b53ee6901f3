#include "simulator/core/interfaces.h"

#include "simulator/machine/operations.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace
{
/// The interfaces that clients implement, and those that others extend and no object implements alone.
const std::set<std::string> notImplemented = {
    "IMMNotificationClient", "IControlChangeNotify", "IAudioEndpointVolumeCallback", "IPerChannelDbLevel", "IPersist",
    "IMediaFilter"};

TEST(Interfaces, HaveOperationsThatAMachineFileCanName)
{
#define SONAVIT_TEST_NAME(I, B) #I,
    for (const std::string name : {SONAVIT_SIM_INTERFACES(SONAVIT_TEST_NAME)})
    {
        EXPECT_EQ(notImplemented.count(name) == 0, sim::isOperation(name + "::Release")) << name;
    }
#undef SONAVIT_TEST_NAME
}
}
