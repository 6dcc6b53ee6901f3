#include "tests/libSonavit/supportgraph.h"

#include "tests/libSonavit/audiopart/supportsubunit.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/libSonavit/supportplace.h"

using support::GraphTest;
using support::placeOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr const char* plainLabel = "AudioConnector::AudioConnector(const IPart* part)";
constexpr const char* handleLabel = "AudioConnector(const COMPtr<IPart>::pointer& part)";
constexpr const char* initializeLabel = "AudioPart::initialize()";

class AudioPartConstructor : public GraphTest
{
};
class AudioPartDestructor : public GraphTest
{
};
class AudioPartTopology : public GraphTest
{
};
class AudioPartEquality : public GraphTest
{
};
}

TEST_F(AudioPartConstructor, MakesAnEmptyPartWithoutTraceOrPlatformCall)
{
    start();

    const AudioPart part;

    EXPECT_EQ(nullptr, part.part().get());
    EXPECT_EQ(GUID(), part.subType());
    EXPECT_EQ("", part.globalId().toUtf8());
    EXPECT_EQ("", part.name().toUtf8());
    EXPECT_THAT(log.records(), IsEmpty());
    EXPECT_THAT(asked(), IsEmpty());
}

TEST_F(AudioPartConstructor, MakesAnEmptyPartOfANullPointerWithoutAPlatformCall)
{
    start();

    const AudioPart part(nullptr);

    EXPECT_EQ(nullptr, part.part().get());
    EXPECT_EQ("", part.globalId().toUtf8());
    EXPECT_THAT(log.entered(channels::audioPart), ElementsAre(plainLabel, initializeLabel));
    EXPECT_THAT(log.texts(), IsEmpty());
    EXPECT_THAT(asked(), IsEmpty());
}

TEST_F(AudioPartConstructor, MakesAnEmptyPartOfANilHandleWithoutAPlatformCall)
{
    start();

    const AudioPart part((COMPtr<IPart>::pointer()));

    EXPECT_EQ(nullptr, part.part().get());
    EXPECT_THAT(log.entered(channels::audioPart), ElementsAre(handleLabel, initializeLabel));
    EXPECT_THAT(log.texts(), IsEmpty());
    EXPECT_THAT(asked(), IsEmpty());
}

TEST_F(AudioPartConstructor, AdoptsTheReferenceOfAPlainPointer)
{
    start();
    simulation().journal().recordReferences(true);
    {
        const AudioPart part(this->part(jack));

        EXPECT_EQ(1, references(jack));
        EXPECT_EQ(0u, simulation().journal().count("IConnector::AddRef"));
        EXPECT_THAT(log.entered(), ElementsAre(plainLabel, initializeLabel));
        EXPECT_THAT(log.left(), ElementsAre(initializeLabel, plainLabel));
    }
    EXPECT_EQ(0, references(jack));
}

TEST_F(AudioPartConstructor, TakesAReferenceOfItsOwnOnAHandle)
{
    start();
    const COMPtr<IPart>::pointer handle = partHandle(jack);
    {
        const AudioPart part(handle);

        EXPECT_EQ(2, references(jack));
        EXPECT_EQ(handle.get(), part.part().get());
        EXPECT_THAT(log.entered(), ElementsAre(handleLabel, initializeLabel));
    }
    EXPECT_EQ(1, references(jack));
}

TEST_F(AudioPartConstructor, AsksAConnectorForItsPartAndLeavesTheCallersReference)
{
    start();
    const COMPtr<IConnector>::pointer handle = connectorHandle(jack);
    simulation().journal().recordReferences(true);

    const AudioPart part(handle.get());

    EXPECT_THAT(simulation().journal().of("IConnector::QueryInterface").calls(),
                ElementsAre("IConnector::QueryInterface(IPart)"));
    EXPECT_EQ(2, references(jack));
    EXPECT_EQ(jack, part.globalId().toUtf8());
    EXPECT_THAT(log.entered(), ElementsAre(initializeLabel));
}

