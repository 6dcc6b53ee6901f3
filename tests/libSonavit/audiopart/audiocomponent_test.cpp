#include "tests/libSonavit/supportgraph.h"

#include "tests/libSonavit/audiopart/supportsubunit.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/libSonavit/supportplace.h"

#include <type_traits>

using support::GraphTest;
using support::idsOf;
using support::placeOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr const char* ownLabel = "AudioComponent::AudioComponent";
constexpr const char* partLabel = "AudioConnector::AudioConnector(const COMPtr<IPart>::pointer& part)";
constexpr const char* initializeLabel = "AudioPart::initialize()";

/// The behaviour of both kinds of component; I is IConnector or ISubunit.
template<class I>
class AudioComponentOf : public GraphTest
{
protected:
    static constexpr bool isConnector = std::is_same_v<I, IConnector>;

    /// A part of this kind, and one of the other kind.
    const std::string& own() const { return isConnector ? jack : volume; }
    const std::string& foreign() const { return isConnector ? volume : jack; }

    /// The component, with one reference that the test owns.
    I* plain()
    {
        if constexpr (isConnector)
            return connector(own());
        else
            return subunit(own());
    }

    static std::string operation(const char* name)
    {
        return (isConnector ? "IConnector::" : "ISubunit::") + std::string(name);
    }
};

template<class I>
class AudioComponentConstructor : public AudioComponentOf<I>
{
};

using Kinds = testing::Types<IConnector, ISubunit>;
TYPED_TEST_SUITE(AudioComponentConstructor, Kinds);

using AudioComponentQueries = AudioComponentOf<IConnector>;
using AudioComponentFields = AudioComponentOf<ISubunit>;
}

TYPED_TEST(AudioComponentConstructor, AdoptsAPlainPointerAndHoldsASecondReferenceAsPart)
{
    this->start();
    {
        const AudioComponent<TypeParam> component(this->plain());

        EXPECT_EQ(2, this->references(this->own()));
        EXPECT_NE(nullptr, component.m_component.get());
        EXPECT_NE(nullptr, component.m_part.part().get());
        EXPECT_EQ(this->own(), component.id().toUtf8());
        EXPECT_THAT(this->log.entered(), ElementsAre(initializeLabel, ownLabel));
        EXPECT_THAT(this->log.texts(), IsEmpty());
    }
    EXPECT_EQ(0, this->references(this->own()));
}

TYPED_TEST(AudioComponentConstructor, TakesReferencesOfItsOwnOnAHandle)
{
    this->start();
    const typename COMPtr<TypeParam>::pointer handle = this->plain();
    {
        const AudioComponent<TypeParam> component(handle);

        EXPECT_EQ(3, this->references(this->own()));
        EXPECT_EQ(handle.get(), component.m_component.get());
        EXPECT_EQ(this->own(), component.id().toUtf8());
        EXPECT_THAT(this->log.entered(), ElementsAre(initializeLabel, ownLabel));
    }
    EXPECT_EQ(1, this->references(this->own()));
}

TYPED_TEST(AudioComponentConstructor, MakesAnEmptyComponentOfNullAndNilWithoutAPlatformCall)
{
    this->start();

    const AudioComponent<TypeParam> ofNull(static_cast<TypeParam*>(nullptr));
    const AudioComponent<TypeParam> ofNil((typename COMPtr<TypeParam>::pointer()));

    EXPECT_EQ(nullptr, ofNull.m_component.get());
    EXPECT_EQ(nullptr, ofNull.m_part.part().get());
    EXPECT_EQ(nullptr, ofNil.m_component.get());
    EXPECT_EQ(nullptr, ofNil.m_part.part().get());
    EXPECT_EQ("", ofNil.id().toUtf8());
    EXPECT_THAT(this->log.entered(channels::audioPart), ElementsAre(ownLabel, ownLabel));
    EXPECT_THAT(this->log.texts(), IsEmpty());
    EXPECT_THAT(this->asked(), IsEmpty());
}

