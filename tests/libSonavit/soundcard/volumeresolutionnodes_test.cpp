// The volume and mute nodes around one connector.
#include "tests/libSonavit/soundcard/supportscriptedparts.h"
#include "tests/libSonavit/soundcard/supportvolumeresolution.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/libSonavit/volumecontroller/supportscriptedvolume.h"

using qor::LoggerPriority;
using support::VolumeResolution;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
const std::string noVolumeNode = "Supplied part list does not have a volume controller node";
}

TEST_F(VolumeResolution, GivesARecordForEachVolumePartOfAListWithTheMuteNextToEach)
{
    graph.endpoint("out");
    graph.volume("out", 101, -1.0f);
    graph.volume("out", 102, -2.0f);
    graph.mute("out", 201, true);
    graph.mute("out", 202, false);
    graph.feed("out/101", "out/1").feed("out/102", "out/1").feed("out/201", "out/101").feed("out/102", "out/202");

    EXPECT_THAT(controls(), ElementsAre("-1 Plug out/1, muted", "-2 Plug out/1, not muted"));
}

TEST_F(VolumeResolution, DoesNotLookAtTheOutgoingListWhereTheIncomingOneHasAVolumeNodeEvenOneThatCannotBeActivated)
{
    graph.endpoint("out");
    graph.node("out", 100, KSNODETYPE_VOLUME); // has the type and no control
    graph.volume("out", 101, -1.0f);
    graph.feed("out/100", "out/1").feed("out/1", "out/101");

    EXPECT_THAT(controls(), IsEmpty());
    EXPECT_THAT(log.texts(LoggerPriority::LOG_INFO, channels::soundCard), IsEmpty());
}

TEST_F(VolumeResolution, SaysOnceThatTheIncomingListHasNoVolumeNodeAndThenUsesTheOutgoingOne)
{
    graph.endpoint("out");
    graph.volume("out", 101, -1.0f);
    graph.feed("out/1", "out/101");

    EXPECT_THAT(controls(), ElementsAre("-1 Plug out/1, no mute"));

    EXPECT_THAT(log.texts(LoggerPriority::LOG_INFO, channels::soundCard), ElementsAre(noVolumeNode));
}

TEST_F(VolumeResolution, SaysTwiceThatAConnectorHasNoVolumeNodeOnEitherSide)
{
    graph.endpoint("out");

    EXPECT_THAT(controls(), IsEmpty());

    EXPECT_THAT(log.texts(LoggerPriority::LOG_INFO, channels::soundCard), ElementsAre(noVolumeNode, noVolumeNode));
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
    EXPECT_THAT(log.texts(LoggerPriority::LOG_INFO, channels::soundCard), ElementsAre(noVolumeNode, noVolumeNode));
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
    EXPECT_THAT(log.texts(channels::soundCard), IsEmpty());
}

TEST_F(VolumeResolution, GivesNoRecordAndSearchesNoMuteWhereTheActivationSucceedsWithoutALevel)
{
    graph.endpoint("out");
    graph.volume("out", 101, -1.0f);
    graph.volume("out", 102, -2.0f);
    graph.volume("out", 103, -3.0f);
    graph.feed("out/101", "out/1").feed("out/102", "out/1").feed("out/1", "out/103");
    discover();
    const sim::PlannedFault empty = simulation().faults().succeedWithNull("IPart::Activate").on("out/101");

    EXPECT_THAT(controls(), ElementsAre("-2 Plug out/1, no mute"));

    EXPECT_EQ(1u, empty.fired());
    EXPECT_THAT(simulation().journal().of("IPart::EnumParts*").on("out/101").lines(), IsEmpty());
    EXPECT_THAT(log.texts(channels::soundCard), IsEmpty());
}

TEST_F(VolumeResolution, DoesNotLookAtTheOutgoingListWhereTheOnlyIncomingVolumeNodeSucceedsWithoutALevel)
{
    graph.endpoint("out");
    graph.volume("out", 101, -1.0f);
    graph.volume("out", 102, -2.0f);
    graph.feed("out/101", "out/1").feed("out/1", "out/102");
    discover();
    const sim::PlannedFault empty = simulation().faults().succeedWithNull("IPart::Activate").on("out/101");

    EXPECT_THAT(controls(), IsEmpty());

    EXPECT_EQ(1u, empty.fired());
    EXPECT_THAT(log.texts(channels::soundCard), IsEmpty());
}

TEST_F(VolumeResolution, ReleasesALevelWhosePartThrowsAtItsRelease)
{
    graph.endpoint("out");
    graph.volume("out", 101, -1.0f);
    graph.feed("out/101", "out/1");
    discover();
    throwAtTheReleaseAfter("IPart::Activate", "out/101");
    qor::Array<SoundCard::VolumeController> result;

    EXPECT_THROW(cards[0].volumeController((*cards[0].m_playbackDevices)[0], result), sim::InjectedException);

    EXPECT_EQ(0u, result.size());
    EXPECT_EQ(0, simulation().census().references("IAudioVolumeLevel")) << simulation().census();
}

