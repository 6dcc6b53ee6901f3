#include "tests/client/changing/supportchanges.h"

namespace
{
using namespace sonavit;
using changing::changeMute;
using changing::MuteChange;
using support::OneEndpoint;
using support::setters;
using support::withContext;
using testing::ElementsAre;
using testing::IsEmpty;

using ChangeMute = support::ChangingTest;

TEST_F(ChangeMute, SwitchesTheMuteOnAndOffAndLeavesTheLevelAlone)
{
    OneEndpoint machine;
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());
    const Level level = reading.content.volume->master;

    const Result<Volume> on = changeMute(reading, MuteChange::on, context);
    const Result<Volume> off = changeMute(reading, MuteChange::off, context);

    EXPECT_EQ(on->isMuted, true);
    EXPECT_EQ(off->isMuted, false);
    EXPECT_EQ(off->master, level);
    EXPECT_THAT(setters(simulation()), ElementsAre("IAudioEndpointVolume::SetMute(1, " + withContext(),
                                                   "IAudioEndpointVolume::SetMute(0, " + withContext()));
}

TEST_F(ChangeMute, TogglesWhatThePlatformReportsNow)
{
    OneEndpoint machine;
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());
    simulation().events().setVolume(machine.endpoint.id(), {}, true);

    const Result<Volume> result = changeMute(reading, MuteChange::toggle, context);

    EXPECT_EQ(result->isMuted, false);
}

TEST_F(ChangeMute, CallsNoSetterForWhatIsThereAlready)
{
    OneEndpoint machine;
    machine.endpoint.muted();
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());

    const Result<Volume> result = changeMute(reading, MuteChange::on, context);

    EXPECT_EQ(result->isMuted, true);
    EXPECT_THAT(setters(simulation()), IsEmpty());
    EXPECT_FALSE(context.isUsed());
}

TEST_F(ChangeMute, SetsAMuteThatCannotBeReadButDoesNotToggleIt)
{
    OneEndpoint machine;
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());
    simulation().faults().fail("IAudioEndpointVolume::GetMute", E_UNEXPECTED);

    const Result<Volume> on = changeMute(reading, MuteChange::on, context);
    const Result<Volume> toggle = changeMute(reading, MuteChange::toggle, context);

    EXPECT_TRUE(on);
    EXPECT_EQ(toggle.problem(), Problem::ofCall("IAudioEndpointVolume::GetMute", machine.endpoint.id(), E_UNEXPECTED));
    EXPECT_TRUE(simulation().machine().endpoints.front().volume->muted);
}

TEST_F(ChangeMute, ReportsARefusal)
{
    OneEndpoint machine;
    machine.endpoint.endpoint().volume->refused = {"SetMute"};
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());

    const Result<Volume> result = changeMute(reading, MuteChange::toggle, context);

    EXPECT_EQ(result.problem(), Problem::ofCall("IAudioEndpointVolume::SetMute", machine.endpoint.id(), E_NOTIMPL));
}

TEST_F(ChangeMute, SaysThatAnEndpointHasNoVolume)
{
    OneEndpoint machine;
    machine.endpoint.withoutVolume();
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());

    EXPECT_EQ(
        changeMute(reading, MuteChange::on, context).problem(),
        Problem(Problem::Kind::notSupported, "setMute", machine.endpoint.id(), "the endpoint has no volume control"));
    EXPECT_EQ(changeMute(reading, MuteChange::toggle, context).problem().operation(), "toggleMute");
}
}
