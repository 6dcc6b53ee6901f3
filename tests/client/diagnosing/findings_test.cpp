#include "client/diagnosing/findings.h"

#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/machine/nodetypes.h"
#include "simulator/machine/propertykeys.h"
#include "tests/support/clienttest.h"

namespace
{
using sonavit::Finding;
using sonavit::capturing::FailedCall;
using sonavit::capturing::Survey;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr HRESULT invalidated = static_cast<HRESULT>(0x88890004);

/// One card with a speaker whose wire has a volume, headphones and a microphone. A test changes what the survey says
/// of it, or adds failures; change() changes the machine itself, so that the snapshot shows it, too.
class DiagnosingFindings : public support::ClientTest
{
protected:
    DiagnosingFindings() : m_builder("bench"), m_card(m_builder.card("Card"))
    {
        m_card.speaker().hardwareVolume({-60.0F, 0.0F, 1.5F, -6.0F});
        m_card.headphones();
        m_card.microphone();
        m_played = m_builder.build();
        m_survey.machine = m_played;
        m_survey.machine.composition = sim::Composition::none;
    }

    sim::Endpoint& speaker() { return m_survey.machine.endpoints.at(0); }
    sim::Endpoint& headphones() { return m_survey.machine.endpoints.at(1); }
    sim::Adapter& adapter() { return m_survey.machine.adapters.at(0); }
    sim::Machine& machine() { return m_survey.machine; }
    sim::Subunit& volumeNode() { return adapter().topology.value().subunits.at(0); }

    void fails(const std::string& operation, const std::string& object, std::vector<std::string> arguments,
               HRESULT code)
    {
        m_survey.failures.push_back({operation, object, std::move(arguments), FailedCall::Outcome::code, code});
    }

    std::vector<Finding> find()
    {
        play(m_played);
        sonavit::System system(options());
        std::vector<Finding> findings;
        for (const sonavit::diagnosing::Entry& entry : sonavit::diagnosing::findingsOf(m_survey, system.snapshot()))
            findings.push_back(entry.finding);
        return findings;
    }

    std::vector<std::string> rules()
    {
        std::vector<std::string> names;
        for (const Finding& finding : find())
            names.push_back(finding.rule);
        return names;
    }

    template<class Change>
    void change(const Change& change)
    {
        change(m_played);
        change(m_survey.machine);
    }

