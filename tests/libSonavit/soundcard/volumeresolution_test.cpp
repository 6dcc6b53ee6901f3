// The walk from an endpoint through the card's graph.
#include "tests/foundation/supportallocations.h"
#include "tests/libSonavit/soundcard/supportvolumeresolution.h"
#include "tests/libSonavit/supportchannels.h"

using qor::LoggerPriority;
using support::described;
using support::VolumeResolution;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(VolumeResolution, FindsNothingForAnEndpointWithoutConnectorsAndForgetsWhatTheResultHeld)
{
    graph.endpoint("out", 0);
    discover();
    qor::Array<SoundCard::VolumeController> result;
    result.append(SoundCard::VolumeController());

    EXPECT_EQ(0u, cards[0].volumeController((*cards[0].m_playbackDevices)[0], result));

    EXPECT_EQ(0u, result.size());
}

TEST_F(VolumeResolution, ForgetsThePartsThatTheResultOfASearchByTypeHeld)
{
    graph.endpoint("out");
    discover();
    qor::Array<AudioPart> found;
    found.append(AudioPart());
    found.append(AudioPart());

    EXPECT_FALSE(cards[0].partFromList({}, KSNODETYPE_MUTE, found));

    EXPECT_EQ(0u, found.size());
}

TEST_F(VolumeResolution, FindsNothingForAnEndpointWithoutATopology)
{
    graph.endpoint("out").topology.reset();
    discover();

    EXPECT_THAT(controls(), IsEmpty());
}

