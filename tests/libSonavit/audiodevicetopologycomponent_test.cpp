// From a connector or subunit to the topology that contains it.
#include "tests/libSonavit/supportgraph.h"

#include "tests/libSonavit/supportchannels.h"

using support::GraphTest;
using testing::ElementsAre;

namespace
{
constexpr const char* initializeLabel = "AudioDeviceTopology::initialize(IDeviceTopology* deviceTopology)";
constexpr const char* clearLabel = "AudioDeviceTopology::clear()";
constexpr const char* fromPartLabel = "AudioDeviceTopology::initialize(COMPtr<IPart>::pointer& part)";
constexpr const char* fromComponentLabel =
    "template <class Interface> bool AudioDeviceTopology::initializeHelper(Interface* obj)";
constexpr qor::LOGGER_PRIORITY error = qor::LoggerPriority::LOG_ERROR;

class AudioDeviceTopologyOfComponent : public GraphTest
{
protected:
    /// An object that is initialized already, so that a test sees its content after a failure.
    AudioDeviceTopology initialized()
    {
        const AudioDeviceTopology topology(topologyHandle(speaker.id()));
        EXPECT_TRUE(topology.isInitialized());
        log.clear();
        asked();
        return topology;
    }

    void expectEmpty(const AudioDeviceTopology& topology)
    {
        EXPECT_FALSE(topology.isInitialized());
        EXPECT_EQ("", topology.deviceOwner().toUtf8());
        EXPECT_EQ(0u, topology.connector().size());
        EXPECT_EQ(0u, topology.subunit().size());
        EXPECT_EQ(0, references(speaker.id()));
        EXPECT_EQ(log.texts(), log.texts(error, channels::audioDeviceTopology));
    }
};
}

TEST_F(AudioDeviceTopologyOfComponent, ReplacesTheSnapshotByThatOfTheConnectorsTopology)
{
    start();
    AudioDeviceTopology topology = initialized();
    const COMPtr<IConnector>::pointer connector = connectorHandle(jack);

    const bool result = topology.initialize(connector);

    EXPECT_TRUE(result);
    EXPECT_EQ(device, topology.deviceOwner().toUtf8());
    EXPECT_EQ(1u, simulation().journal().count("IPart::GetTopologyObject"));
    EXPECT_EQ(1, references(device));
    EXPECT_THAT(log.entered(channels::audioDeviceTopology),
                ElementsAre(fromComponentLabel, clearLabel, fromPartLabel, initializeLabel, clearLabel));
}

TEST_F(AudioDeviceTopologyOfComponent, ReplacesTheSnapshotByThatOfTheSubunitsTopology)
{
    start();
    AudioDeviceTopology topology = initialized();

    const bool result = topology.initialize(subunitHandle(volume));

    EXPECT_TRUE(result);
    EXPECT_EQ(device, topology.deviceOwner().toUtf8());
    EXPECT_THAT(log.entered(channels::audioDeviceTopology),
                ElementsAre(fromComponentLabel, clearLabel, fromPartLabel, initializeLabel, clearLabel));
}

TEST_F(AudioDeviceTopologyOfComponent, HoldsNoReferenceOnTheComponentItCameFromBeyondThatOfItsList)
{
    start();
    AudioDeviceTopology topology = initialized();
    const COMPtr<IConnector>::pointer connector = connectorHandle(jack);
    const COMPtr<ISubunit>::pointer subunit = subunitHandle(volume);

    topology.initialize(connector);
    topology.initialize(subunit);

    EXPECT_EQ(3, references(jack));
    EXPECT_EQ(3, references(volume));
}

TEST_F(AudioDeviceTopologyOfComponent, IsEmptyWithAMessageForANilConnector)
{
    start();
    AudioDeviceTopology topology = initialized();

    const bool result = topology.initialize(COMPtr<IConnector>::pointer());

    EXPECT_FALSE(result);
    EXPECT_THAT(log.texts(), ElementsAre("Cannot use NULL as parameter"));
    EXPECT_THAT(log.entered(), ElementsAre(fromComponentLabel, clearLabel));
    expectEmpty(topology);
}

TEST_F(AudioDeviceTopologyOfComponent, IsEmptyWithAMessageForANilSubunit)
{
    start();
    AudioDeviceTopology topology = initialized();

    const bool result = topology.initialize(COMPtr<ISubunit>::pointer());

    EXPECT_FALSE(result);
    EXPECT_THAT(log.texts(), ElementsAre("Cannot use NULL as parameter"));
    expectEmpty(topology);
}

TEST_F(AudioDeviceTopologyOfComponent, IsEmptyWithAMessageWhenAConnectorIsNoPart)
{
    start();
    AudioDeviceTopology topology = initialized();
    const sim::PlannedFault fault = simulation().faults().fail("IConnector::QueryInterface", E_NOINTERFACE);

    const bool result = topology.initialize(connectorHandle(jack));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_FALSE(result);
    EXPECT_THAT(log.texts(), ElementsAre("No part interface found"));
    EXPECT_THAT(log.entered(), ElementsAre(fromComponentLabel, clearLabel));
    expectEmpty(topology);
}

TEST_F(AudioDeviceTopologyOfComponent, IsEmptyWithAMessageWhenASubunitIsNoPart)
{
    start();
    AudioDeviceTopology topology = initialized();
    const sim::PlannedFault fault = simulation().faults().fail("ISubunit::QueryInterface", E_NOINTERFACE);

    const bool result = topology.initialize(subunitHandle(volume));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_FALSE(result);
    EXPECT_THAT(log.texts(), ElementsAre("No part interface found"));
    expectEmpty(topology);
}

TEST_F(AudioDeviceTopologyOfComponent, IsEmptyWithAMessageWhenAConnectorSucceedsWithoutAPart)
{
    start();
    AudioDeviceTopology topology = initialized();
    const sim::PlannedFault fault = simulation().faults().succeedWithNull("IConnector::QueryInterface");

    const bool result = topology.initialize(connectorHandle(jack));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_FALSE(result);
    EXPECT_THAT(log.texts(), ElementsAre("Cannot use NULL part to get device topology"));
    EXPECT_THAT(log.entered(), ElementsAre(fromComponentLabel, clearLabel, fromPartLabel));
    expectEmpty(topology);
}

TEST_F(AudioDeviceTopologyOfComponent, IsEmptyWithTwoMessagesWhenThePartHasNoTopology)
{
    start();
    AudioDeviceTopology topology = initialized();
    const sim::PlannedFault fault = simulation().faults().fail("IPart::GetTopologyObject");

    const bool result = topology.initialize(connectorHandle(jack));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_FALSE(result);
    EXPECT_THAT(log.texts(),
                ElementsAre("GetTopologyObject fails 0x80004005", "Using NULL deviceTopology invalidates this object"));
    EXPECT_THAT(log.entered(), ElementsAre(fromComponentLabel, clearLabel, fromPartLabel, initializeLabel, clearLabel));
    expectEmpty(topology);
}

TEST_F(AudioDeviceTopologyOfComponent, IsEmptyWithTheSecondMessageWhenThePartSucceedsWithoutATopology)
{
    start();
    AudioDeviceTopology topology = initialized();
    const sim::PlannedFault fault = simulation().faults().succeedWithNull("IPart::GetTopologyObject");

    const bool result = topology.initialize(subunitHandle(volume));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_FALSE(result);
    EXPECT_THAT(log.texts(), ElementsAre("Using NULL deviceTopology invalidates this object"));
    expectEmpty(topology);
}