    Survey m_survey;

private:
    sim::MachineBuilder m_builder;
    sim::CardBuilder m_card;
    sim::Machine m_played;
};

TEST_F(DiagnosingFindings, AreNoneOnASoundMachine)
{
    EXPECT_THAT(find(), IsEmpty());
}

TEST_F(DiagnosingFindings, NameCallCodeEffectAndCause)
{
    fails("IMMDevice::OpenPropertyStore", speaker().id, {"0"}, E_ACCESSDENIED);

    const std::vector<Finding> findings = find();

    ASSERT_EQ(1u, findings.size());
    EXPECT_EQ(Finding::Kind::failure, findings[0].kind);
    EXPECT_EQ("properties-unreadable", findings[0].rule);
    EXPECT_EQ(sonavit::EndpointId(speaker().id), findings[0].endpoint);
    EXPECT_EQ("Speakers (Card)", findings[0].subject);
    EXPECT_EQ("Its properties cannot be read: IMMDevice::OpenPropertyStore(0) returns 0x80070005 (E_ACCESSDENIED), "
              "access denied.",
              findings[0].sentence);
    EXPECT_THAT(findings[0].effect, HasSubstr("no name"));
    EXPECT_THAT(findings[0].cause, HasSubstr("administrator"));
    ASSERT_TRUE(findings[0].problem);
    EXPECT_EQ(E_ACCESSDENIED, findings[0].problem->code());
}

TEST_F(DiagnosingFindings, SayWhenACallSucceedsWithoutAResult)
{
    m_survey.failures.push_back(
        {"IMMDevice::OpenPropertyStore", speaker().id, {"0"}, FailedCall::Outcome::nullSuccess, E_POINTER});

    EXPECT_THAT(find(), ElementsAre(Field(&Finding::sentence, HasSubstr("reports success and returns nothing"))));
}

TEST_F(DiagnosingFindings, MissNothingThatAnUnpluggedEndpointNeedNotHave)
{
    headphones().state = sim::stateUnplugged;
    fails("IMMDevice::Activate", headphones().id, {"IAudioEndpointVolume", "23"}, invalidated);
    fails("IMMDevice::Activate", headphones().id, {"IAudioClient", "23"}, invalidated);

    EXPECT_THAT(rules(), IsEmpty());
}

TEST_F(DiagnosingFindings, MissTheVolumeOfAnActiveEndpoint)
{
    fails("IMMDevice::Activate", headphones().id, {"IAudioEndpointVolume", "23"}, invalidated);

    EXPECT_THAT(rules(), ElementsAre("volume-unreadable"));
}

TEST_F(DiagnosingFindings, MissNothingThatANotPresentEndpointNeedNotHave)
{
    speaker().state = sim::stateNotPresent;
    const std::string connector = speaker().topology.value().connectors.at(0).id;
    fails("IMMDevice::Activate", speaker().id, {"IAudioEndpointVolume", "23"}, static_cast<HRESULT>(0x80070002));
    fails("IConnector::GetConnectedTo", connector, {}, E_NOTFOUND);
    fails("IConnector::GetDeviceIdConnectedTo", connector, {}, E_NOTFOUND);

    EXPECT_THAT(rules(), IsEmpty());
}

TEST_F(DiagnosingFindings, MissTheHardwareOfAnActiveEndpoint)
{
    fails("IConnector::GetConnectedTo", speaker().topology.value().connectors.at(0).id, {}, E_NOTFOUND);

    EXPECT_THAT(rules(), ElementsAre("join-unreadable"));
}

/// The connector is joined, but where it leads is not known.
TEST_F(DiagnosingFindings, DoNotCallAConnectorUnjoinedWhosePeerCannotBeRead)
{
    machine().joins.erase(machine().joins.begin());
    const std::string connector = speaker().topology.value().connectors.at(0).id;
    for (const char* const operation : {"IConnector::GetConnectedTo", "IConnector::GetDeviceIdConnectedTo"})
    {
        m_survey.failures.clear();
        EXPECT_THAT(rules(), testing::Contains("connector-leads-nowhere"));
        fails(operation, connector, {}, E_FAIL);

        EXPECT_THAT(rules(), ElementsAre("join-unreadable")) << operation;
    }
}

TEST_F(DiagnosingFindings, AllowTheAdapterOfADeviceThatIsAwayToBeClosed)
{
    for (sim::Endpoint& endpoint : machine().endpoints)
        endpoint.state = sim::stateNotPresent;
    machine().adapters.clear();

    EXPECT_THAT(rules(), IsEmpty());
}

TEST_F(DiagnosingFindings, AreOneForAllEndpointsThatAreNotPresentAndHaveNoNames)
{
    for (sim::Endpoint* const endpoint : {&speaker(), &headphones()})
    {
        endpoint->state = sim::stateNotPresent;
        for (const char* const name : {"deviceDescription", "friendlyName"})
            fails("IPropertyStore::GetValue", endpoint->id, {name}, static_cast<HRESULT>(0xE000020B));
    }

    EXPECT_THAT(find(), ElementsAre(AllOf(
                            Field(&Finding::rule, "not-present-unreadable"), Field(&Finding::endpoint, std::nullopt),
                            Field(&Finding::sentence, HasSubstr("of 2 endpoints that are not present cannot be read")),
                            Field(&Finding::sentence, HasSubstr("So do 3 further calls of this kind.")))));
}

TEST_F(DiagnosingFindings, NameTheOnlyEndpointThatIsNotPresentAndHasNoName)
{
    speaker().state = sim::stateNotPresent;
    fails("IPropertyStore::GetValue", speaker().id, {"friendlyName"}, static_cast<HRESULT>(0xE000020B));

    EXPECT_THAT(find(), ElementsAre(AllOf(Field(&Finding::rule, "not-present-unreadable"),
                                          Field(&Finding::endpoint, sonavit::EndpointId(speaker().id)),
                                          Field(&Finding::sentence, HasSubstr("of 1 endpoint that is not present")))));
}

TEST_F(DiagnosingFindings, MissTheNameOfANotPresentEndpointThatIsRefused)
{
    speaker().state = sim::stateNotPresent;
    fails("IPropertyStore::GetValue", speaker().id, {"friendlyName"}, E_ACCESSDENIED);

    EXPECT_THAT(rules(), ElementsAre("property-unreadable"));
}

TEST_F(DiagnosingFindings, MissNoDescriptionOfAJackThatTheDriverDoesNotHave)
{
    const std::string jack = adapter().topology.value().connectors.at(0).id;
    fails("IKsJackDescription::GetJackCount", jack, {}, static_cast<HRESULT>(0x80070492));
    fails("IPart::Activate", jack, {"IKsJackDescription2", "1"}, E_NOTFOUND);

    EXPECT_THAT(rules(), IsEmpty());
}

TEST_F(DiagnosingFindings, MissADescriptionOfAJackThatFails)
{
    fails("IKsJackDescription::GetJackDescription", adapter().topology.value().connectors.at(0).id, {"0"}, E_FAIL);

    EXPECT_THAT(rules(), ElementsAre("jack-unreadable"));
}

TEST_F(DiagnosingFindings, CountRepeatedCallsOnce)
{
    for (const char* const channel : {"0", "1", "2"})
        fails("IAudioVolumeLevel::GetLevel", volumeNode().id, {channel}, E_FAIL);

    EXPECT_THAT(find(),
                ElementsAre(AllOf(Field(&Finding::rule, "control-unreadable"),
                                  Field(&Finding::sentence, HasSubstr("So do 2 further calls of this kind.")))));
}

TEST_F(DiagnosingFindings, CountASingleRepetition)
{
    for (const char* const channel : {"0", "1"})
        fails("IAudioVolumeLevel::GetLevel", volumeNode().id, {channel}, E_FAIL);

    EXPECT_THAT(find(), ElementsAre(Field(&Finding::sentence, HasSubstr(" So does 1 further call of this kind."))));
}

TEST_F(DiagnosingFindings, BelongToTheEndpointThatReachesAPart)
{
    fails("IPart::EnumPartsIncoming", volumeNode().id + " incoming", {}, E_FAIL);

    EXPECT_THAT(find(), ElementsAre(Field(&Finding::endpoint, sonavit::EndpointId(speaker().id))));
}

TEST_F(DiagnosingFindings, BelongToTheCardWhenSeveralEndpointsReachTheAdapter)
{
    fails("IDeviceTopology::GetConnector", adapter().id, {"9"}, E_NOTFOUND);

    EXPECT_THAT(find(), ElementsAre(AllOf(Field(&Finding::endpoint, std::nullopt), Field(&Finding::subject, "Card"))));
}

TEST_F(DiagnosingFindings, BeginWithThoseOfTheComputer)
{
    fails("IMMDevice::GetState", speaker().id, {}, E_FAIL);
    fails("IMMDeviceEnumerator::EnumAudioEndpoints", "enumerator", {"eAll", "15"}, static_cast<HRESULT>(0x800706BA));

    EXPECT_THAT(find(), ElementsAre(AllOf(Field(&Finding::subject, "this computer"),
                                          Field(&Finding::cause, HasSubstr("Windows Audio"))),
                                    Field(&Finding::rule, "state-unreadable")));
}

TEST_F(DiagnosingFindings, SeeRangesThatCannotBe)
{
    speaker().volume->minimum = 0;
    speaker().volume->maximum = -60;
    headphones().volume->minimum = headphones().volume->maximum;
    volumeNode().volume->channels.at(0).minimum = 6;

    EXPECT_THAT(rules(), ElementsAre("range-inverted", "range-inverted", "range-empty"));
}

TEST_F(DiagnosingFindings, SeeLevelsOutsideTheirRange)
{
    speaker().volume->channels = {-6, 3};
    volumeNode().volume->channels.at(1).level = -61;

    EXPECT_THAT(rules(), ElementsAre("level-outside", "level-outside"));
}

TEST_F(DiagnosingFindings, SeeVolumesWithoutChannels)
{
    headphones().volume->channels.clear();
    volumeNode().volume->channels.clear();

    EXPECT_THAT(rules(), ElementsAre("control-without-channels", "volume-without-channels"));
}

TEST_F(DiagnosingFindings, SeeASelectionThatIsNoInput)
{
    volumeNode().selector = sim::SelectorControl{4711};

    EXPECT_THAT(find(), ElementsAre(AllOf(Field(&Finding::rule, "selection-no-input"),
                                          Field(&Finding::sentence, HasSubstr("4711")))));
}

TEST_F(DiagnosingFindings, AllowASelectorThatHasChosenNothing)
{
    volumeNode().selector = sim::SelectorControl{0};

    EXPECT_THAT(rules(), IsEmpty());
}

TEST_F(DiagnosingFindings, SeeAControlThatIsListedAndNotGiven)
{
    volumeNode().furtherControls.push_back({IID_IAudioMute, "Mute"});
    volumeNode().furtherControls.push_back({sim::nodetypes::tone, "Tone"});

    EXPECT_THAT(rules(), ElementsAre("control-refused"));
}

TEST_F(DiagnosingFindings, SeeNeighboursThatNoDeviceHas)
{
    volumeNode().incoming.push_back("nowhere");

    EXPECT_THAT(rules(), ElementsAre("part-unknown"));
}

TEST_F(DiagnosingFindings, SeeAJoinThatEndsInAnEmptyGraph)
{
    sim::Adapter other;
    other.id = "other";
    machine().adapters.push_back(other);
    machine().joins.at(1).to.clear();
    machine().joins.at(1).toDevice = "other";

    EXPECT_THAT(rules(), ElementsAre("graph-empty"));
}

TEST_F(DiagnosingFindings, SeeAJoinToOneDeviceByIdAndToAnotherByConnector)
{
    sim::Adapter other;
    other.id = "other";
    machine().adapters.push_back(other);
    machine().joins.at(1).toDevice = "other";

    EXPECT_THAT(find(), ElementsAre(AllOf(Field(&Finding::rule, "joined-to-two"),
                                          Field(&Finding::endpoint, sonavit::EndpointId(headphones().id)),
                                          Field(&Finding::sentence, HasSubstr("to \"other\" by its id")))));
}

TEST_F(DiagnosingFindings, SeeAJoinToADeviceThatHasNotThatConnector)
{
    machine().joins.at(1).to.clear();
    machine().joins.at(1).toDevice = adapter().id;

    EXPECT_THAT(rules(), ElementsAre("joined-connector-missing"));
}

TEST_F(DiagnosingFindings, SeeAJoinToADeviceWithoutAnId)
{
    machine().joins.at(1).to.clear();
    machine().joins.at(1).toDevice = "";

    EXPECT_THAT(find(),
                ElementsAre(AllOf(Field(&Finding::rule, "joined-device-unnamed"),
                                  Field(&Finding::sentence, "Its connector is joined to a device that has no id."))));
}

TEST_F(DiagnosingFindings, SeeAGraphWithoutConnectors)
{
    headphones().topology.value().connectors.clear();
    machine().joins.erase(machine().joins.begin() + 1);

    EXPECT_THAT(find(), ElementsAre(AllOf(Field(&Finding::rule, "graph-without-connectors"),
                                          Field(&Finding::endpoint, sonavit::EndpointId(headphones().id)))));
}

TEST_F(DiagnosingFindings, SeeADefaultThatIsNotListed)
{
    speaker().installed = false;
    machine().waveOut.clear();

    EXPECT_THAT(find(), ElementsAre(AllOf(Field(&Finding::rule, "default-not-listed"),
                                          Field(&Finding::subject, "this computer"),
                                          Field(&Finding::sentence, HasSubstr(speaker().id)))));
}

TEST_F(DiagnosingFindings, SeeStepsThatCannotBe)
{
    speaker().volume->step = 0;
    headphones().volume->step = 2 * (headphones().volume->maximum - headphones().volume->minimum);

    EXPECT_THAT(rules(), ElementsAre("step-wrong", "step-wrong"));
}

TEST_F(DiagnosingFindings, SeeAHardwareVolumeThatNoPartImplements)
{
    headphones().volume->hardwareSupport = ENDPOINT_HARDWARE_SUPPORT_VOLUME;
    speaker().volume->hardwareSupport = ENDPOINT_HARDWARE_SUPPORT_VOLUME;

    EXPECT_THAT(find(), ElementsAre(AllOf(Field(&Finding::rule, "hardware-volume-without-control"),
                                          Field(&Finding::endpoint, sonavit::EndpointId(headphones().id)))));
}

TEST_F(DiagnosingFindings, SeeWaveNumbersOfEndpointsThatAreNotListed)
{
    machine().waveIn.push_back({"{0.0.1.00000000}.{00000000-0000-4000-8000-000000000000}", 0, 0});

    EXPECT_THAT(rules(), ElementsAre("wave-id-of-no-endpoint"));
}

TEST_F(DiagnosingFindings, SeeAnOrdinaryAccount)
{
    machine().account = sim::Account::ordinary;

    EXPECT_THAT(rules(), ElementsAre("ordinary-account"));
}

TEST_F(DiagnosingFindings, SeeTwoActiveEndpointsWithOneName)
{
    change(
        [](sim::Machine& changed)
        {
            sim::setProperty(changed.endpoints.at(1).properties, sim::keys::deviceDescription,
                             sim::PropertyValue::ofText("Speakers"));
        });

    EXPECT_THAT(find(),
                ElementsAre(AllOf(Field(&Finding::rule, "endpoints-with-one-name"),
                                  Field(&Finding::sentence, HasSubstr("2 active outputs have the same name")))));
}

TEST_F(DiagnosingFindings, AllowOneNameForAnEndpointThatIsNotActive)
{
    change(
        [](sim::Machine& changed)
        {
            sim::setProperty(changed.endpoints.at(1).properties, sim::keys::deviceDescription,
                             sim::PropertyValue::ofText("Speakers"));
            changed.endpoints.at(1).state = sim::stateNotPresent;
        });

    EXPECT_THAT(rules(), IsEmpty());
}

TEST_F(DiagnosingFindings, SeeAFormThatContradictsTheJack)
{
    change(
        [](sim::Machine& changed)
        {
            sim::setProperty(changed.endpoints.at(0).properties, sim::keys::formFactor,
                             sim::PropertyValue::ofNumber(static_cast<unsigned>(sonavit::FormFactor::microphone)));
        });

    EXPECT_THAT(find(), ElementsAre(AllOf(Field(&Finding::rule, "jack-contradicts-form"),
                                          Field(&Finding::kind, Finding::Kind::oddity))));
}

TEST_F(DiagnosingFindings, AllowAnEndpointOfARemoteComputerToHaveNoCard)
{
    sim::removeProperty(speaker().properties, sim::keys::instancePath);
    sim::setProperty(speaker().properties, sim::keys::formFactor, sim::PropertyValue::ofNumber(0));

    EXPECT_THAT(rules(), IsEmpty());
}
}
