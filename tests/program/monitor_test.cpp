#include "tools/sonavit/monitor.h"

#include "COM/identifiers.h"
#include "tests/program/programtest.h"
#include "tools/sonavit/endpoint.h"
#include "tools/sonavit/monitorlisteners.h"

#include <memory>
#include <sstream>

namespace
{
/// The monitor without its command.
class ProgramMonitorItself : public support::ProgramTest
{
};
}

TEST_F(ProgramMonitorItself, ShowsNothingAfterItHasStopped)
{
    run(support::smallMachine());
    std::ostringstream out;
    std::ostringstream err;
    const sonavit::program::Environment environment{out, err};
    std::vector<sonavit::program::Card> cards = sonavit::program::readCards();
    const auto monitor = std::make_shared<sonavit::program::Monitor>(environment, false, std::nullopt, cards);
    monitor->start(cards);
    simulation().events().setState(support::headphonesId(), sim::stateActive);
    const std::string before = out.str();

    monitor->stop();
    simulation().events().setState(support::headphonesId(), sim::stateUnplugged);
    simulation().events().setVolume(support::speakerId(), -3.0f);

    EXPECT_THAT(before, testing::HasSubstr("active"));
    EXPECT_EQ(before, out.str());
}

TEST_F(ProgramMonitorItself, ListensAsAClientOfTheSystemAndAsNothingElse)
{
    IMMNotificationClient& listener = sonavit::program::makeSystemListener({});

    void* object = nullptr;
    EXPECT_EQ(S_OK, listener.QueryInterface(IID_IUnknown, &object));
    EXPECT_EQ(&listener, object);
    EXPECT_EQ(S_OK, listener.QueryInterface(IID_IMMNotificationClient, &object));
    EXPECT_EQ(&listener, object);
    EXPECT_EQ(E_NOINTERFACE, listener.QueryInterface(IID_IAudioEndpointVolume, &object));
    EXPECT_EQ(nullptr, object);
}