TEST_F(VolumeResolution, FindsNothingThroughTheInterfaceWhereTheOtherOverloadFindsControls)
{
    graph.endpoint("out");
    graph.volume("out", 100, -1.0f);
    graph.feed("out/100", "out/1");
    ASSERT_THAT(controls(), ElementsAre("-1 Plug out/1, no mute"));
    log.clear();
    qor::Array<SharedPointer<VolumeControllerInterface>> result;
    result.append(SharedPointer<VolumeControllerInterface>());

    const SoundCardInterface& card = cards[0];
    EXPECT_EQ(0u, card.volumeController((*cards[0].m_playbackDevices)[0], result));

    EXPECT_EQ(1u, result.size());
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(VolumeResolution, RaisesIndexOutOfBoundsForAnEndpointThatTheMapDoesNotKnowWithoutTheFatalMessage)
{
    graph.endpoint("out");
    graph.endpoint("other");
    discover();
    cards[0].m_connectorMap.remove(1);
    qor::Array<SoundCard::VolumeController> result;
    result.append(SoundCard::VolumeController());

    try
    {
        cards[0].volumeController((*cards[0].m_playbackDevices)[1], result);
        ADD_FAILURE() << "nothing was raised";
    }
    catch (const qor::IndexOutOfBounds& error)
    {
        EXPECT_EQ(0, error.low());
        EXPECT_EQ(0, error.high());
        EXPECT_EQ(-1, error.index());
    }
    EXPECT_EQ(0u, result.size()) << "emptied before the walk";
    EXPECT_THAT(log.texts(LoggerPriority::LOG_FATAL), IsEmpty());
}

TEST_F(VolumeResolution, RaisesIndexOutOfBoundsBehindAPeerThatCouldNotBeOpenedAndKeepsWhatItFoundUntilThen)
{
    graph.endpoint("out");
    graph.adapter("board", 1).openable = false;
    graph.join("out/1", "board/1");
    graph.volume("out", 100, -1.0f);
    graph.feed("out/100", "out/1");
    discover();
    qor::Array<SoundCard::VolumeController> result;

    EXPECT_THROW(cards[0].volumeController((*cards[0].m_playbackDevices)[0], result), qor::IndexOutOfBounds);

    ASSERT_EQ(1u, result.size());
    EXPECT_EQ("-1 Plug out/1, no mute", described(result[0]));
}

TEST_F(VolumeResolution, WalksBreadthFirstFromTheConnectorsOfTheEndpointThroughTheLinks)
{
    graph.endpoint("out", 2);
    graph.adapter("a", 2);
    graph.adapter("b", 1);
    graph.join("out/1", "a/1").join("out/2", "b/1").path("a/1", "a/2");
    int level = 0;
    for (const char* plug : {"out/1", "out/2", "a/1", "a/2", "b/1"})
    {
        const std::string device = std::string(plug).substr(0, std::string(plug).find('/'));
        const unsigned int localId = 100 + static_cast<unsigned int>(++level);
        graph.volume(device, localId, static_cast<float>(-level));
        graph.feed(device + "/" + std::to_string(localId), plug);
    }

    EXPECT_THAT(controls(), ElementsAre("-1 Plug out/1, no mute", "-2 Plug out/2, no mute", "-3 Plug a/1, no mute",
                                        "-5 Plug b/1, no mute", "-4 Plug a/2, no mute"));
}

TEST_F(VolumeResolution, GivesTwoRecordsForANodeBetweenTwoConnectorsWithTheOwnerOfEach)
{
    graph.endpoint("out");
    graph.adapter("board", 2);
    graph.join("out/1", "board/1").path("board/1", "board/2");
    graph.machine.adapters[0].topology->connectors[1].subType = KSNODETYPE_LINE_CONNECTOR;
    graph.volume("board", 100, -1.0f);
    graph.feed("board/2", "board/100").feed("board/100", "board/1");
    discover();
    qor::Array<SoundCard::VolumeController> result;

    ASSERT_EQ(2u, cards[0].volumeController((*cards[0].m_playbackDevices)[0], result));

    EXPECT_EQ("-1 Plug board/1, no mute", described(result[0]));
    EXPECT_EQ("-1 Plug board/2, no mute", described(result[1]));
    EXPECT_TRUE(result[0].ownerType == GUID(KSNODETYPE_SPEAKER));
    EXPECT_TRUE(result[1].ownerType == GUID(KSNODETYPE_LINE_CONNECTOR));
}

TEST_F(VolumeResolution, VisitsANodeTwiceThatTwoConnectorsOfTheEndpointStandFor)
{
    graph.endpoint("out", 2);
    graph.volume("out", 101, -1.0f);
    graph.feed("out/101", "out/1");
    graph.machine.endpoints[0].topology->connectors[1].id = "OUT/1";

    EXPECT_THAT(controls(), ElementsAre("-1 Plug out/1, no mute", "-1 Plug out/1, no mute"));
}

TEST_F(VolumeResolution, EndsInACycleAndVisitsEachNodeOnce)
{
    graph.endpoint("out", 3);
    graph.path("out/1", "out/2").path("out/2", "out/3").path("out/3", "out/1");
    graph.volume("out", 101, -1.0f);
    graph.feed("out/101", "out/2");

    EXPECT_THAT(controls(), ElementsAre("-1 Plug out/2, no mute"));
}

TEST_F(VolumeResolution, GivesEachHandleOneReferenceAndChangesNothingInTheCard)
{
    graph.endpoint("out");
    graph.volume("out", 101, -1.0f);
    graph.mute("out", 201, false);
    graph.feed("out/101", "out/1").feed("out/201", "out/101");
    discover();
    const sim::Census before = simulation().census();
    {
        qor::Array<SoundCard::VolumeController> result;
        cards[0].volumeController((*cards[0].m_playbackDevices)[0], result);
        const sim::Census during = simulation().census() - before;
        EXPECT_EQ(1, during.references("IAudioVolumeLevel")) << during;
        EXPECT_EQ(1, during.references("IAudioMute")) << during;
    }
    const sim::Census after = simulation().census() - before;
    EXPECT_EQ(walks(), after.references()) << after;
    EXPECT_EQ(walks(), after.references("IPartsList")) << after;
}

TEST_F(VolumeResolution, LabelsItsOperations)
{
    graph.endpoint("out");
    graph.volume("out", 101, -1.0f);
    graph.feed("out/101", "out/1");

    ASSERT_EQ(1u, controls().size());

    EXPECT_THAT(log.entered(channels::soundCard),
                ElementsAre("EndpointDeviceEnumeratorCommon::volumeController(const AudioDevice& endpoint)",
                            "SoundCard::volumeControllerFromList", "SoundCard::partFromList", "SoundCard::partFromList",
                            "SoundCard::partFromList"));
}

#if !defined(_WIN32) // a DLL there keeps allocation operators of its own, which no test can make fail

TEST_F(VolumeResolution, KeepsWhatTheResultHeldWhenThereIsNoMemoryForTheEndpointsTopology)
{
    graph.endpoint("out");
    discover();
    qor::Array<SoundCard::VolumeController> result;
    result.append(SoundCard::VolumeController());
    for (const unsigned int room : {0u, 1u}) // one block for the connectors, one for the subunits
    {
        support::AllocationProbe probe;
        probe.failNothrow(room);

        EXPECT_THROW(cards[0].volumeController((*cards[0].m_playbackDevices)[0], result), qor::NullPointer);

        probe.succeed();
        EXPECT_EQ(1u, result.size()) << room;
    }
}

#endif
