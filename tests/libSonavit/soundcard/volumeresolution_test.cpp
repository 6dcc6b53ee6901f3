#include "libSonavit/soundcard.h"

#include "libSonavit/soundcard/supportgraphs.h"
#include "tests/support/librarytest.h"

using qor::LoggerPriority;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr const char* channel = "libSonavit.soundcard";
const std::string noVolumeNode = "Supplied part list does not have a volume controller node";

/// A control in short: the level that names it, its owner, and "muted", "not muted" or "no mute".
std::string described(const SoundCard::VolumeController& control)
{
    float level = 1.0f;
    EXPECT_EQ(S_OK, control.volumeLevel->GetLevel(0, &level));
    BOOL muted = FALSE;
    if (control.mute.get() != nullptr)
    {
        EXPECT_EQ(S_OK, control.mute->GetMute(&muted));
    }
    const std::string mute = control.mute.get() == nullptr ? "no mute" : muted == FALSE ? "not muted" : "muted";
    return std::to_string(static_cast<int>(level)) + " " + control.ownerName.toUtf8() + ", " + mute;
}

struct VolumeResolution : support::LibraryTest
{
    ~VolumeResolution() noexcept override {} // the cards' own may throw

    void discover()
    {
        run(graph.machine);
        cards = SoundCard::enumerateSystemSoundDevices();
        ASSERT_EQ(1u, cards.size());
        log.clear();
    }

    /// The controls of the card's first playback endpoint.
    std::vector<std::string> controls()
    {
        if (cards.size() == 0)
            discover();
        qor::Array<SoundCard::VolumeController> result;
        count = cards[0].volumeController((*cards[0].m_playbackDevices)[0], result);
        std::vector<std::string> texts;
        for (unsigned int i = 0; i < result.size(); ++i)
            texts.push_back(described(result[i]));
        EXPECT_EQ(count, texts.size());
        return texts;
    }

    void TearDown() override
    {
        cards.clear();
        kept.partsLists = walks();
        LibraryTest::TearDown();
    }

    /// Each walk to neighbours that were there keeps its list.
    long walks()
    {
        long found = 0;
        for (const sim::JournalEntry& entry : simulation().journal().of("IPart::EnumParts*"))
            found += SUCCEEDED(entry.result) ? 1 : 0;
        return found;
    }

    support::GraphMachine graph;
    qor::Array<SoundCard> cards;
    unsigned int count = 0;
};
}

