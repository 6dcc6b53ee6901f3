#include "tests/libSonavit/supportgraph.h"

#include "tests/libSonavit/supportchannels.h"

#include <cstdint>

using support::GraphTest;
using support::idsOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr const char* initializeLabel = "AudioDeviceTopology::initialize(IDeviceTopology* deviceTopology)";
constexpr const char* clearLabel = "AudioDeviceTopology::clear()";
constexpr const char* fromPartLabel = "AudioDeviceTopology::initialize(COMPtr<IPart>::pointer& part)";
constexpr const char* fromComponentLabel =
    "template <class Interface> bool AudioDeviceTopology::initializeHelper(Interface* obj)";
constexpr const char* connectorLabel = "AudioDeviceTopology::AudioDeviceTopology(IConnector* connector)";

class AudioDeviceTopologyConstructor : public GraphTest
{
protected:
    /// Expects the card's graph in an object that was initialized from it.
    void expectGraph(const AudioDeviceTopology& topology)
    {
        EXPECT_TRUE(topology.isInitialized());
        EXPECT_EQ(device, topology.deviceOwner().toUtf8());
        EXPECT_THAT(idsOf(topology.connector()), ElementsAre(jack, stream));
        EXPECT_THAT(idsOf(topology.subunit()), ElementsAre(mute, volume));
    }

    static void expectEmpty(const AudioDeviceTopology& topology)
    {
        EXPECT_FALSE(topology.isInitialized());
        EXPECT_EQ(nullptr, topology.topology().get());
        EXPECT_EQ("", topology.deviceOwner().toUtf8());
        EXPECT_EQ(0u, topology.connector().size());
        EXPECT_EQ(0u, topology.subunit().size());
    }
};

using AudioDeviceTopologyCopy = AudioDeviceTopologyConstructor;
}

TEST_F(AudioDeviceTopologyConstructor, MakesAnEmptyObjectWithoutATrace)
{
    start();

    const AudioDeviceTopology topology;

    expectEmpty(topology);
    EXPECT_THAT(log.records(), IsEmpty());
    EXPECT_THAT(asked(), IsEmpty());
}

TEST_F(AudioDeviceTopologyConstructor, TakesASnapshotOfATopologyWithAReferenceOfItsOwn)
{
    start();
    const COMPtr<IDeviceTopology>::pointer handle = topologyHandle(device);
    {
        const AudioDeviceTopology topology(handle);

        EXPECT_EQ(2, references(device));
        EXPECT_EQ(handle.get(), topology.m_topology.get());
        EXPECT_THAT(log.entered(channels::audioDeviceTopology),
                    ElementsAre("AudioDeviceTopology::AudioDeviceTopology(IDeviceTopology* deviceTopology)",
                                initializeLabel, clearLabel));
        expectGraph(topology);
    }
    EXPECT_EQ(1, references(device));
}

TEST_F(AudioDeviceTopologyConstructor, TakesASnapshotOfTheTopologyOfASubunit)
{
    start();

    const AudioDeviceTopology topology(subunitHandle(volume));

    EXPECT_THAT(log.entered(channels::audioDeviceTopology),
                ElementsAre("AudioDeviceTopology::AudioDeviceTopology(ISubunit* subunit)", fromComponentLabel,
                            clearLabel, fromPartLabel, initializeLabel, clearLabel));
    EXPECT_EQ(1, references(device));
    expectGraph(topology);
}

TEST_F(AudioDeviceTopologyConstructor, TakesASnapshotOfTheTopologyOfAConnector)
{
    start();

    const AudioDeviceTopology topology(connectorHandle(jack));

    EXPECT_THAT(log.entered(channels::audioDeviceTopology), ElementsAre(connectorLabel, fromComponentLabel, clearLabel,
                                                                        fromPartLabel, initializeLabel, clearLabel));
    EXPECT_EQ(1, references(device));
    expectGraph(topology);
}

TEST_F(AudioDeviceTopologyConstructor, TakesASnapshotOfTheTopologyOfAComponentUnderTheLabelOfAConnector)
{
    start();
    const AudioComponent<IConnector> jackComponent = component(jack);
    log.clear();

    const AudioDeviceTopology topology(jackComponent);

    EXPECT_THAT(log.entered(channels::audioDeviceTopology), ElementsAre(connectorLabel, fromComponentLabel, clearLabel,
                                                                        fromPartLabel, initializeLabel, clearLabel));
    EXPECT_EQ("AudioComponent::component()", log.entered("libSonavit.audioPart").front());
    expectGraph(topology);
}

TEST_F(AudioDeviceTopologyConstructor, MakesAnEmptyObjectOfANilTopology)
{
    start();

    const AudioDeviceTopology topology((COMPtr<IDeviceTopology>::pointer()));

    expectEmpty(topology);
    EXPECT_THAT(log.texts(qor::LoggerPriority::LOG_ERROR, channels::audioDeviceTopology),
                ElementsAre("Using NULL deviceTopology invalidates this object"));
    EXPECT_EQ(1u, log.texts().size());
}

