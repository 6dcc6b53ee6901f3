#include "client/diagnosing/explain.h"

#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/propertykeys.h"
#include "tests/support/clienttest.h"
#include "tests/support/pace.h"
#include "tests/support/randommachine.h"

#include <algorithm>
#include <functional>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace diagnosing = sonavit::diagnosing;
using sonavit::Reason;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAreArray;
using testing::Field;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace
{
/// What the explanation finds, to be compared with what the client layer reports.
struct Explained
{
    std::vector<std::string> controls;
    std::vector<std::string> mutes; ///< the controls that have one
    std::set<std::string> endpoints;
};

Explained explained(const diagnosing::Subject& subject)
{
    Explained result;
    const diagnosing::Wiring wiring(subject.survey);
    if (const sim::Endpoint* const endpoint = subject.surveyed())
    {
        for (const diagnosing::Road::Level& level : diagnosing::roadOf(wiring, *endpoint).levels)
        {
            if (!level.isControl)
                continue;
            result.controls.push_back(wiring.idOf(level.volume));
            if (level.mute != diagnosing::Wiring::none)
                result.mutes.push_back(wiring.idOf(level.volume));
        }
    }
    const diagnosing::Grouping grouping = diagnosing::groupingOf(subject.survey, subject.endpoint());
    for (const sonavit::Endpoint& other : subject.snapshot.endpoints())
    {
        const diagnosing::Grouping others = diagnosing::groupingOf(subject.survey, other);
        if (others.by == grouping.by && others.key == grouping.key)
            result.endpoints.insert(other.id().text());
    }
    return result;
}

Explained reported(const diagnosing::Subject& subject)
{
    Explained result;
    for (const sonavit::Control& control : *subject.controls)
    {
        result.controls.push_back(control.id.text());
        if (control.hasMute)
            result.mutes.push_back(control.id.text());
    }
    for (const sonavit::Endpoint& endpoint : subject.place.card.endpoints())
        result.endpoints.insert(endpoint.id().text());
    return result;
}

/// All of a reason as one text.
std::string textOf(const Reason& reason)
{
    return testing::PrintToString(reason);
}

auto isFact(const std::string& sentence, const std::string& call)
{
    return AllOf(Field(&sonavit::Fact::sentence, sentence), Field(&sonavit::Fact::call, call));
}

class DiagnosingExplain : public support::ClientTest
{
protected:
    using Check = std::function<void(const diagnosing::Subject& subject)>;

    /// Plays the machine, and hands each endpoint over with what explains it.
    void forEachEndpoint(const sim::Machine& machine, const Check& check)
    {
        play(machine);
        sonavit::System system(options());
        const sonavit::Snapshot snapshot = system.snapshot();
        const auto survey = sonavit::capturing::survey(system, "test");
        ASSERT_TRUE(survey);
        for (const sonavit::Card& card : snapshot.cards())
        {
            for (const sonavit::Endpoint& endpoint : card.endpoints())
            {
                const auto controls = system.controls(endpoint.id());
                check(diagnosing::Subject{*survey, snapshot, {card, endpoint}, controls});
            }
        }
    }

    /// The reasons of the endpoint with that description.
    std::vector<Reason> reasonsOf(const sim::Machine& machine, const std::string& description)
    {
        std::vector<Reason> reasons;
        forEachEndpoint(machine,
                        [&](const diagnosing::Subject& subject)
                        {
                            if (reasons.empty() && subject.endpoint().description() == description)
                                reasons = diagnosing::explainEndpoint(subject);
                        });
        EXPECT_EQ(4U, reasons.size()) << description;
        reasons.resize(4);
        return reasons;
    }

    static void expectAgreement(const diagnosing::Subject& subject)
    {
        SCOPED_TRACE(subject.endpoint().title());
        const Explained found = explained(subject);
        const Explained expected = reported(subject);

        EXPECT_THAT(found.controls, ElementsAreArray(expected.controls));
        EXPECT_THAT(found.mutes, ElementsAreArray(expected.mutes));
        EXPECT_EQ(expected.endpoints, found.endpoints);
        for (const Reason& reason : diagnosing::explainEndpoint(subject))
        {
            EXPECT_FALSE(reason.facts.empty()) << reason;
            EXPECT_EQ(0U, reason.conclusion.find("So ")) << reason;
            EXPECT_THAT(textOf(reason), Not(HasSubstr("A second search"))) << reason;
        }
    }
};

class DiagnosingExplainShipped : public DiagnosingExplain, public testing::WithParamInterface<std::string>
{
};

class DiagnosingExplainRandom : public DiagnosingExplain, public testing::WithParamInterface<std::uint32_t>
{
};

/// Without the largest machine where there is time for few cases only.
std::vector<std::string> machinesToExplain()
{
    std::vector<std::string> names = sim::machineNames();
    if (support::isSlow)
        names.erase(std::remove(names.begin(), names.end(), "crowded"), names.end());
    return names;
}
}

