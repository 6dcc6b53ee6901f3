#include "tests/client/reading/readingtest.h"

#include <thread>

namespace
{
using sonavit::EndpointId;
using sonavit::Flow;
using sonavit::Problem;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr HRESULT invalidData = static_cast<HRESULT>(0x8007000D);

std::vector<std::string> idsOf(const reading::Listing& listing)
{
    std::vector<std::string> ids;
    for (const reading::EndpointReading& endpoint : listing.endpoints)
        ids.push_back(endpoint.content.id.text());
    return ids;
}

/// A card with two inputs, and one with two outputs.
class ReadingEnumeration : public ReadingTest
{
protected:
    ReadingEnumeration()
    {
        sim::CardBuilder first = m_builder.card("First");
        m_microphone = first.microphone().id();
        m_speaker = first.speaker().id();
        sim::CardBuilder second = m_builder.usbCard("Second");
        m_headphones = second.headphones().notPresent().id();
        m_lineIn = second.lineIn().id();
    }

    sim::Simulation& run() { return start(m_builder.build()); }

    sim::MachineBuilder m_builder;
    std::string m_microphone;
    std::string m_speaker;
    std::string m_headphones;
    std::string m_lineIn;
};

using ReadingListing = ReadingEnumeration;

TEST_F(ReadingListing, HasOutputsFirstInThePlatformsOrder)
{
    run();

    const reading::Listing listing = reading::listEndpoints(enumerator());

    EXPECT_THAT(idsOf(listing), ElementsAre(m_speaker, m_headphones, m_microphone, m_lineIn));
    EXPECT_EQ(Flow::output, listing.endpoints[1].content.flow);
    EXPECT_EQ(Flow::input, listing.endpoints[2].content.flow);
    EXPECT_NE(nullptr, listing.endpoints[3].device.get());
    EXPECT_THAT(listing.problems, IsEmpty());
}

TEST_F(ReadingListing, ReadsNothingButIds)
{
    sim::Simulation& simulation = run();
    simulation.journal().clear();

    static_cast<void>(reading::listEndpoints(enumerator()));

    EXPECT_EQ(4u, simulation.journal().count("IMMDeviceCollection::Item"));
    EXPECT_EQ(4u, simulation.journal().count("IMMDevice::GetId"));
    EXPECT_EQ(12u, simulation.journal().entries().without("CoTaskMemFree").size());
}

TEST_F(ReadingListing, OfAComputerWithoutAudioIsEmptyWithoutProblems)
{
    start(sim::Machine());

    const reading::Listing listing = reading::listEndpoints(enumerator());

    EXPECT_THAT(listing.endpoints, IsEmpty());
    EXPECT_THAT(listing.problems, IsEmpty());
}

TEST_F(ReadingListing, KeepsOneFlowIfTheOtherCannotBeListed)
{
    run().faults().fail("IMMDeviceEnumerator::EnumAudioEndpoints", E_ABORT).at(1);

    const reading::Listing listing = reading::listEndpoints(enumerator());

    EXPECT_THAT(idsOf(listing), ElementsAre(m_microphone, m_lineIn));
    EXPECT_THAT(listing.problems,
                ElementsAre(IsFailureOf("IMMDeviceEnumerator::EnumAudioEndpoints(eRender)", E_ABORT)));
}

TEST_F(ReadingListing, LeavesOutWhatHasNoIdAndSaysSo)
{
    sim::Simulation& simulation = run();
    simulation.faults().fail("IMMDevice::GetId", E_ABORT).on(m_speaker);
    simulation.faults().succeedWithNull("IMMDevice::GetId").on(m_lineIn);

    const reading::Listing listing = reading::listEndpoints(enumerator());

    EXPECT_THAT(idsOf(listing), ElementsAre(m_headphones, m_microphone));
    EXPECT_THAT(listing.problems,
                ElementsAre(IsFailureOf("IMMDevice::GetId", E_ABORT), IsFailureOf("IMMDevice::GetId", E_POINTER)));
}

/// Nothing could tell the two apart: the platform itself finds devices regardless of case.
TEST_F(ReadingListing, LeavesOutASecondEndpointWithTheSameId)
{
    sim::Machine machine = m_builder.build();
    machine.endpoints.push_back(*machine.endpoint(m_speaker));
    machine.endpoints.back().topology.reset();
    for (char& character : machine.endpoints.back().id)
        character = character >= 'a' && character <= 'f' ? static_cast<char>(character - 'a' + 'A') : character;
    start(machine);

    const reading::Listing listing = reading::listEndpoints(enumerator());

    EXPECT_THAT(idsOf(listing), ElementsAre(m_speaker, m_headphones, m_microphone, m_lineIn));
    EXPECT_THAT(listing.problems, ElementsAre(IsFailureOf("IMMDevice::GetId(duplicate)", invalidData)));
}

TEST_F(ReadingListing, GivesUpAListOfWhichNothingCanBeOpened)
{
    sim::CardBuilder many = m_builder.card("Many");
    for (int index = 0; index < 40; ++index)
        many.speaker("Speakers " + std::to_string(index));
    run().faults().fail("IMMDeviceCollection::Item", E_ABORT);

    const reading::Listing listing = reading::listEndpoints(enumerator());

    EXPECT_THAT(listing.endpoints, IsEmpty());
    EXPECT_EQ(16u + 2u, listing.problems.size());
    EXPECT_THAT(listing.problems.front(), IsFailureOf("IMMDeviceCollection::Item(0)", E_ABORT));
}

using ReadingOpening = ReadingEnumeration;

TEST_F(ReadingOpening, GivesTheEndpointWithItsFlow)
{
    run();

    const sonavit::Result<reading::EndpointReading> input =
        reading::openEndpoint(enumerator(), EndpointId(m_microphone));
    const sonavit::Result<reading::EndpointReading> output =
        reading::openEndpoint(enumerator(), EndpointId(m_headphones));

    ASSERT_TRUE(input);
    ASSERT_TRUE(output);
    EXPECT_EQ(Flow::input, input->content.flow);
    EXPECT_EQ(Flow::output, output->content.flow);
    EXPECT_EQ(m_headphones, output->content.id.text());
}

TEST_F(ReadingOpening, OfWhatIsNotThereSaysSo)
{
    run();
    const std::string adapter = m_builder.machine().adapters.at(0).id;

    for (const std::string& id : {std::string("{0.0.0.00000000}.{00000000-0000-0000-0000-000000000000}"),
                                  std::string("no id"), std::string(), adapter})
    {
        const sonavit::Result<reading::EndpointReading> opened = reading::openEndpoint(enumerator(), EndpointId(id));
        ASSERT_FALSE(opened) << id;
        EXPECT_EQ(Problem::Kind::notThere, opened.problem().kind()) << id;
        EXPECT_EQ(id, opened.problem().object());
    }
}

TEST_F(ReadingOpening, NamesTheCallThatFails)
{
    const auto problem = [&](const std::string& operation)
    {
        simulation().faults().clear();
        simulation().faults().fail(operation, E_ABORT);
        return reading::openEndpoint(enumerator(), EndpointId(m_speaker)).problem();
    };
    run();

    EXPECT_THAT(problem("IMMDeviceEnumerator::GetDevice"), IsFailureOf("IMMDeviceEnumerator::GetDevice", E_ABORT));
    EXPECT_THAT(problem("IMMDevice::QueryInterface"), IsFailureOf("IMMDevice::QueryInterface(IMMEndpoint)", E_ABORT));
    EXPECT_THAT(problem("IMMEndpoint::GetDataFlow"), IsFailureOf("IMMEndpoint::GetDataFlow", E_ABORT));
    simulation().faults().clear();
    simulation().faults().succeedWithNull("IMMDeviceEnumerator::GetDevice");
    EXPECT_THAT(reading::openEndpoint(enumerator(), EndpointId(m_speaker)).problem(),
                IsFailureOf("IMMDeviceEnumerator::GetDevice", E_POINTER));
}

TEST_F(ReadingOpening, OfAnEnumeratorFailsWithoutCom)
{
    play(m_builder.build());
    std::optional<Problem> problem;

    std::thread([&] { problem = reading::createEnumerator().problem(); }).join();

    EXPECT_THAT(*problem, IsFailureOf("CoCreateInstance(MMDeviceEnumerator)", CO_E_NOTINITIALIZED));
}

using ReadingDefaults = ReadingEnumeration;

TEST_F(ReadingDefaults, AreTheIdsByFlowAndRole)
{
    sim::Machine machine = m_builder.build();
    machine.endpoint(m_microphone)->defaultFor = {eConsole, eMultimedia};
    machine.endpoint(m_lineIn)->defaultFor = {eCommunications};
    start(machine);

    const reading::Defaults defaults = reading::readDefaults(enumerator());

    EXPECT_THAT(defaults.ids[0], ElementsAre(EndpointId(m_speaker), EndpointId(m_speaker), EndpointId(m_speaker)));
    EXPECT_THAT(defaults.ids[1], ElementsAre(EndpointId(m_microphone), EndpointId(m_microphone), EndpointId(m_lineIn)));
    EXPECT_THAT(defaults.problems, IsEmpty());
    EXPECT_EQ(6u, simulation().journal().count("IMMDeviceEnumerator::GetDefaultAudioEndpoint"));
}

TEST_F(ReadingDefaults, ThatAreNotThereAreNoProblem)
{
    start(sim::Machine());

    const reading::Defaults defaults = reading::readDefaults(enumerator());

    EXPECT_TRUE(defaults.ids[0][0].isEmpty());
    EXPECT_TRUE(defaults.ids[1][2].isEmpty());
    EXPECT_THAT(defaults.problems, IsEmpty());
}

TEST_F(ReadingDefaults, ThatCannotBeAskedForAreProblems)
{
    run().faults().fail("IMMDeviceEnumerator::GetDefaultAudioEndpoint", E_ABORT).at(5);

    const reading::Defaults defaults = reading::readDefaults(enumerator());

    EXPECT_TRUE(defaults.ids[1][1].isEmpty());
    EXPECT_FALSE(defaults.ids[1][2].isEmpty());
    EXPECT_THAT(
        defaults.problems,
        ElementsAre(IsFailureOf("IMMDeviceEnumerator::GetDefaultAudioEndpoint(eCapture, eMultimedia)", E_ABORT)));
}

/// The id of nothing: it must not be taken for the answer that there is no default.
TEST_F(ReadingDefaults, ThatHaveNoIdAreProblems)
{
    run().faults().lie("IMMDevice::GetId", sim::Lie::ofText(u"")).at(5);

    const reading::Defaults defaults = reading::readDefaults(enumerator());

    EXPECT_TRUE(defaults.ids[1][1].isEmpty());
    EXPECT_FALSE(defaults.ids[1][2].isEmpty());
    EXPECT_THAT(defaults.problems, ElementsAre(IsFailureOf("IMMDevice::GetId(eCapture, eMultimedia)", invalidData)));
}

using ReadingState = ReadingEnumeration;

TEST_F(ReadingState, IsOneOfFour)
{
    run();
    for (const auto& [number, state] :
         std::vector<std::pair<std::uint32_t, sonavit::State>>{{DEVICE_STATE_ACTIVE, sonavit::State::active},
                                                               {DEVICE_STATE_DISABLED, sonavit::State::disabled},
                                                               {DEVICE_STATE_NOTPRESENT, sonavit::State::notPresent},
                                                               {DEVICE_STATE_UNPLUGGED, sonavit::State::unplugged}})
    {
        simulation().change([&, bits = number](sim::Machine& machine) { machine.endpoint(m_speaker)->state = bits; });
        reading::EndpointReading endpoint = open(m_speaker);
        reading::readState(endpoint);
        EXPECT_EQ(state, endpoint.content.state);
        EXPECT_THAT(endpoint.content.problems, IsEmpty());
    }
}

TEST_F(ReadingState, ThatIsNoneOfFourIsAProblem)
{
    run();
    for (const std::uint32_t bits : {0x0U, 0x3U, 0x10U, 0x80000001U})
    {
        simulation().change([&](sim::Machine& machine) { machine.endpoint(m_speaker)->state = bits; });
        const reading::EndpointReading endpoint = read(m_speaker);
        EXPECT_FALSE(endpoint.content.state) << bits;
        EXPECT_FALSE(endpoint.content.volume) << bits;
        EXPECT_TRUE(endpoint.content.description) << bits;
        EXPECT_THAT(problemsOf(endpoint, sonavit::EndpointField::state),
                    ElementsAre(IsFailureOf("IMMDevice::GetState", invalidData)));
    }
}

/// It may be an endpoint that cannot have them, so it is not asked for them.
TEST_F(ReadingState, ThatCannotBeReadIsTheProblemOfVolumeAndJacks)
{
    run();
    simulation().faults().fail("IMMDevice::GetState", E_ACCESSDENIED);

    const sonavit::Endpoint endpoint(read(m_speaker).content);

    EXPECT_FALSE(endpoint.volume());
    for (const sonavit::EndpointField field :
         {sonavit::EndpointField::state, sonavit::EndpointField::volume, sonavit::EndpointField::jacks})
        EXPECT_THAT(endpoint.problemWith(field), testing::Optional(IsFailureOf("IMMDevice::GetState", E_ACCESSDENIED)));
    EXPECT_THAT(endpoint.problems(), testing::SizeIs(1));
}
}
