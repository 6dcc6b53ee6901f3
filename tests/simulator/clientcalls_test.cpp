#include "tests/simulator/eventstest.h"

#include "simulator/machine/propertykeys.h"

#include <stdexcept>

namespace
{
using bench::Held;
using testing::ElementsAre;
using testing::IsEmpty;

const GUID context = {0x4D, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0}};
const std::string contextText = "{0000004D-0000-0000-0000-000000000000}";
const std::string noContextText = "{00000000-0000-0000-0000-000000000000}";

/// A registered client, notified before the operation that caused the change returns.
class JournalOfClients : public bench::EventsTest
{
protected:
    JournalOfClients()
    {
        simulation.deliverAtOnce(true);
        simulation.journal().clear();
    }

    std::vector<std::string> linesOf(const std::string& operation)
    {
        return simulation.journal().of(operation).lines();
    }
};

TEST_F(JournalOfClients, ShowsIdsAndStatesOfEndpoints)
{
    simulation.events().add(earphoneId);
    simulation.events().remove(earphoneId);
    simulation.events().setState(microphoneId, sim::stateDisabled);

    EXPECT_THAT(
        linesOf("IMMNotificationClient::*"),
        ElementsAre("IMMNotificationClient::OnDeviceAdded(" + earphoneId + ") on " + earphoneId + " -> 0x00000000",
                    "IMMNotificationClient::OnDeviceRemoved(" + earphoneId + ") on " + earphoneId + " -> 0x00000000",
                    "IMMNotificationClient::OnDeviceStateChanged(" + microphoneId + ", 2) on " + microphoneId +
                        " -> 0x00000000"));
}

TEST_F(JournalOfClients, ShowsFlowRoleAndIdOfADefault)
{
    simulation.events().setDefault(earphoneId, eMultimedia);
    simulation.events().clearDefault(eRender, eCommunications);

    EXPECT_THAT(linesOf("IMMNotificationClient::*"),
                ElementsAre("IMMNotificationClient::OnDefaultDeviceChanged(eRender, eMultimedia, " + earphoneId +
                                ") on " + earphoneId + " -> 0x00000000",
                            "IMMNotificationClient::OnDefaultDeviceChanged(eRender, eCommunications, null) -> "
                            "0x00000000"));
}

TEST_F(JournalOfClients, ShowsIdAndKeyOfAProperty)
{
    simulation.events().setProperty(speakerId, sim::keys::speakerConfig, sim::PropertyValue::ofNumber(4));
    simulation.events().announceProperty(speakerId, {context, 12});

    EXPECT_THAT(linesOf("IMMNotificationClient::*"),
                ElementsAre("IMMNotificationClient::OnPropertyValueChanged(" + speakerId + ", speakerConfig) on " +
                                speakerId + " -> 0x00000000",
                            "IMMNotificationClient::OnPropertyValueChanged(" + speakerId + ", " + contextText +
                                "/12) on " + speakerId + " -> 0x00000000"));
}

TEST_F(JournalOfClients, ShowsTheContextOfAVolumeChange)
{
    bench::VolumeListener listener;
    const Held<IAudioEndpointVolume> control = volume(speakerId);
    ASSERT_EQ(S_OK, control->RegisterControlChangeNotify(&listener));

    EXPECT_EQ(S_OK, control->SetMute(TRUE, &context));
    EXPECT_EQ(S_OK, control->SetMute(FALSE, nullptr)); // the structure has no place for a null context
    EXPECT_EQ(S_OK, control->UnregisterControlChangeNotify(&listener));

    const std::string operation = "IAudioEndpointVolumeCallback::OnNotify";
    EXPECT_THAT(linesOf(operation),
                ElementsAre(operation + "(" + contextText + ") on " + speakerId + " -> 0x00000000",
                            operation + "(" + noContextText + ") on " + speakerId + " -> 0x00000000"));
}

TEST_F(JournalOfClients, ShowsTheContextOfAControlChange)
{
    bench::ControlListener listener;
    const Held<IPart> node = part(muteId);
    const Held<IAudioMute> mute(simulation.mute(muteId));
    ASSERT_EQ(S_OK, node->RegisterControlChangeCallback(sim::InterfaceTraits<IAudioMute>::iid(), &listener));

    EXPECT_EQ(S_OK, mute->SetMute(TRUE, &context));
    EXPECT_EQ(S_OK, mute->SetMute(FALSE, nullptr));
    EXPECT_EQ(S_OK, node->UnregisterControlChangeCallback(&listener));

    const std::string operation = "IControlChangeNotify::OnNotify";
    EXPECT_THAT(linesOf(operation), ElementsAre(operation + "(" + contextText + ") on " + muteId + " -> 0x00000000",
                                                operation + "(null) on " + muteId + " -> 0x00000000"));
}

TEST_F(JournalOfClients, ShowsRegistrations)
{
    bench::ControlListener controlListener;
    bench::VolumeListener volumeListener;
    const Held<IPart> node = part(muteId);
    const Held<IAudioEndpointVolume> control = volume(speakerId);

    control->RegisterControlChangeNotify(&volumeListener);
    control->UnregisterControlChangeNotify(&volumeListener);
    control->UnregisterControlChangeNotify(nullptr);
    node->RegisterControlChangeCallback(sim::InterfaceTraits<IAudioMute>::iid(), &controlListener);
    node->UnregisterControlChangeCallback(&controlListener);
    enumerator->RegisterEndpointNotificationCallback(nullptr);

    EXPECT_THAT(simulation.journal().entries().calls(),
                ElementsAre("IAudioEndpointVolume::RegisterControlChangeNotify(object)",
                            "IAudioEndpointVolume::UnregisterControlChangeNotify(object)",
                            "IAudioEndpointVolume::UnregisterControlChangeNotify(null)",
                            "IPart::RegisterControlChangeCallback(IAudioMute, object)",
                            "IPart::UnregisterControlChangeCallback(object)",
                            "IMMDeviceEnumerator::RegisterEndpointNotificationCallback(null)"));
}

TEST_F(JournalOfClients, LeavesACallOpenThatAClientsExceptionHasEnded)
{
    struct Throwing : bench::ClientListener
    {
        HRESULT STDMETHODCALLTYPE OnDeviceAdded(LPCWSTR) override { throw std::runtime_error("client"); }
    } throwing;
    ASSERT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&throwing));

    EXPECT_THROW(simulation.events().add(speakerId), std::runtime_error);

    const sim::JournalEntries calls = simulation.journal().of("IMMNotificationClient::OnDeviceAdded");
    ASSERT_EQ(2u, calls.size());
    EXPECT_EQ(sim::CallEnd::returned, calls[0].end);
    EXPECT_EQ(sim::CallEnd::pending, calls[1].end);
    EXPECT_EQ("IMMNotificationClient::OnDeviceAdded(" + speakerId + ") on " + speakerId + " -> pending",
              calls[1].line());
    EXPECT_THAT(calls.failed(), IsEmpty());
    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&throwing));
    EXPECT_EQ(1u, throwing.references);
}

TEST_F(JournalOfClients, IsEmptyWhileNothingIsRecordedThoughClientsAreCalled)
{
    simulation.journal().record(false);

    simulation.events().add(speakerId);

    EXPECT_EQ(0u, simulation.journal().size());
    EXPECT_THAT(client.heard(), ElementsAre("added " + speakerId));
}
}
