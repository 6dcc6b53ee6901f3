#include "tests/simulator/eventstest.h"

#include <stdexcept>

// Microsoft's "Default Audio Endpoint Selection Starting in Windows 10": every event that takes an endpoint to or from
// the active state can change the default; GetDefaultAudioEndpoint fails with E_NOTFOUND if no active endpoint is left.
namespace
{
using bench::Held;
using testing::ElementsAre;
using testing::IsEmpty;

class EventsDefaults : public bench::EventsTest
{
protected:
    EventsDefaults() { simulation.deliverAtOnce(true); }

    HRESULT findDefault(EDataFlow flow)
    {
        Held<IMMDevice> found;
        return enumerator->GetDefaultAudioEndpoint(flow, eConsole, found.put());
    }
};

// One call for each role, see openal-soft issue 908 and SoundSwitch issue 57.
TEST_F(EventsDefaults, MoveToAnotherActiveEndpointOncePerRoleAfterTheStateHasChanged)
{
    simulation.events().unplug(speakerId);

    EXPECT_THAT(client.heard(), ElementsAre("state " + speakerId + " 8", "default 0 0 " + earphoneId,
                                            "default 0 1 " + earphoneId, "default 0 2 " + earphoneId));
    EXPECT_EQ(S_OK, findDefault(eRender));
}

TEST_F(EventsDefaults, ReturnToTheNamedEndpointWithIt)
{
    simulation.events().unplug(speakerId);
    const std::size_t before = client.heard().size();

    simulation.events().plug(speakerId);

    const std::vector<std::string> heard = client.heard();
    EXPECT_THAT(std::vector<std::string>(heard.begin() + static_cast<std::ptrdiff_t>(before), heard.end()),
                ElementsAre("state " + speakerId + " 1", "default 0 0 " + speakerId, "default 0 1 " + speakerId,
                            "default 0 2 " + speakerId));
}

// The id is null if no endpoint is left: IMMNotificationClient::OnDefaultDeviceChanged; openal-soft issue 908 saw it
// for capture when a USB headset went.
TEST_F(EventsDefaults, AreNullAndNotFoundWhenNoActiveEndpointIsLeft)
{
    simulation.events().setState(lineInId, sim::stateNotPresent);

    EXPECT_THAT(client.heard(),
                ElementsAre("state " + lineInId + " 4", "default 1 0 null", "default 1 1 null", "default 1 2 null"));
    EXPECT_EQ(E_NOTFOUND, findDefault(eCapture));
    EXPECT_EQ(S_OK, findDefault(eRender));
}

TEST_F(EventsDefaults, MoveWhenTheEndpointIsRemovedAndBackWhenItIsAdded)
{
    simulation.events().remove(lineInId);
    simulation.events().add(lineInId);

    EXPECT_THAT(client.heard(), ElementsAre("removed " + lineInId, "default 1 0 null", "default 1 1 null",
                                            "default 1 2 null", "added " + lineInId, "default 1 0 " + lineInId,
                                            "default 1 1 " + lineInId, "default 1 2 " + lineInId));
}

TEST_F(EventsDefaults, StayWhileAnotherEndpointComesOrGoes)
{
    simulation.events().unplug(earphoneId);
    simulation.events().plug(earphoneId);

    EXPECT_THAT(client.heard(), ElementsAre("state " + earphoneId + " 8", "state " + earphoneId + " 1"));
}

TEST_F(EventsDefaults, AreNotAnnouncedIfTheChosenEndpointIsTheDefaultAlready)
{
    simulation.events().setDefault(speakerId, eConsole);

    EXPECT_THAT(client.heard(), IsEmpty());
}

TEST_F(EventsDefaults, WaitForAChosenEndpointThatIsNotActiveYet)
{
    simulation.events().setDefault(microphoneId, eCommunications);
    EXPECT_THAT(client.heard(), IsEmpty());

    simulation.events().plug(microphoneId);

    EXPECT_THAT(client.heard(), ElementsAre("state " + microphoneId + " 1", "default 1 2 " + microphoneId));
}

TEST_F(EventsDefaults, MoveWithANewEndpointThatIsNamed)
{
    sim::Endpoint fresh = *simulation.machine().endpoint(earphoneId);
    fresh.id = "{0.0.0.00000000}.{fresh}";
    fresh.topology.reset();
    fresh.defaultFor = {eMultimedia};
    simulation.events().clearDefault(eRender, eMultimedia);

    simulation.events().add(fresh);

    EXPECT_THAT(client.heard(), ElementsAre("default 0 1 null", "added " + fresh.id, "default 0 1 " + fresh.id));
}

TEST_F(EventsDefaults, StayWhenAnEventIsRefused)
{
    EXPECT_THROW(simulation.events().unplug("{unknown}"), std::invalid_argument);

    EXPECT_THAT(client.heard(), IsEmpty());
}
}