TYPED_TEST(AudioComponentConstructor, AsksAPartForTheComponentUnderTheLabelOfAConnector)
{
    this->start();
    const COMPtr<IPart>::pointer part = this->partHandle(this->own());
    {
        const AudioComponent<TypeParam> component(part);

        EXPECT_EQ(3, this->references(this->own()));
        EXPECT_NE(nullptr, component.m_component.get());
        EXPECT_EQ(part.get(), component.m_part.part().get());
        EXPECT_EQ(this->own(), component.id().toUtf8());
        EXPECT_THAT(
            this->log.entered(),
            ElementsAre(partLabel, "AudioPart::operator=(const COMPtr<IPart>::pointer& part)", initializeLabel));
    }
    EXPECT_EQ(1, this->references(this->own()));
}

TYPED_TEST(AudioComponentConstructor, MakesAnEmptyComponentOfAPartOfTheOtherKindInSilence)
{
    this->start();
    const COMPtr<IPart>::pointer part = this->partHandle(this->foreign());

    const AudioComponent<TypeParam> component(part);

    EXPECT_EQ(nullptr, component.m_component.get());
    EXPECT_EQ(nullptr, component.m_part.part().get());
    EXPECT_EQ("", component.id().toUtf8());
    EXPECT_EQ(1, this->references(this->foreign()));
    EXPECT_THAT(this->log.entered(), ElementsAre(partLabel));
    EXPECT_THAT(this->log.texts(), IsEmpty());
}

TYPED_TEST(AudioComponentConstructor, MakesAnEmptyComponentOfANilPartInSilence)
{
    this->start();

    const AudioComponent<TypeParam> component((COMPtr<IPart>::pointer()));

    EXPECT_EQ(nullptr, component.m_component.get());
    EXPECT_EQ(nullptr, component.m_part.part().get());
    EXPECT_THAT(this->log.entered(channels::audioPart), ElementsAre(partLabel));
    EXPECT_THAT(this->log.texts(), IsEmpty());
    EXPECT_THAT(this->asked(), IsEmpty());
}

TYPED_TEST(AudioComponentConstructor, IsEmptyWhenAPartSucceedsWithoutTheComponent)
{
    this->start();
    const COMPtr<IPart>::pointer part = this->partHandle(this->own());
    const sim::PlannedFault fault = this->simulation().faults().succeedWithNull(this->operation("QueryInterface"));

    const AudioComponent<TypeParam> component(part);

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(nullptr, component.m_component.get());
    EXPECT_EQ(nullptr, component.m_part.part().get());
    EXPECT_THAT(this->log.texts(), IsEmpty());
}

TYPED_TEST(AudioComponentConstructor, KeepsAComponentThatDoesNotKnowItsPart)
{
    this->start();
    const sim::PlannedFault fault = this->simulation().faults().fail(this->operation("QueryInterface"), E_NOINTERFACE);
    {
        const AudioComponent<TypeParam> component(this->plain());

        EXPECT_EQ(1u, fault.fired());
        EXPECT_NE(nullptr, component.m_component.get());
        EXPECT_EQ(nullptr, component.m_part.part().get());
        EXPECT_EQ(1, this->references(this->own()));
        EXPECT_THAT(this->log.texts(), IsEmpty());
    }
    EXPECT_EQ(0, this->references(this->own()));
}

TYPED_TEST(AudioComponentConstructor, CopiesTakeReferencesOfTheirOwnWithoutATrace)
{
    this->start();
    const AudioComponent<TypeParam> component(this->plain());
    this->log.clear();
    this->simulation().journal().clear();
    {
        const AudioComponent<TypeParam> copy(component);

        EXPECT_EQ(4, this->references(this->own()));
        EXPECT_EQ(component.m_component.get(), copy.m_component.get());
        EXPECT_EQ(this->own(), copy.id().toUtf8());
    }
    EXPECT_EQ(2, this->references(this->own()));
    EXPECT_THAT(this->log.records(), IsEmpty());
    EXPECT_THAT(this->asked(), IsEmpty());
}

TYPED_TEST(AudioComponentConstructor, AssignmentReplacesBothReferencesWithoutATrace)
{
    this->start();
    const AudioComponent<TypeParam> source(this->plain());
    AudioComponent<TypeParam> component(this->plain());
    this->log.clear();

    component = source;

    EXPECT_EQ(source.m_component.get(), component.m_component.get());
    EXPECT_EQ(source.m_part.part().get(), component.m_part.part().get());
    EXPECT_EQ(4, this->references(this->own()));
    EXPECT_EQ(1, this->simulation().census().objects.begin()->second);
    EXPECT_THAT(this->log.records(), IsEmpty());
}