TEST_F(VolumeResolution, ReleasesLevelAndMuteWhenThePartOfTheMuteThrowsAtItsRelease)
{
    graph.endpoint("out");
    graph.volume("out", 101, -1.0f);
    graph.mute("out", 201, false);
    graph.feed("out/101", "out/1").feed("out/201", "out/101");
    discover();
    throwAtTheReleaseAfter("IPart::Activate", "out/201");
    qor::Array<SoundCard::VolumeController> result;

    EXPECT_THROW(cards[0].volumeController((*cards[0].m_playbackDevices)[0], result), sim::InjectedException);

    EXPECT_EQ(0u, result.size());
    EXPECT_EQ(0, simulation().census().references("IAudioVolumeLevel")) << simulation().census();
    EXPECT_EQ(0, simulation().census().references("IAudioMute")) << simulation().census();
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

TEST_F(VolumeResolution, ActivatesBothControlsInAnyContext)
{
    graph.endpoint("out");
    graph.volume("out", 101, -1.0f);
    graph.mute("out", 201, false);
    graph.feed("out/101", "out/1").feed("out/201", "out/101");

    ASSERT_EQ(1u, controls().size());

    EXPECT_THAT(simulation().journal().entries().of("IPart::Activate").calls(),
                ElementsAre("IPart::Activate(IAudioVolumeLevel, 23)", "IPart::Activate(IAudioMute, 23)"));
}

namespace
{
/// The records of a list of parts that contains only @p volume.
qor::Array<SoundCard::VolumeController> recordsOf(support::ScriptedPart& volume)
{
    const SoundCard card;
    const AudioComponent<IConnector> connector(static_cast<IConnector*>(nullptr));
    qor::Array<AudioPart> parts;
    parts.append(AudioPart(volume.handle()));
    qor::Array<SoundCard::VolumeController> result;
    EXPECT_TRUE(card.volumeControllerFromList(parts, connector, result));
    return result;
}
}

TEST_F(VolumeResolution, GivesNoRecordForAVolumeThatCameWithAFailure)
{
    run({});
    support::ScriptedVolumeLevel level;
    support::ScriptedPart volume("volume", KSNODETYPE_VOLUME);
    volume.activation = E_FAIL;
    volume.control = static_cast<IAudioVolumeLevel*>(&level);
    EXPECT_EQ(0u, recordsOf(volume).size());

    EXPECT_EQ(1u, level.references);
    EXPECT_EQ(1u, volume.references);
}

TEST_F(VolumeResolution, GivesARecordWithoutAMuteThatCameWithAFailure)
{
    run({});
    support::ScriptedVolumeLevel level;
    support::ScriptedMute muteControl;
    support::ScriptedPart mute("mute", KSNODETYPE_MUTE);
    mute.activation = E_FAIL;
    mute.control = static_cast<IAudioMute*>(&muteControl);
    support::ScriptedPartsList besideTheVolume({&mute});
    support::ScriptedPart volume("volume", KSNODETYPE_VOLUME);
    volume.incoming = &besideTheVolume;
    volume.control = static_cast<IAudioVolumeLevel*>(&level);
    level.AddRef(); // the reference that comes with the activation
    {
        const qor::Array<SoundCard::VolumeController> result = recordsOf(volume);

        ASSERT_EQ(1u, result.size());
        EXPECT_EQ(nullptr, result[0].mute.get());
    }
    EXPECT_EQ(1u, level.references);
    EXPECT_EQ(1u, muteControl.references);
    EXPECT_EQ(1u, mute.references);
}

TEST_F(VolumeResolution, FindsNothingNextToAConnectorThatIsNoPart)
{
    graph.endpoint("out");
    graph.volume("out", 101, -1.0f);
    graph.feed("out/101", "out/1");
    start();
    const sim::PlannedFault lone = simulation().faults().fail("IConnector::QueryInterface", E_NOINTERFACE).on("out/1");

    EXPECT_THAT(controls(), IsEmpty());

    EXPECT_GT(lone.fired(), 0u);
    EXPECT_THAT(log.texts(channels::soundCard), ElementsAre(noVolumeNode, noVolumeNode));
}

TEST_F(VolumeResolution, PassesOverAConnectorThatThePlatformReportedAndDidNotGive)
{
    graph.endpoint("out", 2);
    graph.volume("out", 101, -1.0f);
    graph.feed("out/101", "out/2");
    start();
    const sim::PlannedFault missing =
        simulation().faults().succeedWithNull("IDeviceTopology::GetConnector").on("out").with("0");

    EXPECT_THAT(controls(), ElementsAre("-1 Plug out/2, no mute"));

    EXPECT_GT(missing.fired(), 0u);
}
