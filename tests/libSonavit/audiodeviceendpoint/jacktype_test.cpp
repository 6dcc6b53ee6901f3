#include "tests/libSonavit/audiodeviceendpoint/devicetest.h"

#include "tests/libSonavit/supportchannels.h"

namespace
{
using qor::LoggerPriority;
using testing::ElementsAre;
using testing::IsEmpty;

/// The jack type that a refresh finds.
class AudioDeviceJackType : public devicetest::DeviceTest
{
protected:
    /// Gives the speaker a second connector, joined to a jack of that type.
    void addSecondConnector(const GUID& jackType)
    {
        sim::Topology& topology = *speaker.endpoint().topology;
        sim::Connector second = topology.connectors.front();
        second.id += "2";
        second.localId += 1;
        const std::string jack = card.connector("Second", jackType, Out, Physical_External);
        topology.connectors.push_back(second);
        bench.machine().joins.push_back({second.id, jack, {}, true});
    }

    void expectNoMessages()
    {
        EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), IsEmpty());
        EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), IsEmpty());
    }
};

TEST_F(AudioDeviceJackType, IsThatOfTheFarSide)
{
    kept.directSoundTexts = 1;
    sim::EndpointBuilder digital = card.spdifOut();
    start();

    const AudioDevice device(reference(digital.id()));

    EXPECT_TRUE(device.deviceProperty().subType == sim::nodetypes::spdif);
}

TEST_F(AudioDeviceJackType, ComesFromTheFirstOfTwoConnectors)
{
    kept.directSoundTexts = 1;
    addSecondConnector(sim::nodetypes::headphones);
    start();

    AudioDevice device(reference(speaker.id()));

    qor::Array<AudioComponent<IConnector>> connectors;
    ASSERT_EQ(2u, device.connector(connectors));
    EXPECT_TRUE(device.deviceProperty().subType == sim::nodetypes::speaker);
    EXPECT_EQ(1u, simulation().journal().count("IConnector::GetConnectedTo"));
}

TEST_F(AudioDeviceJackType, IsUnchangedIfTheFirstConnectorLeadsNowhereWhateverTheSecondDoes)
{
    kept.directSoundTexts = 1;
    addSecondConnector(sim::nodetypes::headphones);
    speaker.unjoined();
    start();
    AudioDevice device;
    device.m_properties.subType = sim::nodetypes::line;

    EXPECT_TRUE(device.initialize(reference(speaker.id())));

    EXPECT_TRUE(device.deviceProperty().subType == sim::nodetypes::line);
    EXPECT_THAT(simulation().journal().of("IConnector::GetConnectedTo").failed().size(), 1u);
    expectNoMessages();
}

TEST_F(AudioDeviceJackType, IsUnchangedIfTheFarSideFails)
{
    kept.directSoundTexts = 2;
    start();
    AudioDevice device(reference(speaker.id()));
    sim::PlannedFault fault = simulation().faults().fail("IConnector::GetConnectedTo", E_FAIL);

    EXPECT_TRUE(device.refreshDeviceInformation());

    EXPECT_EQ(1u, fault.fired());
    EXPECT_TRUE(device.deviceProperty().subType == sim::nodetypes::speaker);
    expectNoMessages();
}

TEST_F(AudioDeviceJackType, IsUnchangedWithoutAConnector)
{
    kept.directSoundTexts = 1;
    speaker.endpoint().topology->connectors.clear();
    bench.machine().joins.clear();
    start();
    AudioDevice device;
    device.m_properties.subType = sim::nodetypes::line;

    EXPECT_TRUE(device.initialize(reference(speaker.id())));

    EXPECT_TRUE(device.deviceProperty().subType == sim::nodetypes::line);
    EXPECT_EQ(0u, simulation().journal().count("IConnector::GetConnectedTo"));
    expectNoMessages();
}

TEST_F(AudioDeviceJackType, IsUnchangedIfTheFirstConnectorIsEmpty)
{
    kept.directSoundTexts = 1;
    start();
    sim::PlannedFault fault = simulation().faults().succeedWithNull("IDeviceTopology::GetConnector");
    AudioDevice device;
    device.m_properties.subType = sim::nodetypes::line;

    EXPECT_TRUE(device.initialize(reference(speaker.id())));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_TRUE(device.deviceProperty().subType == sim::nodetypes::line);
    EXPECT_EQ(0u, simulation().journal().count("IConnector::GetConnectedTo"));
    expectNoMessages();
}

TEST_F(AudioDeviceJackType, IsZeroIfGetConnectedToSucceedsWithNull)
{
    kept.directSoundTexts = 2;
    start();
    AudioDevice device(reference(speaker.id()));
    sim::PlannedFault fault = simulation().faults().succeedWithNull("IConnector::GetConnectedTo");

    EXPECT_TRUE(device.refreshDeviceInformation());

    EXPECT_EQ(1u, fault.fired());
    EXPECT_TRUE(device.deviceProperty().subType == GUID());
    expectNoMessages();
}

TEST_F(AudioDeviceJackType, IsNotReadForAnAdapterDevice)
{
    start();

    const AudioDevice device(reference(card.adapter().id));

    EXPECT_TRUE(device.deviceProperty().subType == GUID());
    EXPECT_EQ(0u, simulation().journal().count("IConnector::GetConnectedTo"));
}

TEST_F(AudioDeviceJackType, LeavesNoReferenceOnTheFarSide)
{
    kept.directSoundTexts = 1;
    start();

    const AudioDevice device(reference(speaker.id()));

    EXPECT_EQ(0, references("IConnector " + speaker.jackId()));
    EXPECT_EQ(2, references("IConnector " + speaker.connectorId()));
}
}
