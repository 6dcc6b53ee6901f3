// What the object model makes of counts that are not the number of what is there.
#include "libSonavit/endpointdeviceenumerator.h"
#include "libSonavit/volumecontroller.h"
#include "tests/hostile/library/hostilelibrarytest.h"

#include <string>
#include <vector>

namespace
{
class LibraryCounts : public hostile::HostileLibraryTest
{
protected:
    /// Starts the honest machine on which @p operation reports @p count.
    void beginWith(const std::string& operation, std::uint64_t count)
    {
        begin({"",
               {},
               [&](sim::Simulation& machine)
               {
                   machine.faults().lie(operation, sim::Lie::ofNumber(count));
                   return hostile::References();
               },
               {}});
    }

    static qor::Array<AudioDevice> listed()
    {
        qor::Array<AudioDevice> devices;
        const unsigned int count = libSonavit::EndpointDeviceEnumerator().audioDevices(eRender, devices);
        EXPECT_EQ(count, devices.size());
        return devices;
    }

    AudioDeviceTopology codec()
    {
        const COMPtr<IDeviceTopology>::pointer handle(simulation().topology(hostile::honest().codec));
        return AudioDeviceTopology(handle);
    }

    std::size_t errorsThatBegin(const std::string& text)
    {
        std::size_t count = 0;
        for (const std::string& message : log.texts(qor::LoggerPriority::LOG_ERROR))
            count += message.rfind(text, 0) == 0 ? 1 : 0;
        return count;
    }
};
}

TEST_F(LibraryCounts, OfMoreEndpointsThanThereAreKeepPlacesForDevicesThatAreEmpty)
{
    beginWith("IMMDeviceCollection::GetCount", 50);

    const qor::Array<AudioDevice> devices = listed();

    ASSERT_EQ(50u, devices.size());
    EXPECT_TRUE(devices[0].isInitialized());
    EXPECT_TRUE(devices[1].isInitialized());
    for (unsigned int i = 2; i < devices.size(); ++i)
        EXPECT_FALSE(devices[i].isInitialized()) << i;
}

TEST_F(LibraryCounts, OfFewerEndpointsThanThereAreHideTheOthers)
{
    beginWith("IMMDeviceCollection::GetCount", 1);

    const qor::Array<AudioDevice> devices = listed();

    ASSERT_EQ(1u, devices.size());
    EXPECT_EQ(hostile::honest().speaker, devices[0].deviceProperty().deviceId.toUtf8());
}

TEST_F(LibraryCounts, OfTenThousandConnectorsGiveThoseThatThereAreWithAMessageForEachOther)
{
    const std::size_t real = hostile::honest().machine.adapter(hostile::honest().codec)->topology->connectors.size();
    beginWith("IDeviceTopology::GetConnectorCount", 10000);

    const AudioDeviceTopology topology = codec();

    EXPECT_TRUE(topology.isInitialized());
    EXPECT_EQ(real, topology.connector().size());
    EXPECT_EQ(10000 - real, errorsThatBegin("Unable to retrieve connector index "));
}

TEST_F(LibraryCounts, OfTenThousandSubunitsGiveThoseThatThereAre)
{
    const std::size_t real = hostile::honest().machine.adapter(hostile::honest().codec)->topology->subunits.size();
    beginWith("IDeviceTopology::GetSubunitCount", 10000);

    const AudioDeviceTopology topology = codec();

    EXPECT_EQ(real, topology.subunit().size());
    EXPECT_EQ(10000 - real, errorsThatBegin("Unable to retrieve subunit index "));
}

TEST_F(LibraryCounts, OfTenThousandSubunitsThatThereAreGiveThemAll)
{
    hostile::Platform platform;
    platform.change = [](sim::Machine& machine) { hostile::addSubunits(machine, 10000); };
    qor::LogFactory::setPriority(qor::LoggerPriority::LOG_ERROR);
    begin(platform);

    EXPECT_EQ(10003u, codec().subunit().size()); // with volume, mute and selector
}

TEST_F(LibraryCounts, OfNeighboursGiveThoseThatThereAreWithoutAMessage)
{
    beginWith("IPartsList::GetCount", 10000);
    AudioPart jack(simulation().part(hostile::honest().speakerJack)); // adopts the reference
    qor::Array<AudioPart> neighbours;
    log.clear();

    EXPECT_EQ(1u, jack.incomingPartsList(neighbours));

    EXPECT_EQ(1u, neighbours.size());
    EXPECT_TRUE(log.texts().empty());
}

TEST_F(LibraryCounts, OfNoNeighboursGiveNone)
{
    beginWith("IPartsList::GetCount", 0);
    AudioPart jack(simulation().part(hostile::honest().speakerJack));
    qor::Array<AudioPart> neighbours;

    EXPECT_EQ(0u, jack.incomingPartsList(neighbours));

    EXPECT_EQ(0u, neighbours.size());
}

TEST_F(LibraryCounts, OfChannelsAreReportedAsTheyAre)
{
    beginWith("IAudioEndpointVolume::GetChannelCount", 0xFFFFFFFF);
    EndpointVolumeController policy;
    policy.endpointVolume = simulation().endpointVolume(hostile::honest().speaker);
    const VolumeController<EndpointVolumeController> controller(policy);

    EXPECT_EQ(0xFFFFFFFFu, controller.numChannel());
    EXPECT_EQ(0u, controller.volumeLevelPercent(0xFFFFFFFE));
    EXPECT_EQ(0.0f, controller.volumeLevelDecibel(0xFFFFFFFE));
}

TEST_F(LibraryCounts, OfTenThousandChannelsOfAPartAverageSilenceOverThoseThatAreMissing)
{
    beginWith("IAudioVolumeLevel::GetChannelCount", 10000);
    RegularVolumeController policy;
    policy.volumeLevel = simulation().volumeLevel(hostile::honest().volume);
    const VolumeController<RegularVolumeController> controller(policy);

    EXPECT_FLOAT_EQ(-15.0f * 2 / 10000, controller.masterVolumeLevelDecibel());
}