TEST_F(AudioDeviceTopologyConstructor, MakesAnEmptyObjectOfANilSubunit)
{
    start();

    const AudioDeviceTopology topology((COMPtr<ISubunit>::pointer()));

    expectEmpty(topology);
    EXPECT_THAT(log.texts(qor::LoggerPriority::LOG_ERROR, channels::audioDeviceTopology),
                ElementsAre("Cannot use NULL as parameter"));
    EXPECT_EQ(1u, log.texts().size());
}

TEST_F(AudioDeviceTopologyConstructor, MakesAnEmptyObjectOfANilConnector)
{
    start();

    const AudioDeviceTopology topology((COMPtr<IConnector>::pointer()));

    expectEmpty(topology);
    EXPECT_THAT(log.texts(qor::LoggerPriority::LOG_ERROR, channels::audioDeviceTopology),
                ElementsAre("Cannot use NULL as parameter"));
    EXPECT_THAT(log.entered(channels::audioDeviceTopology),
                ElementsAre(connectorLabel, fromComponentLabel, clearLabel));
}

TEST_F(AudioDeviceTopologyConstructor, MakesAnEmptyObjectOfAnEmptyComponent)
{
    start();

    const AudioDeviceTopology topology(AudioComponent<IConnector>(static_cast<IConnector*>(nullptr)));

    expectEmpty(topology);
    EXPECT_THAT(log.texts(qor::LoggerPriority::LOG_ERROR, channels::audioDeviceTopology),
                ElementsAre("Cannot use NULL as parameter"));
}

TEST_F(AudioDeviceTopologyConstructor, KeepsItsFieldsInTheirOrder)
{
    const AudioDeviceTopology topology;
    const auto place = [](const auto& field) { return reinterpret_cast<std::uintptr_t>(&field); };

    EXPECT_EQ(place(topology), place(topology.m_topology));
    EXPECT_LT(place(topology.m_topology), place(topology.m_deviceOwner));
    EXPECT_LT(place(topology.m_deviceOwner), place(topology.m_connectors));
    EXPECT_LT(place(topology.m_connectors), place(topology.m_subunits));
}

TEST_F(AudioDeviceTopologyCopy, TakesReferencesAndListsOfItsOwnWithoutATrace)
{
    start();
    const AudioDeviceTopology topology(topologyHandle(device));
    log.clear();
    asked();
    {
        const AudioDeviceTopology copy(topology);

        EXPECT_THAT(log.records(), IsEmpty());
        EXPECT_THAT(asked(), IsEmpty());
        EXPECT_EQ(2, references(device));
        EXPECT_EQ(4, references(jack));
        EXPECT_EQ(4, references(volume));
        expectGraph(copy);
    }
    EXPECT_EQ(1, references(device));
    EXPECT_EQ(2, references(jack));
}

TEST_F(AudioDeviceTopologyCopy, ByAssignmentReplacesTheOldSnapshotWithoutATrace)
{
    start();
    const AudioDeviceTopology source(topologyHandle(device));
    AudioDeviceTopology topology(topologyHandle(speaker.id()));
    log.clear();

    AudioDeviceTopology& result = topology = source;

    EXPECT_EQ(&topology, &result);
    EXPECT_THAT(log.records(), IsEmpty());
    EXPECT_EQ(0, references(speaker.id()));
    EXPECT_EQ(0, references(speaker.connectorId()));
    EXPECT_EQ(2, references(device));
    expectGraph(topology);
}

TEST_F(AudioDeviceTopologyCopy, OfItselfTouchesNoReference)
{
    start();
    AudioDeviceTopology topology(topologyHandle(device));
    const AudioDeviceTopology& same = topology;
    simulation().journal().recordReferences(true);
    asked();

    topology = same;

    EXPECT_THAT(asked(), IsEmpty());
    expectGraph(topology);
}

TEST_F(AudioDeviceTopologyCopy, LeavesTheListsOfTheObjectAloneWhenItsAnswersAreChanged)
{
    start();
    const AudioDeviceTopology topology(topologyHandle(device));

    topology.connector().clear();
    topology.subunit().clear();

    expectGraph(topology);
}

TEST_F(AudioDeviceTopologyCopy, HandsOutTheTopologyWithANewReferenceAndWithoutATrace)
{
    start();
    const AudioDeviceTopology topology(topologyHandle(device));
    log.clear();

    const COMPtr<IDeviceTopology>::pointer handle = topology.topology();

    EXPECT_EQ(topology.m_topology.get(), handle.get());
    EXPECT_EQ(2, references(device));
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(AudioDeviceTopologyCopy, KeepsTheSnapshotWhenTheMachineChanges)
{
    start();
    const AudioDeviceTopology topology(topologyHandle(device));
    simulation().change(
        [&](sim::Machine& machine)
        {
            machine.adapters[0].topology->connectors.clear();
            machine.adapters[0].topology->subunits.clear();
            machine.adapters[0].topology->deviceId = "elsewhere";
        });

    expectGraph(topology);
}

TEST_F(AudioDeviceTopologyCopy, ReleasesEverythingAtItsEndWithoutATrace)
{
    start();
    {
        const AudioDeviceTopology topology(topologyHandle(device));
        log.clear();
    }

    EXPECT_EQ(0, simulation().census().references());
    EXPECT_THAT(log.records(), IsEmpty());
}