TEST_F(AudioPartConstructor, AsksASubunitForItsPartAndLeavesTheCallersReference)
{
    start();
    const COMPtr<ISubunit>::pointer handle = subunitHandle(volume);
    simulation().journal().recordReferences(true);

    const AudioPart part(handle.get());

    EXPECT_THAT(simulation().journal().of("ISubunit::QueryInterface").calls(),
                ElementsAre("ISubunit::QueryInterface(IPart)"));
    EXPECT_EQ(2, references(volume));
    EXPECT_EQ(volume, part.globalId().toUtf8());
    EXPECT_THAT(log.entered(), ElementsAre(initializeLabel));
}

TEST_F(AudioPartConstructor, DoesNothingForANullConnectorOrSubunit)
{
    start();

    const AudioPart connectorPart(static_cast<IConnector*>(nullptr));
    const AudioPart subunitPart(static_cast<ISubunit*>(nullptr));

    EXPECT_EQ(nullptr, connectorPart.part().get());
    EXPECT_EQ(nullptr, subunitPart.part().get());
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(AudioPartConstructor, IsEmptyAndSilentWhenAConnectorDoesNotKnowItsPart)
{
    start();
    const COMPtr<IConnector>::pointer handle = connectorHandle(jack);
    const sim::PlannedFault fault = simulation().faults().fail("IConnector::QueryInterface", E_NOINTERFACE);

    const AudioPart part(handle.get());

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(nullptr, part.part().get());
    EXPECT_EQ("", part.globalId().toUtf8());
    EXPECT_EQ(1, references(jack));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(AudioPartConstructor, IsEmptyWhenAConnectorSucceedsWithoutItsPart)
{
    start();
    const COMPtr<IConnector>::pointer handle = connectorHandle(jack);
    const sim::PlannedFault fault = simulation().faults().succeedWithNull("IConnector::QueryInterface");

    const AudioPart part(handle.get());

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(nullptr, part.part().get());
    EXPECT_EQ(1, references(jack));
    EXPECT_THAT(log.entered(), ElementsAre(initializeLabel));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(AudioPartConstructor, IsEmptyWhenAPartComesWithAFailure)
{
    start();
    const COMPtr<IPart>::pointer stray = partHandle(jack);
    support::SubunitOfPart failing(stray.get(), E_NOINTERFACE);
    {
        const AudioPart part(static_cast<ISubunit*>(&failing));

        EXPECT_EQ(nullptr, part.part().get());
        EXPECT_EQ("", part.globalId().toUtf8());
    }
    EXPECT_EQ(1, references(jack));
    EXPECT_THAT(asked(), IsEmpty());
    EXPECT_THAT(log.entered(), ElementsAre(initializeLabel));
}

TEST_F(AudioPartConstructor, CopiesTakeAReferenceAndTheSnapshotWithoutAskingThePlatform)
{
    start();
    const AudioPart part(this->part(jack));
    simulation().journal().clear();
    log.clear();

    const AudioPart copy(part);

    EXPECT_EQ(2, references(jack));
    EXPECT_EQ(part.part().get(), copy.part().get());
    EXPECT_EQ(part.subType(), copy.subType());
    EXPECT_EQ(jack, copy.globalId().toUtf8());
    EXPECT_EQ("Speakers", copy.name().toUtf8());
    EXPECT_THAT(asked(), IsEmpty());
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(AudioPartConstructor, KeepsItsFieldsInTheirOrder)
{
    const AudioPart part;

    EXPECT_EQ(placeOf(part), placeOf(part.m_part));
    EXPECT_LT(placeOf(part.m_part), placeOf(part.m_subType));
    EXPECT_LT(placeOf(part.m_subType), placeOf(part.m_globalId));
    EXPECT_LT(placeOf(part.m_globalId), placeOf(part.m_name));
    EXPECT_LT(placeOf(part.m_name), placeOf(part.m_incomingParts));
    EXPECT_LT(placeOf(part.m_incomingParts), placeOf(part.m_outgoingParts));
}

TEST_F(AudioPartDestructor, ReleasesThePartWithoutATrace)
{
    start();
    {
        const AudioPart part(this->part(jack));
        log.clear();
    }

    EXPECT_EQ(0, references(jack));
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(AudioPartDestructor, LetsPassWhatThePlatformThrows)
{
    start();
    const sim::PlannedFault fault = simulation().faults().raise("IConnector::Release");

    EXPECT_THROW(AudioPart(part(jack)), sim::InjectedException);

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(log.texts(qor::LoggerPriority::LOG_ERROR), ElementsAre("COMPtr destructor caught an exception"));
}

TEST_F(AudioPartTopology, HandsOutTheTopologyWithTheReferenceItCameWith)
{
    start();
    const AudioPart part(this->part(jack));
    log.clear();

    const COMPtr<IDeviceTopology>::pointer topology = part.topology();

    EXPECT_NE(nullptr, topology.get());
    EXPECT_EQ(1, references(device));
    EXPECT_THAT(log.entered(), ElementsAre("AudioPart::topology()"));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(AudioPartTopology, IsNilWithoutAMessageForAnEmptyPart)
{
    start();

    const COMPtr<IDeviceTopology>::pointer topology = AudioPart().topology();

    EXPECT_EQ(nullptr, topology.get());
    EXPECT_THAT(log.entered(channels::audioPart), ElementsAre("AudioPart::topology()"));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(AudioPartTopology, IsNilWithAWarningWhenThePlatformFails)
{
    start();
    const AudioPart part(this->part(jack));
    const sim::PlannedFault fault = simulation().faults().fail("IPart::GetTopologyObject");

    const COMPtr<IDeviceTopology>::pointer topology = part.topology();

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(nullptr, topology.get());
    EXPECT_THAT(log.texts(), ElementsAre("Unable to get topology object from part Speakers"));
    EXPECT_EQ(log.texts(), log.texts(qor::LoggerPriority::LOG_WARNING, channels::audioPart));
}

TEST_F(AudioPartTopology, IsNilWithAWarningWhenThePlatformSucceedsWithoutOne)
{
    start();
    const AudioPart part(this->part(jack));
    const sim::PlannedFault fault = simulation().faults().succeedWithNull("IPart::GetTopologyObject");

    const COMPtr<IDeviceTopology>::pointer topology = part.topology();

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(nullptr, topology.get());
    EXPECT_THAT(log.texts(qor::LoggerPriority::LOG_WARNING, channels::audioPart),
                ElementsAre("Unable to get topology object from part Speakers"));
}

TEST_F(AudioPartEquality, TakesIdsThatDifferOnlyInCaseForEqual)
{
    bench.machine().adapters[0].topology->connectors.push_back({});
    sim::Connector& shouted = bench.machine().adapters[0].topology->connectors.back();
    shouted.id = jack;
    for (char& character : shouted.id)
        character = character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
    const std::string shoutedId = shouted.id;
    start();

    const AudioPart quietPart(part(jack));
    const AudioPart shoutedPart(part(shoutedId));

    EXPECT_NE(quietPart.globalId(), shoutedPart.globalId());
    EXPECT_TRUE(quietPart == shoutedPart);
}

TEST_F(AudioPartEquality, DistinguishesPartsOfDifferentIdsWithAnyNames)
{
    described(stream).name = "Speakers";
    start();

    EXPECT_FALSE(AudioPart(part(jack)) == AudioPart(part(stream)));
}

TEST_F(AudioPartEquality, TakesEmptyPartsAndPartsWithoutAnIdForEqual)
{
    described(jack).reportsId = false;
    start();

    EXPECT_TRUE(AudioPart() == AudioPart());
    EXPECT_TRUE(AudioPart() == AudioPart(part(jack)));
}

TEST_F(AudioPartEquality, AsksThePlatformNothingAndLeavesNoTrace)
{
    start();
    const AudioPart one(part(jack));
    const AudioPart other(part(jack));
    simulation().journal().recordReferences(true);
    simulation().journal().clear();
    log.clear();

    EXPECT_TRUE(one == other);

    EXPECT_THAT(asked(), IsEmpty());
    EXPECT_THAT(log.records(), IsEmpty());
}
