#include "platform/propertykeys.h"
#include "tests/client/reading/readingtest.h"

namespace
{
namespace keys = platform::propertykeys;
using sonavit::EndpointField;
using sonavit::Guid;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr HRESULT invalidData = static_cast<HRESULT>(0x8007000D);

const Guid speakerType = *Guid::parse("{DFF21CE1-F70F-11D0-B917-00A0C9223196}");
const Guid headphonesType = *Guid::parse("{DFF21CE2-F70F-11D0-B917-00A0C9223196}");

/// One speaker with jacks that each test arranges.
class ReadingJacks : public ReadingTest
{
protected:
    ReadingJacks() : m_speaker(m_builder.card("Card").speaker())
    {
        m_speaker.property(keys::formFactor, sim::PropertyValue::ofNumber(Speakers));
        m_speaker.property(keys::jackSubType, sim::PropertyValue::ofText(headphonesType.text()));
    }

    void setJacks(const std::vector<sim::Jack>& jacks) { connector().jacks = jacks; }

    sim::Connector& connector()
    {
        const sim::ChangeablePartPlace place = m_builder.machine().part(m_speaker.jackId());
        return *place.connector;
    }

    reading::EndpointReading readSpeaker()
    {
        start(m_builder.build());
        return read(m_speaker.id());
    }

    sim::EndpointBuilder& speaker() { return m_speaker; }
    sim::MachineBuilder& builder() { return m_builder; }