TEST_F(VolumeResolution, FindsNothingForAnEndpointWithoutConnectorsAndForgetsWhatTheResultHeld)
{
    graph.endpoint("out", 0);
    discover();
    qor::Array<SoundCard::VolumeController> result;
    result.append(SoundCard::VolumeController());

    EXPECT_EQ(0u, cards[0].volumeController((*cards[0].m_playbackDevices)[0], result));

    EXPECT_EQ(0u, result.size());
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

TEST_F(VolumeResolution, GivesARecordForEachVolumePartOfAListWithTheMuteBesideEach)
{
    graph.endpoint("out");
    graph.volume("out", 101, -1.0f);
    graph.volume("out", 102, -2.0f);
    graph.mute("out", 201, true);
    graph.mute("out", 202, false);
    graph.feed("out/101", "out/1").feed("out/102", "out/1").feed("out/201", "out/101").feed("out/102", "out/202");

    EXPECT_THAT(controls(), ElementsAre("-1 Plug out/1, muted", "-2 Plug out/1, not muted"));
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

TEST_F(VolumeResolution, DoesNotLookAtTheOutgoingListWhereTheIncomingOneHasAVolumeNodeEvenOneThatCannotBeActivated)
{
    graph.endpoint("out");
    graph.node("out", 100, KSNODETYPE_VOLUME); // has the type and no control
    graph.volume("out", 101, -1.0f);
    graph.feed("out/100", "out/1").feed("out/1", "out/101");

    EXPECT_THAT(controls(), IsEmpty());
    EXPECT_THAT(log.texts(LoggerPriority::LOG_INFO, channel), IsEmpty());
}

TEST_F(VolumeResolution, SaysOnceThatTheIncomingListHasNoVolumeNodeAndThenUsesTheOutgoingOne)
{
    graph.endpoint("out");
    graph.volume("out", 101, -1.0f);
    graph.feed("out/1", "out/101");

    EXPECT_THAT(controls(), ElementsAre("-1 Plug out/1, no mute"));

    EXPECT_THAT(log.texts(LoggerPriority::LOG_INFO, channel), ElementsAre(noVolumeNode));
}

TEST_F(VolumeResolution, SaysTwiceThatAConnectorHasNoVolumeNodeOnEitherSide)
{
    graph.endpoint("out");

    EXPECT_THAT(controls(), IsEmpty());

    EXPECT_THAT(log.texts(LoggerPriority::LOG_INFO, channel), ElementsAre(noVolumeNode, noVolumeNode));
}

TEST_F(VolumeResolution, CountsAListThatCannotBeReadAsOneWithoutAVolumeNode)
{
    graph.endpoint("out");
    graph.volume("out", 101, -1.0f);
    graph.feed("out/101", "out/1");
    discover();
    const sim::PlannedFault unreadable = simulation().faults().fail("IPart::EnumPartsIncoming").on("out/1");

    EXPECT_THAT(controls(), IsEmpty());

    EXPECT_EQ(1u, unreadable.fired());
    EXPECT_THAT(log.texts(LoggerPriority::LOG_INFO, channel), ElementsAre(noVolumeNode, noVolumeNode));
}

TEST_F(VolumeResolution, DoesNotFindAVolumeNodeTwoPartsAwayFromEveryConnector)
{
    graph.endpoint("out");
    graph.node("out", 100, KSNODETYPE_SUM);
    graph.volume("out", 101, -1.0f);
    graph.feed("out/101", "out/100").feed("out/100", "out/1");

    EXPECT_THAT(controls(), IsEmpty());
}

TEST_F(VolumeResolution, TakesTheFirstOfTwoMutesAndOneOnTheIncomingSideBeforeOneOnTheOutgoingSide)
{
    graph.endpoint("out");
    graph.volume("out", 101, -1.0f);
    graph.mute("out", 201, true);
    graph.mute("out", 202, false);
    graph.mute("out", 203, false);
    graph.feed("out/101", "out/1").feed("out/201", "out/101").feed("out/202", "out/101").feed("out/101", "out/203");

    EXPECT_THAT(controls(), ElementsAre("-1 Plug out/1, muted"));
}

TEST_F(VolumeResolution, GivesARecordWithoutMuteWhereTheFirstMuteCannotBeActivatedAndTriesNoOther)
{
    graph.endpoint("out");
    graph.volume("out", 101, -1.0f);
    graph.node("out", 201, KSNODETYPE_MUTE); // has the type and no control
    graph.mute("out", 202, true);
    graph.mute("out", 203, true);
    graph.feed("out/101", "out/1").feed("out/201", "out/101").feed("out/203", "out/101").feed("out/101", "out/202");

    EXPECT_THAT(controls(), ElementsAre("-1 Plug out/1, no mute"));

    const sim::JournalEntries activations = simulation().journal().of("IPart::Activate");
    EXPECT_EQ(1u, activations.on("out/201").size());
    EXPECT_THAT(activations.on("out/202").lines(), IsEmpty());
    EXPECT_THAT(activations.on("out/203").lines(), IsEmpty());
}

TEST_F(VolumeResolution, DoesNotFindAMuteTwoPartsAwayFromTheVolumeNode)
{
    graph.endpoint("out");
    graph.volume("out", 101, -1.0f);
    graph.node("out", 102, KSNODETYPE_SUM);
    graph.mute("out", 201, true);
    graph.feed("out/101", "out/1").feed("out/102", "out/101").feed("out/201", "out/102");

    EXPECT_THAT(controls(), ElementsAre("-1 Plug out/1, no mute"));
}

TEST_F(VolumeResolution, VisitsANodeTwiceThatTwoConnectorsOfTheEndpointStandFor)
{
    graph.endpoint("out", 2);
    graph.volume("out", 101, -1.0f);
    graph.feed("out/101", "out/1");
    graph.machine.endpoints[0].topology->connectors[1].id = "OUT/1";

    EXPECT_THAT(controls(), ElementsAre("-1 Plug out/1, no mute", "-1 Plug out/1, no mute"));
}

TEST_F(VolumeResolution, GivesNoRecordAndSaysNothingWhereTheVolumeCannotBeActivated)
{
    graph.endpoint("out");
    graph.volume("out", 101, -1.0f);
    graph.volume("out", 102, -2.0f);
    graph.feed("out/101", "out/1").feed("out/102", "out/1");
    discover();
    const sim::PlannedFault refused = simulation().faults().fail("IPart::Activate").on("out/101");

    EXPECT_THAT(controls(), ElementsAre("-2 Plug out/1, no mute"));

    EXPECT_EQ(1u, refused.fired());
    EXPECT_THAT(log.texts(channel), IsEmpty());
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

TEST_F(VolumeResolution, ReadsBothListsOfAConnectorBeforeItActivatesAnything)
{
    graph.endpoint("out");
    graph.volume("out", 101, -1.0f);
    graph.mute("out", 201, false);
    graph.feed("out/101", "out/1").feed("out/201", "out/101");
    discover();
    simulation().journal().clear();

    ASSERT_EQ(1u, controls().size());

    std::vector<std::string> calls;
    for (const sim::JournalEntry& entry : simulation().journal().entries())
    {
        if (entry.operation.find("IPart::EnumParts") == 0 || entry.operation == "IPart::Activate")
            calls.push_back(entry.operation.substr(7) + " " + entry.object);
    }
    EXPECT_THAT(calls, ElementsAre("EnumPartsIncoming out/1", "EnumPartsOutgoing out/1", "Activate out/101",
                                   "EnumPartsIncoming out/101", "EnumPartsOutgoing out/101", "Activate out/201"));
}

TEST_F(VolumeResolution, LabelsItsOperations)
{
    graph.endpoint("out");
    graph.volume("out", 101, -1.0f);
    graph.feed("out/101", "out/1");

    ASSERT_EQ(1u, controls().size());

    EXPECT_THAT(log.entered(channel),
                ElementsAre("EndpointDeviceEnumeratorCommon::volumeController(const AudioDevice& endpoint)",
                            "SoundCard::volumeControllerFromList", "SoundCard::partFromList", "SoundCard::partFromList",
                            "SoundCard::partFromList"));
}
