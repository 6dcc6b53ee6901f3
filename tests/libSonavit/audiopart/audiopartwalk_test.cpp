// The two walks from a part to its neighbours, which differ only in their direction.
#include "qor/exception.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/libSonavit/supportgraph.h"
#include "tests/libSonavit/supportlogline.h"

using support::GraphTest;
using support::idsOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
/// The walks start at a subunit with three neighbours on either side: "mixer", fed by three connectors and feeding
/// three.
class AudioPartWalk : public GraphTest
{
protected:
    AudioPartWalk()
    {
        sim::Subunit node;
        node.name = "Mixer";
        node.subType = KSNODETYPE_VOLUME;
        mixer = card.subunit(node);
        for (const char* const name : {"First", "Second", "Third"})
        {
            sources.push_back(card.connector(std::string(name) + " In", KSNODETYPE_MICROPHONE, In));
            targets.push_back(card.connector(std::string(name) + " Out", KSNODETYPE_HEADPHONES, Out));
        }
        described(mixer).incoming = sources;
        described(mixer).outgoing = targets;
    }

    /// References on all neighbours of the mixer.
    long neighbourReferences()
    {
        long sum = 0;
        for (std::size_t index = 0; index < sources.size(); ++index)
            sum += references(sources[index]) + references(targets[index]);
        return sum;
    }

    std::string mixer;
    Texts sources;
    Texts targets;
};

/// What differs between the two directions.
struct Direction
{
    const char* name;
    unsigned int (AudioPart::*walk)(qor::Array<AudioPart>&);
    qor::Array<AudioPart> AudioPart::*cache;
    qor::Array<AudioPart> AudioPart::*otherCache;
    const char* operation;
    const char* label;
    const char* message;
};

void PrintTo(const Direction& direction, std::ostream* out)
{
    *out << direction.name;
}

class AudioPartList : public AudioPartWalk, public testing::WithParamInterface<Direction>
{
protected:
    const Texts& neighbours() const { return GetParam().name == std::string("Incoming") ? sources : targets; }

    unsigned int walk(AudioPart& part, qor::Array<AudioPart>& list) { return (part.*GetParam().walk)(list); }

    sim::PlannedFault failure() { return simulation().faults().fail(GetParam().operation); }
};

class AudioPartStorePartsList : public AudioPartWalk
{
};
}

INSTANTIATE_TEST_SUITE_P(
    Walks, AudioPartList,
    testing::Values(Direction{"Incoming", &AudioPart::incomingPartsList, &AudioPart::m_incomingParts,
                              &AudioPart::m_outgoingParts, "IPart::EnumPartsIncoming", "AudioPart::incomingPartsList",
                              "Unable to enumerate incoming parts"},
                    Direction{"Outgoing", &AudioPart::outgoingPartsList, &AudioPart::m_outgoingParts,
                              &AudioPart::m_incomingParts, "IPart::EnumPartsOutgoing", "AudioPart::outgoingPartsList",
                              "Unable to enumerate outgoing parts"}),
    [](const auto& direction) { return std::string(direction.param.name); });