    static constexpr std::uint32_t Speakers = 1;

private:
    sim::MachineBuilder m_builder;
    sim::EndpointBuilder m_speaker;
};

sim::Jack greenJack()
{
    sim::Jack jack;
    jack.channels = 3;
    jack.colour = 0x12CD45;
    jack.connection = eConnType3Point5mm;
    jack.geometricLocation = eGeoLocFront;
    jack.generalLocation = eGenLocSeparate;
    jack.portConnection = ePortConnBothIntegratedAndJack;
    jack.connected = true;
    return jack;
}

TEST_F(ReadingJacks, HaveTheirDescriptionsTypeAndFormFactor)
{
    setJacks({greenJack()});

    const reading::EndpointReading endpoint = readSpeaker();

    ASSERT_EQ(1u, endpoint.content.jacks.size());
    const sonavit::Jack& jack = endpoint.content.jacks[0];
    EXPECT_EQ(speakerType, jack.type) << "that of the connector, not that of the property";
    EXPECT_EQ(sonavit::FormFactor::speakers, jack.formFactor);
    EXPECT_EQ(3u, jack.channels);
    EXPECT_EQ((sonavit::Colour{0x12, 0xCD, 0x45}), jack.colour);
    EXPECT_EQ(sonavit::JackPlace::separate, jack.place);
    EXPECT_EQ(sonavit::JackGeometry::front, jack.geometry);
    EXPECT_EQ(sonavit::JackConnection::miniJack, jack.connection);
    EXPECT_EQ(sonavit::JackPort::both, jack.port);
    EXPECT_EQ(true, jack.isConnected);
    EXPECT_THAT(endpoint.content.problems, IsEmpty());
}

TEST_F(ReadingJacks, CanBeSeveralOfOneConnector)
{
    sim::Jack black = greenJack();
    black.colour = 0;
    black.connected = false;
    setJacks({greenJack(), black, greenJack()});

    const reading::EndpointReading endpoint = readSpeaker();

    ASSERT_EQ(3u, endpoint.content.jacks.size());
    EXPECT_EQ(false, endpoint.content.jacks[1].isConnected);
    EXPECT_EQ(speakerType, endpoint.content.jacks[1].type);
    EXPECT_EQ(sonavit::FormFactor::speakers, endpoint.content.jacks[2].formFactor);
}

TEST_F(ReadingJacks, WithoutDescriptionHaveTheirTypeAlone)
{
    setJacks({});

    const reading::EndpointReading endpoint = readSpeaker();

    ASSERT_EQ(1u, endpoint.content.jacks.size());
    EXPECT_EQ(speakerType, endpoint.content.jacks[0].type);
    EXPECT_FALSE(endpoint.content.jacks[0].colour);
    EXPECT_THAT(endpoint.content.problems, IsEmpty());
}

TEST_F(ReadingJacks, ThatAreNotJoinedAreThoseThatThePropertiesName)
{
    speaker().unjoined();

    const reading::EndpointReading endpoint = readSpeaker();

    ASSERT_EQ(1u, endpoint.content.jacks.size());
    EXPECT_EQ(headphonesType, endpoint.content.jacks[0].type);
    EXPECT_EQ(sonavit::FormFactor::speakers, endpoint.content.jacks[0].formFactor);
    EXPECT_FALSE(endpoint.adapter);
    EXPECT_THAT(endpoint.content.problems, IsEmpty());
}

TEST_F(ReadingJacks, OfAnEndpointThatIsNotPresentAreThoseThatThePropertiesName)
{
    setJacks({greenJack()});
    speaker().notPresent();

    const reading::EndpointReading endpoint = readSpeaker();

    ASSERT_EQ(1u, endpoint.content.jacks.size());
    EXPECT_EQ(headphonesType, endpoint.content.jacks[0].type);
    EXPECT_FALSE(endpoint.content.jacks[0].colour);
    EXPECT_EQ(0u, simulation().journal().of("IMMDevice::Activate").size());
    EXPECT_THAT(endpoint.content.problems, IsEmpty());
}

TEST_F(ReadingJacks, AreNoneIfNothingIsKnown)
{
    speaker().withoutTopology();
    speaker().withoutProperty(keys::formFactor);
    speaker().withoutProperty(keys::jackSubType);

    const reading::EndpointReading endpoint = readSpeaker();

    EXPECT_THAT(endpoint.content.jacks, IsEmpty());
    EXPECT_THAT(endpoint.content.problems, IsEmpty());
}

TEST_F(ReadingJacks, OfATopologyWithoutConnectorsAreNoProblem)
{
    speaker().endpoint().topology->connectors.clear();
    builder().machine().joins.clear();

    const reading::EndpointReading endpoint = readSpeaker();

    EXPECT_EQ(1u, endpoint.content.jacks.size());
    EXPECT_THAT(endpoint.content.problems, IsEmpty());
}

TEST_F(ReadingJacks, StayWhenThePropertiesAreReadAgain)
{
    setJacks({greenJack(), greenJack()});
    reading::EndpointReading endpoint = readSpeaker();
    const std::string id = speaker().id();
    simulation().change(
        [&](sim::Machine& machine)
        { setProperty(machine.endpoint(id)->properties, keys::formFactor, sim::PropertyValue::ofNumber(3)); });

    reading::readProperties(endpoint);

    ASSERT_EQ(2u, endpoint.content.jacks.size());
    EXPECT_TRUE(endpoint.content.jacks[0].colour);
    EXPECT_EQ(sonavit::FormFactor::headphones, endpoint.content.jacks[1].formFactor);
}

TEST_F(ReadingJacks, GiveTheAdapterThatTheyAreOn)
{
    const reading::EndpointReading endpoint = readSpeaker();

    EXPECT_EQ(builder().machine().adapters.at(0).id, endpoint.adapter);
}

TEST_F(ReadingJacks, ThatCannotBeReadAreProblems)
{
    setJacks({greenJack(), greenJack()});
    static_cast<void>(readSpeaker());
    simulation().faults().fail("IKsJackDescription::GetJackDescription", E_ABORT).with("0");
    simulation().faults().fail("IPart::GetSubType", E_FAIL);

    const reading::EndpointReading endpoint = read(speaker().id());

    ASSERT_EQ(1u, endpoint.content.jacks.size());
    EXPECT_TRUE(endpoint.content.jacks[0].colour);
    EXPECT_EQ(headphonesType, endpoint.content.jacks[0].type) << "that of the property is left";
    EXPECT_THAT(problemsOf(endpoint, EndpointField::jacks),
                ElementsAre(IsFailureOf("IPart::GetSubType", E_FAIL),
                            IsFailureOf("IKsJackDescription::GetJackDescription(0)", E_ABORT)));
}

TEST_F(ReadingJacks, AreNotBelievedToBeHundreds)
{
    setJacks(std::vector<sim::Jack>(300, greenJack()));

    const reading::EndpointReading endpoint = readSpeaker();

    EXPECT_EQ(1u, endpoint.content.jacks.size());
    EXPECT_THAT(problemsOf(endpoint, EndpointField::jacks),
                ElementsAre(IsFailureOf("IKsJackDescription::GetJackCount", invalidData)));
    EXPECT_EQ(0u, simulation().journal().count("IKsJackDescription::GetJackDescription"));
}

TEST_F(ReadingJacks, KeepNumbersWithoutAName)
{
    sim::Jack jack = greenJack();
    jack.geometricLocation = static_cast<EPcxGeoLocation>(99);
    setJacks({jack});
    speaker().property(keys::formFactor, sim::PropertyValue::ofNumber(0xFFFFFFFF));

    const reading::EndpointReading endpoint = readSpeaker();

    ASSERT_EQ(1u, endpoint.content.jacks.size());
    EXPECT_EQ(static_cast<sonavit::JackGeometry>(99), endpoint.content.jacks[0].geometry);
    EXPECT_EQ(static_cast<sonavit::FormFactor>(-1), endpoint.content.jacks[0].formFactor);
}
}