TYPED_TEST(AudioComponentConstructor, SelfAssignmentTouchesNoReference)
{
    this->start();
    AudioComponent<TypeParam> component(this->plain());
    const AudioComponent<TypeParam>& same = component;
    this->simulation().journal().recordReferences(true);
    this->asked();

    component = same;

    EXPECT_EQ(this->own(), component.id().toUtf8());
    EXPECT_THAT(this->asked(), IsEmpty());
}

TYPED_TEST(AudioComponentConstructor, HandsOutComponentAndPartWithNewReferencesAndTraces)
{
    this->start();
    const AudioComponent<TypeParam> component(this->plain());
    this->log.clear();

    const typename COMPtr<TypeParam>::pointer handle = component.component();
    const AudioPart part = component.part();

    EXPECT_EQ(component.m_component.get(), handle.get());
    EXPECT_EQ(this->own(), part.globalId().toUtf8());
    EXPECT_EQ(4, this->references(this->own()));
    EXPECT_THAT(this->log.entered(), ElementsAre("AudioComponent::component()", "AudioComponent::part()"));
    EXPECT_THAT(this->log.texts(), IsEmpty());
}

TEST_F(AudioComponentFields, AreInTheirFixedOrder)
{
    const AudioComponent<IConnector> connector(static_cast<IConnector*>(nullptr));
    const AudioComponent<ISubunit> subunit(static_cast<ISubunit*>(nullptr));

    EXPECT_EQ(placeOf(connector), placeOf(connector.m_component));
    EXPECT_LT(placeOf(connector.m_component), placeOf(connector.m_part));
    EXPECT_EQ(placeOf(subunit), placeOf(subunit.m_component));
    EXPECT_LT(placeOf(subunit.m_component), placeOf(subunit.m_part));
}

TEST_F(AudioComponentFields, GoPartFirst)
{
    start();
    const COMPtr<IPart>::pointer other = partHandle(jack);
    support::SubunitOfPart object(other.get(), S_OK);
    ULONG heldWhenThePartWent = 0;
    {
        const AudioComponent<ISubunit> component(object.handle());
        ASSERT_EQ(2, references(jack));
        simulation().faults().run("IConnector::Release", [&] { heldWhenThePartWent = object.references; });
    }
    simulation().faults().clear();

    EXPECT_EQ(2u, heldWhenThePartWent);
    EXPECT_EQ(1u, object.references);
    EXPECT_EQ(1, references(jack));
}

TEST_F(AudioComponentQueries, ForwardIdNameAndSubTypeToThePartWithoutATrace)
{
    start();
    const AudioComponent<IConnector> component(connector(jack));
    log.clear();
    asked();

    EXPECT_EQ(jack, component.id().toUtf8());
    EXPECT_EQ("Speakers", component.name().toUtf8());
    EXPECT_EQ(KSNODETYPE_SPEAKER, component.subType());

    EXPECT_THAT(log.records(), IsEmpty());
    EXPECT_THAT(asked(), IsEmpty());
}

TEST_F(AudioComponentQueries, TakeIdsThatDifferOnlyInCaseForEqual)
{
    sim::Connector loud = bench.machine().adapters[0].topology->connectors[0];
    loud.id = "PART";
    sim::Connector quiet = loud;
    quiet.id = "part";
    bench.machine().adapters[0].topology->connectors.push_back(loud);
    bench.machine().adapters[0].topology->connectors.push_back(quiet);
    start();

    EXPECT_TRUE(component("PART") == component("part"));
    EXPECT_FALSE(component("PART") == component(jack));
}

TEST_F(AudioComponentQueries, TakeAComponentOfASubunitForEqualToAnyOtherEmptyOne)
{
    start();

    const AudioComponent<IConnector> ofSubunit(partHandle(volume));

    EXPECT_TRUE(ofSubunit == AudioComponent<IConnector>(static_cast<IConnector*>(nullptr)));
    EXPECT_FALSE(ofSubunit == component(jack));
}

