// What the client layer makes of lists, ids and states that no platform should report.
#include "tests/hostile/client/hostileclienttest.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace
{
using namespace sonavit;
using hostile::honest;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr auto invalidData = static_cast<std::int32_t>(0x8007000D);
constexpr auto nullPointer = static_cast<std::int32_t>(0x80004003);

using ClientListing = hostile::HostileClientTest;

std::vector<std::string> idsOf(const Snapshot& snapshot)
{
    std::vector<std::string> ids;
    for (const Endpoint& endpoint : snapshot.endpoints())
        ids.push_back(endpoint.id().text());
    std::sort(ids.begin(), ids.end());
    return ids;
}

MATCHER_P2(IsProblemWith, operation, code, "")
{
    return arg.operation() == operation && arg.code() == code;
}
}

TEST_F(ClientListing, LeavesEndpointsOutThatHaveNoId)
{
    begin(honest().machine);
    simulation().faults().lie("IMMDevice::GetId", sim::Lie::ofText(u"")).on(honest().speaker);
    simulation().faults().lie("IMMDevice::GetId", sim::Lie::ofText(std::nullopt)).on(honest().earphone);

    const Snapshot snapshot = audio().snapshot();

    EXPECT_THAT(idsOf(snapshot), ElementsAre(honest().microphone));
    EXPECT_THAT(snapshot.problems(), Contains(IsProblemWith("IMMDevice::GetId(empty)", invalidData)));
    EXPECT_THAT(snapshot.problems(), Contains(IsProblemWith("IMMDevice::GetId", nullPointer)));
}

TEST_F(ClientListing, HasOneEndpointOfThoseWithOneId)
{
    begin(honest().machine);
    const std::u16string id(honest().microphone.begin(), honest().microphone.end());
    simulation().faults().lie("IMMDevice::GetId", sim::Lie::ofText(id));

    const Snapshot snapshot = audio().snapshot();

    EXPECT_THAT(idsOf(snapshot), ElementsAre(honest().microphone));
    EXPECT_THAT(snapshot.problems(), Contains(IsProblemWith("IMMDevice::GetId(duplicate)", invalidData)));
}

TEST_F(ClientListing, HasEndpointsWhoseIdsAre64KilobytesLong)
{
    sim::Machine machine = honest().machine;
    const std::string id(0x10000, 'x');
    machine.endpoint(honest().earphone)->id = id;
    begin(machine);

    ASSERT_TRUE(audio().snapshot().endpoint(EndpointId(id)));
    const Result<Volume> volume = audio().setVolume(EndpointId(id), Percent(50));
    simulation().events().setVolume(id, -20.0f);
    ASSERT_TRUE(audio().refresh());

    ASSERT_TRUE(volume);
    EXPECT_EQ(Decibels(-20), audio().endpoint(EndpointId(id))->volume()->master.decibels);
}

TEST_F(ClientListing, ShowsWhatIsNoCharacterAsOneThatStandsForIt)
{
    begin(honest().machine);
    const std::u16string single = {char16_t(0xDC00), u'a', char16_t(0xD800)};
    simulation().faults().lie("IPropertyStore::GetValue", sim::Lie::ofText(single)).on(honest().speaker);

    const std::optional<Endpoint> speaker = audio().endpoint(EndpointId(honest().speaker));

    EXPECT_EQ("\xEF\xBF\xBD"
              "a"
              "\xEF\xBF\xBD",
              speaker.value().description());
}

TEST_F(ClientListing, BelievesNoCountBeyondAllBounds)
{
    begin(honest().machine);
    simulation().faults().lie("IMMDeviceCollection::GetCount", sim::Lie::ofNumber(0xFFFFFFFF));

    const Snapshot snapshot = audio().snapshot();

    EXPECT_THAT(snapshot.cards(), IsEmpty());
    EXPECT_THAT(snapshot.problems(), Contains(IsProblemWith("IMMDeviceCollection::GetCount", invalidData)));
    EXPECT_EQ(0u, simulation().journal().count("IMMDeviceCollection::Item"));
}

TEST_F(ClientListing, HasTheEndpointsThatThereAreIfMoreAreAnnounced)
{
    begin(honest().machine);
    simulation().faults().lie("IMMDeviceCollection::GetCount", sim::Lie::ofNumber(10000));

    const Snapshot snapshot = audio().snapshot();

    EXPECT_THAT(idsOf(snapshot), SizeIs(3));
    EXPECT_THAT(snapshot.problems(), Contains(IsProblemWith("IMMDeviceCollection::Item(2)", E_INVALIDARG)));
    EXPECT_GT(50u, simulation().journal().count("IMMDeviceCollection::Item"));
}

TEST_F(ClientListing, HasNoStateForStatesThatAreNone)
{
    for (const std::uint32_t state : {0u, 5u, 16u, 0xFFFFFFFFu})
    {
        begin(honest().machine);
        simulation().faults().lie("IMMDevice::GetState", sim::Lie::ofNumber(state));

        for (const Endpoint& endpoint : audio().snapshot().endpoints())
        {
            EXPECT_EQ(std::nullopt, endpoint.state());
            EXPECT_THAT(endpoint.problemWith(EndpointField::state).value(),
                        IsProblemWith("IMMDevice::GetState", invalidData));
            EXPECT_EQ(std::nullopt, endpoint.volume());
        }
        EXPECT_THAT(audio().snapshot().endpoints(), SizeIs(3));
        end();
    }
}

TEST_F(ClientListing, HasNoChannelsIfThereAreBeyondAllBounds)
{
    begin(honest().machine);
    simulation().faults().lie("IAudioEndpointVolume::GetChannelCount", sim::Lie::ofNumber(0xFFFFFFFF));

    const Endpoint speaker = audio().endpoint(EndpointId(honest().speaker)).value();

    EXPECT_EQ(std::nullopt, speaker.volume()->channels);
    EXPECT_TRUE(speaker.volume()->master.percent);
    EXPECT_THAT(speaker.problemWith(EndpointField::volume).value(),
                IsProblemWith("IAudioEndpointVolume::GetChannelCount", invalidData));
}

TEST_F(ClientListing, HasNoFormatForBlobsThatAreNone)
{
    begin(honest().machine);
    simulation().faults().lie("IPropertyStore::GetValue", sim::Lie::ofBlobWithoutData(40));

    const Endpoint speaker = audio().endpoint(EndpointId(honest().speaker)).value();

    EXPECT_EQ(std::nullopt, speaker.format());
    EXPECT_THAT(speaker.problemWith(EndpointField::format).value(),
                IsProblemWith("IPropertyStore::GetValue(deviceFormat)", nullPointer));
    EXPECT_EQ(Problem::Kind::notSupported,
              audio().holdFormat(EndpointId(honest().speaker), Format::integer(16, 48000, 2)).problem().kind());
}

TEST_F(ClientListing, TakesAnAdapterForNoEndpoint)
{
    begin(honest().machine);
    const std::shared_ptr<IMMDevice> codec(simulation().device(honest().codec),
                                           [](IMMDevice* device) { device->Release(); });
    simulation().faults().lie("IMMDeviceEnumerator::GetDevice", sim::Lie::ofObject(*codec));
    static_cast<void>(audio().snapshot());

    simulation().events().announceAdded("{0.0.0.00000000}.{new}");
    ASSERT_TRUE(audio().refresh());

    EXPECT_THAT(idsOf(audio().snapshot()), SizeIs(3));
    beHonest();
}