TEST_P(DiagnosingExplainShipped, FindsTheCardAndTheControlsThatTheLayerReports)
{
    std::size_t count = 0;

    forEachEndpoint(sim::findMachine(GetParam()),
                    [&](const diagnosing::Subject& subject)
                    {
                        ++count;
                        expectAgreement(subject);
                    });

    EXPECT_EQ(GetParam() == "empty", count == 0);
}

INSTANTIATE_TEST_SUITE_P(Machines, DiagnosingExplainShipped, testing::ValuesIn(machinesToExplain()),
                         [](const auto& tested)
                         {
                             std::string name = tested.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST_P(DiagnosingExplainRandom, FindsTheCardAndTheControlsThatTheLayerReports)
{
    forEachEndpoint(support::randomMachine(GetParam()), expectAgreement);
}

INSTANTIATE_TEST_SUITE_P(Seeds, DiagnosingExplainRandom, testing::Range(1U, 1 + support::cases(50, 10)));

TEST_F(DiagnosingExplain, NamesTheCallOfEachFactAboutTheCard)
{
    const Reason card = reasonsOf(sim::findMachine("desktop"), "Speakers")[0];

    EXPECT_EQ(Reason::Question::card, card.question);
    EXPECT_THAT(card.facts,
                Contains(isFact("5 other endpoints have exactly this path: \"Headphones\", \"Digital Output\", "
                                "\"Microphone\", \"Line In\" and \"Digital Input\".",
                                "IPropertyStore::GetValue(instancePath)")));
    EXPECT_EQ("So it is in the card \"Analog Audio\", with 5 other endpoints.", card.conclusion);
}

TEST_F(DiagnosingExplain, SaysWhyEndpointsOfOneContainerAreTwoCards)
{
    const Reason card = reasonsOf(sim::findMachine("bluetooth"), "Headphones")[0];

    EXPECT_THAT(card.facts,
                Contains(isFact("\"Headset\" and \"Headset\" have the same container, "
                                "{5E2A7C14-0B9D-5F36-8C41-3D6F92A8E705}. A container counts only if neither has an "
                                "instance path, so they are in another card.",
                                "IPropertyStore::GetValue(containerId)")));
}

TEST_F(DiagnosingExplain, SaysWhyPathsThatDifferInCaseAreTwoCards)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Card");
    card.speaker("Upper").property(sim::keys::instancePath, sim::PropertyValue::ofText("{1}.ROOT\\A"));
    card.speaker("Lower").property(sim::keys::instancePath, sim::PropertyValue::ofText("{1}.ROOT\\a"));

    const Reason reason = reasonsOf(builder.build(), "Lower")[0];

    EXPECT_THAT(reason.facts, Contains(isFact("\"Upper\" has the same path but for the case of letters. Paths are "
                                              "compared exactly, so it is in another card.",
                                              "IPropertyStore::GetValue(instancePath)")));
}

TEST_F(DiagnosingExplain, FollowsTheFirstConnectorToTheJack)
{
    const Reason jacks = reasonsOf(sim::findMachine("studio"), "Microphone 1")[1];

    EXPECT_THAT(jacks.facts, Contains(isFact("Its first connector is joined to the connector \"Combo 1\" of the "
                                             "adapter \"Studio Interface\". That is its jack.",
                                             "IConnector::GetConnectedTo")));
    EXPECT_THAT(jacks.facts, Contains(isFact("This jack is of the kind Microphone.", "IPart::GetSubType")));
    EXPECT_EQ("So it has 1 jack: \"Microphone\".", jacks.conclusion);
}

TEST_F(DiagnosingExplain, CountsTheJacksThatAConnectorDescribesFromOne)
{
    sim::MachineBuilder builder;
    const sim::EndpointBuilder speaker = builder.card("Card").speaker("Rear");
    sim::Machine machine = builder.build();
    sim::Jack black;
    black.connection = eConnType3Point5mm;
    sim::Jack green = black;
    green.colour = 0x00FF00;
    green.geometricLocation = eGeoLocFront;
    for (sim::Connector& connector : machine.adapters.at(0).topology->connectors)
    {
        if (connector.id == speaker.jackId())
            connector.jacks = {black, green};
    }

    const Reason jacks = reasonsOf(machine, "Rear")[1];

    EXPECT_THAT(jacks.facts, Contains(isFact("It describes 2 jacks.", "IKsJackDescription::GetJackCount")));
    EXPECT_THAT(jacks.facts, Contains(AllOf(Field(&sonavit::Fact::sentence, StartsWith("Jack 1: ")),
                                            Field(&sonavit::Fact::call, "IKsJackDescription::GetJackDescription(0)"))));
    EXPECT_THAT(jacks.facts, Contains(AllOf(Field(&sonavit::Fact::sentence, StartsWith("Jack 2: ")),
                                            Field(&sonavit::Fact::call, "IKsJackDescription::GetJackDescription(1)"))));
}

TEST_F(DiagnosingExplain, SaysThatPropertiesNameTheJackWithoutHardware)
{
    const std::vector<Reason> reasons = reasonsOf(sim::findMachine("virtual"), "Cable A Input");

    EXPECT_THAT(reasons[1].facts, Contains(isFact("It has no hardware graph: it offers no IDeviceTopology.",
                                                  "IMMDevice::Activate(IDeviceTopology)")));
    EXPECT_THAT(reasons[1].facts, Contains(isFact("Its properties name the kind of the jack: Speaker.",
                                                  "IPropertyStore::GetValue(jackSubType)")));
    EXPECT_EQ("So no hardware control acts on it. The volume of the endpoint itself needs none.",
              reasons[2].conclusion);
}

TEST_F(DiagnosingExplain, SaysWhyOtherLevelsOfTheCardAreNoControls)
{
    const Reason controls = reasonsOf(sim::findMachine("studio"), "Microphone 1")[2];

    EXPECT_THAT(controls.facts, Contains(isFact("Next to \"Combo 1\" is the volume node \"Preamp 1\" with the mute "
                                                "\"Mute 1\": a control.",
                                                "IPart::EnumPartsOutgoing")));
    EXPECT_THAT(controls.facts,
                Contains(isFact("1 more signal path passes a sum, which mixes several sounds. The search does not "
                                "follow that: \"Combo 1\" to \"Line Out 1/2\".",
                                "IDeviceTopology::GetSignalPath")));
    EXPECT_THAT(controls.facts,
                Contains(isFact("1 other level gets the sound of these connectors and passes it on to none of them: "
                                "\"Combo 1 Monitor Level\" (of no endpoint).",
                                "IPart::EnumPartsOutgoing")));
    EXPECT_THAT(controls.facts,
                Contains(Field(&sonavit::Fact::sentence, HasSubstr("\"Preamp 2\" (of Microphone 2) and 6 more."))));
    EXPECT_EQ("So 2 hardware controls act on it: \"Combo 1: Preamp 1\" and \"Microphone 1 Bridge: Trim 1\".",
              controls.conclusion);
}

TEST_F(DiagnosingExplain, FollowsTheWayToTheControlsFromTheEndpointsOwnConnector)
{
    std::vector<std::string> sentences;
    const Reason controls = reasonsOf(sim::findMachine("studio"), "Main Monitors")[2];
    for (const sonavit::Fact& fact : controls.facts)
        sentences.push_back(fact.sentence);
    ASSERT_LT(8U, sentences.size());
    sentences.resize(8);

    const std::vector<std::string> way = {
        "It has one connector. The search for controls begins there.",
        "Its connector is joined to the connector \"Line Out 1/2\" of the adapter \"Studio Interface\".",
        "Next to \"Line Out 1/2\" is the volume node \"Line Out 1/2 Level\" with the mute \"Line Out 1/2 Mute\": a "
        "control.",
        "A signal path connects \"Line Out 1/2\" with \"Main Monitors Bridge\".",
        "Next to \"Main Monitors Bridge\" is the volume node \"Main Playback Level\", without a mute: a control.",
        "\"Main Monitors Bridge\" is joined to the connector \"Main Monitors Bridge\" of the adapter \"Studio "
        "Converter\".",
        "A signal path connects \"Main Monitors Bridge\" with \"Main Monitors Stream\".",
        "No further volume node is next to a connector that the search reaches; \"Main Monitors Bridge\" and \"Main "
        "Monitors Stream\" have none."};
    EXPECT_EQ(way, sentences);
}

TEST_F(DiagnosingExplain, FindsLevelsBetweenNodes)
{
    const Reason controls = reasonsOf(sim::findMachine("studio"), "Microphone 3")[2];

    EXPECT_THAT(controls.facts, Contains(isFact("On the wires between these connectors is the volume node \"Trim 3\", "
                                                "without a mute: a control.",
                                                "IPart::EnumPartsOutgoing")));
}

TEST_F(DiagnosingExplain, SaysThatAVolumeNodeWithoutLevelIsNoControl)
{
    sim::Machine machine = sim::findMachine("desktop");
    for (sim::Adapter& adapter : machine.adapters)
    {
        for (sim::Subunit& subunit : adapter.topology->subunits)
        {
            if (subunit.name == std::string("Rear Green Jack Volume"))
                subunit.volume.reset();
        }
    }

    const Reason controls = reasonsOf(machine, "Speakers")[2];

    EXPECT_THAT(controls.facts, Contains(isFact("Next to \"Rear Green Jack\" is the volume node \"Rear Green Jack "
                                                "Volume\", but it offers no IAudioVolumeLevel: no control.",
                                                "IPart::Activate(IAudioVolumeLevel)")));
    EXPECT_EQ("So no hardware control acts on it. The volume of the endpoint itself needs none.", controls.conclusion);
}

TEST_F(DiagnosingExplain, ReportsFailedCallsOfTheHardwareOnTheWay)
{
    sim::Machine machine = sim::findMachine("desktop");
    sim::FaultRule rule;
    rule.operation = "IDeviceTopology::GetSubunit";
    rule.object = machine.adapters.front().id;
    rule.arguments = {"3"};
    rule.result = E_ACCESSDENIED;
    machine.faults.push_back(rule);
    rule.object = machine.adapters.back().id;
    machine.faults.push_back(rule);

    const Reason controls = reasonsOf(machine, "Speakers")[2];

    EXPECT_EQ(1, std::count_if(controls.facts.begin(), controls.facts.end(),
                               [](const sonavit::Fact& fact) { return fact.code != 0; }));
    EXPECT_THAT(controls.facts,
                Contains(isFact("This call failed: 0x80070005, access denied.", "IDeviceTopology::GetSubunit(3)")));
}

TEST_F(DiagnosingExplain, ReportsThatTheLayerFindsOtherControls)
{
    const Reason controls = [&]
    {
        Reason found;
        forEachEndpoint(
            sim::findMachine("desktop"),
            [&](const diagnosing::Subject& subject)
            {
                const sonavit::Result<std::vector<sonavit::Control>> none(std::vector<sonavit::Control>{});
                if (subject.endpoint().description() == std::string("Speakers"))
                    found = diagnosing::explainControls({subject.survey, subject.snapshot, subject.place, none});
            });
        return found;
    }();

    EXPECT_THAT(textOf(controls), HasSubstr("A second search a moment later has found other controls"));
    EXPECT_EQ("So no hardware control acts on it. The volume of the endpoint itself needs none.", controls.conclusion);
}

TEST_F(DiagnosingExplain, ComparesTheRolesWithWhatWindowsAnswers)
{
    const Reason roles = reasonsOf(sim::findMachine("desktop"), "Speakers")[3];

    EXPECT_THAT(roles.facts,
                Contains(isFact("For communications Windows names \"Headset Earphones (USB Headset)\".",
                                "IMMDeviceEnumerator::GetDefaultAudioEndpoint(eRender, eCommunications)")));
    EXPECT_EQ("So it is the default output for console and multimedia, but not for communications.", roles.conclusion);
}

TEST_F(DiagnosingExplain, SaysThatAnUnpluggedEndpointCannotBeADefault)
{
    const Reason roles = reasonsOf(sim::findMachine("desktop"), "Headphones")[3];

    EXPECT_THAT(roles.facts, Contains(isFact("Its state is unplugged; only an active endpoint can be a default.",
                                             "IMMDevice::GetState")));
    EXPECT_EQ("So it cannot be a default output now.", roles.conclusion);
}

TEST_F(DiagnosingExplain, ReportsAnEndpointThatDoesNotExist)
{
    play("desktop");
    sonavit::System system(options());

    const auto reasons = sonavit::explain(system, sonavit::EndpointId("nowhere"));

    ASSERT_FALSE(reasons);
    EXPECT_EQ(sonavit::Problem::Kind::notThere, reasons.problem().kind());
}

TEST(FactOutput, ShowsNoControlCharactersOfIds)
{
    sonavit::Fact fact;
    fact.sentence = "Its state is active.";
    fact.call = "IMMDevice::GetState";
    fact.object = "a\x1B[31m\nb";
    std::ostringstream out;

    out << fact;

    EXPECT_EQ("Its state is active. [IMMDevice::GetState on a\xEF\xBF\xBD[31m\xEF\xBF\xBD"
              "b]",
              out.str());
}