TEST_F(AudioComponentQueries, WalkToTheNeighboursUnderThePartsLabels)
{
    kept.partsLists = 2;
    start();
    AudioComponent<ISubunit> middle(subunit(volume));
    qor::Array<AudioPart> incoming;
    qor::Array<AudioPart> outgoing;
    log.clear();

    const unsigned int incomingCount = middle.incomingPartsList(incoming);
    const unsigned int outgoingCount = middle.outgoingPartsList(outgoing);

    EXPECT_EQ(1u, incomingCount);
    EXPECT_EQ(1u, outgoingCount);
    EXPECT_THAT(idsOf(incoming), ElementsAre(stream));
    EXPECT_THAT(idsOf(outgoing), ElementsAre(mute));
    EXPECT_THAT(log.entered(), ElementsAre("AudioPart::incomingPartsList", "AudioPart::storePartsList",
                                           "AudioConnector::AudioConnector(const IPart* part)", initializeLabel,
                                           "AudioPart::outgoingPartsList", "AudioPart::storePartsList",
                                           "AudioConnector::AudioConnector(const IPart* part)", initializeLabel));
}

TEST_F(AudioComponentQueries, FailToWalkAsThePartDoes)
{
    start();
    AudioComponent<IConnector> last(connector(jack));
    qor::Array<AudioPart> list;

    const unsigned int count = last.outgoingPartsList(list);

    EXPECT_EQ(0u, count);
    EXPECT_THAT(log.texts(qor::LoggerPriority::LOG_ERROR, channels::audioPart),
                ElementsAre("Unable to enumerate outgoing parts"));
}

TEST_F(AudioComponentQueries, TellTheDeviceThatOwnsTheComponent)
{
    start();

    EXPECT_EQ(device, component(jack).deviceOwner().toUtf8());
    EXPECT_EQ(speaker.id(), component(speaker.connectorId()).deviceOwner().toUtf8());
    EXPECT_EQ(device, AudioComponent<ISubunit>(subunit(volume)).deviceOwner().toUtf8());
}

/// What is read by then is released: a search for lost memory finds nothing.
TEST_F(AudioComponentQueries, LoseNoOwnerIfAReleaseThrows)
{
    start();
    const AudioComponent<IConnector> jackComponent = component(jack);
    sim::Journal& journal = simulation().journal();
    journal.recordReferences(true);
    journal.clear();
    jackComponent.deviceOwner();
    const auto releases = static_cast<std::uint32_t>(journal.count("IConnector::Release"));
    journal.recordReferences(false);
    ASSERT_LT(0u, releases);

    for (std::uint32_t release = 1; release <= releases; ++release)
    {
        const sim::PlannedFault fault = simulation().faults().raise("IConnector::Release").at(release);
        EXPECT_THROW(jackComponent.deviceOwner(), sim::InjectedException) << release;
        EXPECT_EQ(1u, fault.fired());
        simulation().faults().clear();
    }
}

TEST_F(AudioComponentQueries, ReadTheWholeTopologyAtEachQuestionForTheOwner)
{
    start();
    const AudioComponent<IConnector> jackComponent = component(jack);
    log.clear();
    asked();

    jackComponent.deviceOwner();
    jackComponent.deviceOwner();

    EXPECT_EQ("AudioPart::topology()", log.entered().front());
    EXPECT_EQ(2u, simulation().journal().count("IDeviceTopology::GetDeviceId"));
    EXPECT_EQ(4u, simulation().journal().count("IDeviceTopology::GetConnector"));
    EXPECT_EQ(4u, simulation().journal().count("IDeviceTopology::GetSubunit"));
}

TEST_F(AudioComponentQueries, KnowNoOwnerAfterTheMessagesOfBothStepsWhenThereIsNoTopology)
{
    start();
    const AudioComponent<IConnector> jackComponent = component(jack);
    const sim::PlannedFault fault = simulation().faults().fail("IPart::GetTopologyObject");

    const qor::String owner = jackComponent.deviceOwner();

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ("", owner.toUtf8());
    EXPECT_THAT(log.texts(), ElementsAre("Unable to get topology object from part Speakers",
                                         "Using NULL deviceTopology invalidates this object"));
}

TEST_F(AudioComponentQueries, KnowNoOwnerOfAnEmptyComponent)
{
    start();

    const qor::String owner = AudioComponent<IConnector>(static_cast<IConnector*>(nullptr)).deviceOwner();

    EXPECT_EQ("", owner.toUtf8());
    EXPECT_THAT(log.texts(), ElementsAre("Using NULL deviceTopology invalidates this object"));
}