TEST_P(AudioPartList, HoldsTheNeighboursInThePlatformsOrderAndItsSizeIsTheAnswer)
{
    kept.partsLists = 1;
    start();
    AudioPart part(this->part(mixer));
    qor::Array<AudioPart> list;

    const unsigned int count = walk(part, list);

    EXPECT_EQ(3u, count);
    EXPECT_EQ(3u, list.size());
    EXPECT_EQ(neighbours(), idsOf(list));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_P(AudioPartList, HoldsPartsWithTheirSnapshotAndNoListsOfTheirOwn)
{
    kept.partsLists = 1;
    start();
    AudioPart part(this->part(mixer));
    qor::Array<AudioPart> list;

    walk(part, list);

    EXPECT_EQ(described(neighbours()[1]).name, list[1].name().toUtf8());
    EXPECT_EQ(described(neighbours()[1]).subType, list[1].subType());
    EXPECT_EQ(0u, list[1].m_incomingParts.size());
    EXPECT_EQ(0u, list[1].m_outgoingParts.size());
}

TEST_P(AudioPartList, IsReadByOneCallForEachPartAndItsSnapshot)
{
    kept.partsLists = 1;
    start();
    AudioPart part(this->part(mixer));
    qor::Array<AudioPart> list;
    asked();

    walk(part, list);

    EXPECT_THAT(asked(),
                ElementsAre(GetParam().operation, "IPartsList::GetCount",                                       //
                            "IPartsList::GetPart", "IPart::GetSubType", "IPart::GetGlobalId", "IPart::GetName", //
                            "IPartsList::GetPart", "IPart::GetSubType", "IPart::GetGlobalId", "IPart::GetName", //
                            "IPartsList::GetPart", "IPart::GetSubType", "IPart::GetGlobalId", "IPart::GetName"));
}

TEST_P(AudioPartList, TracesTheWalkTheStoringAndEachPart)
{
    kept.partsLists = 1;
    described(mixer).incoming.resize(1);
    described(mixer).outgoing.resize(1);
    start();
    AudioPart part(this->part(mixer));
    qor::Array<AudioPart> list;
    log.clear();

    walk(part, list);

    EXPECT_THAT(log.entered(),
                ElementsAre(GetParam().label, "AudioPart::storePartsList",
                            "AudioConnector::AudioConnector(const IPart* part)", "AudioPart::initialize()"));
    EXPECT_EQ(log.entered(), log.entered(channels::audioPart));
}

TEST_P(AudioPartList, LeavesThePlatformsListUnreleasedAtEachWalk)
{
    kept.partsLists = 3;
    start();
    AudioPart part(this->part(mixer));
    qor::Array<AudioPart> list;

    walk(part, list);
    walk(part, list);
    walk(part, list);

    EXPECT_EQ(3, simulation().census().references("IPartsList"));
}

TEST_P(AudioPartList, HoldsAReferenceOnEachPartInAdditionToTheCache)
{
    kept.partsLists = 1;
    start();
    {
        AudioPart part(this->part(mixer));
        qor::Array<AudioPart> list;

        walk(part, list);

        EXPECT_EQ(2, references(neighbours()[0]));
        EXPECT_EQ(6, neighbourReferences());
        list.clear();
        EXPECT_EQ(3, neighbourReferences());
    }
    EXPECT_EQ(0, neighbourReferences());
}

TEST_P(AudioPartList, IsCachedByItsOwnDirectionOnly)
{
    kept.partsLists = 1;
    start();
    AudioPart part(this->part(mixer));
    qor::Array<AudioPart> list;

    walk(part, list);

    EXPECT_EQ(neighbours(), idsOf(part.*GetParam().cache));
    EXPECT_EQ(0u, (part.*GetParam().otherCache).size());
}

TEST_P(AudioPartList, ReplacesWhatTheCallersListHeld)
{
    kept.partsLists = 1;
    start();
    AudioPart part(this->part(mixer));
    qor::Array<AudioPart> list;
    list.append(AudioPart(this->part(jack)));

    walk(part, list);

    EXPECT_EQ(neighbours(), idsOf(list));
    EXPECT_EQ(0, references(jack));
}

TEST_P(AudioPartList, TakesNoReferencesButThoseOfTheCallersListHoweverManyPartsThereAre)
{
    kept.partsLists = 1;
    described(mixer).incoming.assign(9, neighbours()[0]);
    described(mixer).outgoing.assign(9, neighbours()[0]);
    start();
    AudioPart part(this->part(mixer));
    qor::Array<AudioPart> list;
    simulation().journal().recordReferences(true);

    walk(part, list);

    EXPECT_EQ(9u, list.size());
    EXPECT_EQ(9u, simulation().journal().count("IConnector::AddRef"));
}

TEST_P(AudioPartList, IsReadAfreshByTheNextWalk)
{
    kept.partsLists = 2;
    start();
    AudioPart part(this->part(mixer));
    qor::Array<AudioPart> list;
    walk(part, list);
    simulation().change(
        [&](sim::Machine& machine)
        {
            machine.part(mixer)->incoming = {jack};
            machine.part(mixer)->outgoing = {jack};
        });

    const unsigned int count = walk(part, list);

    EXPECT_EQ(1u, count);
    EXPECT_THAT(idsOf(list), ElementsAre(jack));
    EXPECT_THAT(idsOf(part.*GetParam().cache), ElementsAre(jack));
}

TEST_P(AudioPartList, StaysAsItWasWhenTheEnumerationFails)
{
    kept.partsLists = 1;
    start();
    AudioPart part(this->part(mixer));
    qor::Array<AudioPart> list;
    walk(part, list);
    list.clear();
    list.append(AudioPart(this->part(jack)));
    const sim::PlannedFault fault = failure();
    log.clear();

    const unsigned int count = walk(part, list);

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(0u, count);
    EXPECT_THAT(idsOf(list), ElementsAre(jack));
    EXPECT_EQ(neighbours(), idsOf(part.*GetParam().cache));
    EXPECT_THAT(log.texts(), ElementsAre(GetParam().message));
    EXPECT_EQ(log.texts(), log.texts(qor::LoggerPriority::LOG_ERROR, channels::audioPart));
    EXPECT_THAT(log.entered(), ElementsAre(GetParam().label));
}

TEST_P(AudioPartList, FailsLikewiseWhenThereAreNoNeighbours)
{
    described(mixer).incoming.clear();
    described(mixer).outgoing.clear();
    start();
    AudioPart part(this->part(mixer));
    qor::Array<AudioPart> list;
    list.append(AudioPart(this->part(jack)));

    const unsigned int count = walk(part, list);

    EXPECT_EQ(0u, count);
    EXPECT_THAT(idsOf(list), ElementsAre(jack));
    EXPECT_THAT(log.texts(qor::LoggerPriority::LOG_ERROR, channels::audioPart), ElementsAre(GetParam().message));
}

TEST_P(AudioPartList, AssertsWhenThePlatformSucceedsWithoutAList)
{
    kept.partsLists = 1;
    start();
    AudioPart part(this->part(mixer));
    qor::Array<AudioPart> list;
    walk(part, list);
    const sim::PlannedFault fault = simulation().faults().succeedWithNull(GetParam().operation);

    std::string expression;
    try
    {
        walk(part, list);
    }
    catch (const qor::AssertionFailure& failure)
    {
        expression = failure.expression();
    }

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ("partlist != NULL", expression);
    EXPECT_EQ(neighbours(), idsOf(list));
    EXPECT_EQ(neighbours(), idsOf(part.*GetParam().cache));
}

TEST_P(AudioPartList, HasOneEntryFewerAndNoMessageWhenAPartCannotBeHad)
{
    kept.partsLists = 1;
    start();
    AudioPart part(this->part(mixer));
    qor::Array<AudioPart> list;
    const sim::PlannedFault fault = simulation().faults().fail("IPartsList::GetPart").with("1");

    const unsigned int count = walk(part, list);

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(2u, count);
    EXPECT_THAT(idsOf(list), ElementsAre(neighbours()[0], neighbours()[2]));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_P(AudioPartList, HoldsAnEmptyPartWhereThePlatformSucceedsWithoutOne)
{
    kept.partsLists = 1;
    start();
    AudioPart part(this->part(mixer));
    qor::Array<AudioPart> list;
    const sim::PlannedFault fault = simulation().faults().succeedWithNull("IPartsList::GetPart").with("0");

    const unsigned int count = walk(part, list);

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(3u, count);
    EXPECT_EQ(nullptr, list[0].part().get());
    EXPECT_EQ(neighbours()[1], list[1].globalId().toUtf8());
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_P(AudioPartList, IsEmptyWithoutAMessageWhenTheCountCannotBeRead)
{
    kept.partsLists = 1;
    start();
    AudioPart part(this->part(mixer));
    qor::Array<AudioPart> list;
    list.append(AudioPart(this->part(jack)));
    const sim::PlannedFault fault = simulation().faults().fail("IPartsList::GetCount");

    const unsigned int count = walk(part, list);

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(0u, count);
    EXPECT_EQ(0u, list.size());
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_P(AudioPartList, MayHoldThePartThatIsAskedForIt)
{
    kept.partsLists = 1;
    start();
    qor::Array<AudioPart> list;
    list.append(AudioPart(this->part(mixer)));

    const unsigned int count = walk(list[0], list);

    EXPECT_EQ(3u, count);
    EXPECT_EQ(neighbours(), idsOf(list));
    EXPECT_EQ(0, references(mixer));
    EXPECT_EQ(3, neighbourReferences());
}

TEST_P(AudioPartList, MayHoldThePartThatIsAskedForItInAListOfOneOfItsParts)
{
    kept.partsLists = 1;
    start();
    qor::Array<AudioPart> list;
    list.append(AudioPart(this->part(stream)));
    list[0].m_outgoingParts.append(AudioPart(this->part(mixer)));

    const unsigned int count = walk(list[0].m_outgoingParts[0], list);

    EXPECT_EQ(3u, count);
    EXPECT_EQ(neighbours(), idsOf(list));
    EXPECT_EQ(0, references(mixer));
    EXPECT_EQ(3, neighbourReferences());
}

TEST_F(AudioPartStorePartsList, ReplacesTheGivenListAndAnswersItsSize)
{
    kept.partsLists = 1;
    start();
    AudioPart part;
    const COMPtr<IPart>::pointer source = partHandle(mixer);
    IPartsList* neighbours = nullptr;
    ASSERT_EQ(S_OK, source->EnumPartsIncoming(&neighbours));
    qor::Array<AudioPart> list;
    list.append(AudioPart(this->part(jack)));

    const unsigned int count = part.storePartsList(neighbours, list);

    EXPECT_EQ(3u, count);
    EXPECT_EQ(sources, idsOf(list));
    EXPECT_EQ(0u, part.m_incomingParts.size());
    EXPECT_EQ(1, simulation().census().references("IPartsList"));
}

TEST_F(AudioPartStorePartsList, AssertsBeforeItTouchesTheGivenList)
{
    start();
    AudioPart part;
    qor::Array<AudioPart> list;
    list.append(AudioPart(this->part(jack)));

    EXPECT_THROW(part.storePartsList(nullptr, list), qor::AssertionFailure);

    EXPECT_THAT(idsOf(list), ElementsAre(jack));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(AudioPartWalk, LogsAFailureOfEachDirectionFromItsOwnLine)
{
    start();
    AudioPart part(this->part(mixer));
    qor::Array<AudioPart> list;
    simulation().faults().fail("IPart::EnumPartsIncoming");
    simulation().faults().fail("IPart::EnumPartsOutgoing");

    part.incomingPartsList(list);
    part.outgoingPartsList(list);

    const std::vector<int> lines = support::linesOf(log, "Unable to enumerate ");
    ASSERT_EQ(2u, lines.size());
    EXPECT_NE(lines[0], lines[1]);
}

#if !defined(_WIN32) // where the tests run, the sources may have another path
TEST_F(AudioPartStorePartsList, AssertsWithTheLineOfTheCheck)
{
    start();
    AudioPart part;
    qor::Array<AudioPart> list;

    std::string check;
    try
    {
        part.storePartsList(nullptr, list);
    }
    catch (const qor::AssertionFailure& failure)
    {
        check = support::sourceLineOf(failure);
    }

    EXPECT_THAT(check, testing::HasSubstr("list != nullptr"));
}
#endif
