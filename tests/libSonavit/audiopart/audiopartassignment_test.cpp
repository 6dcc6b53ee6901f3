#include "tests/libSonavit/supportgraph.h"

using support::GraphTest;
using support::idsOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr const char* plainLabel = "AudioPart::operator=(IPart* part)";
constexpr const char* handleLabel = "AudioPart::operator=(const COMPtr<IPart>::pointer& part)";
constexpr const char* initializeLabel = "AudioPart::initialize()";

class AudioPartAssignment : public GraphTest
{
protected:
    /// Index in the journal of the latest call of @p operation on @p object.
    std::size_t placeOfCall(const std::string& operation, const std::string& object)
    {
        const sim::JournalEntries entries = simulation().journal().entries();
        std::size_t place = entries.size();
        for (std::size_t index = 0; index < entries.size(); ++index)
        {
            if (entries[index].operation == operation && entries[index].object == object)
                place = index;
        }
        EXPECT_LT(place, entries.size()) << operation << " on " << object;
        return place;
    }
};
}

TEST_F(AudioPartAssignment, AdoptsAPlainPointerReleasesTheOldPartAndReadsTheSnapshot)
{
    start();
    AudioPart part(this->part(jack));
    log.clear();

    AudioPart& result = part = this->part(volume);

    EXPECT_EQ(&part, &result);
    EXPECT_EQ(0, references(jack));
    EXPECT_EQ(1, references(volume));
    EXPECT_EQ(volume, part.globalId().toUtf8());
    EXPECT_EQ("Volume", part.name().toUtf8());
    EXPECT_EQ(KSNODETYPE_VOLUME, part.subType());
    EXPECT_THAT(log.entered(), ElementsAre(plainLabel, initializeLabel));
}

TEST_F(AudioPartAssignment, TakesAReferenceOfItsOwnOnAHandleReleasesTheOldPartAndReadsTheSnapshot)
{
    start();
    AudioPart part(this->part(jack));
    const COMPtr<IPart>::pointer handle = partHandle(volume);
    log.clear();

    AudioPart& result = part = handle;

    EXPECT_EQ(&part, &result);
    EXPECT_EQ(0, references(jack));
    EXPECT_EQ(2, references(volume));
    EXPECT_EQ(volume, part.globalId().toUtf8());
    EXPECT_THAT(log.entered(), ElementsAre(handleLabel, initializeLabel));
}

TEST_F(AudioPartAssignment, ReleasesTheOldPartBeforeItReadsTheNewOne)
{
    start();
    AudioPart ofPlain(this->part(jack));
    AudioPart ofHandle(this->part(stream));
    IPart* const plain = this->part(volume);
    const COMPtr<IPart>::pointer handle = partHandle(mute);
    simulation().journal().clear();
    simulation().journal().recordReferences(true);

    ofPlain = plain;
    ofHandle = handle;

    EXPECT_LT(placeOfCall("IConnector::Release", jack), placeOfCall("IPart::GetSubType", volume));
    EXPECT_LT(placeOfCall("IConnector::Release", stream), placeOfCall("IPart::GetSubType", mute));
}

TEST_F(AudioPartAssignment, OfANilHandleReleasesTheOldPartAndKeepsIdNameAndSubType)
{
    start();
    AudioPart part(this->part(jack));
    log.clear();
    simulation().journal().clear();

    part = COMPtr<IPart>::pointer();

    EXPECT_EQ(nullptr, part.part().get());
    EXPECT_EQ(0, references(jack));
    EXPECT_EQ(jack, part.globalId().toUtf8());
    EXPECT_EQ("Speakers", part.name().toUtf8());
    EXPECT_EQ(KSNODETYPE_SPEAKER, part.subType());
    EXPECT_THAT(log.entered(), ElementsAre(handleLabel, initializeLabel));
    EXPECT_THAT(asked(), IsEmpty());
}

TEST_F(AudioPartAssignment, OfANullPointerReleasesTheOldPartAndKeepsIdNameAndSubType)
{
    start();
    AudioPart part(this->part(jack));
    log.clear();

    part = nullptr;

    EXPECT_EQ(nullptr, part.part().get());
    EXPECT_EQ(0, references(jack));
    EXPECT_EQ(jack, part.globalId().toUtf8());
    EXPECT_EQ("Speakers", part.name().toUtf8());
    EXPECT_EQ(KSNODETYPE_SPEAKER, part.subType());
    EXPECT_THAT(log.entered(), ElementsAre(plainLabel, initializeLabel));
}

TEST_F(AudioPartAssignment, OfTheSameObjectThroughAnotherHandleKeepsItAlive)
{
    start();
    AudioPart part(this->part(jack));
    const COMPtr<IPart>::pointer same = part.part();

    part = same;

    EXPECT_EQ(2, references(jack));
    EXPECT_EQ(same.get(), part.part().get());
}

TEST_F(AudioPartAssignment, CopiesAllSixFieldsOfAnotherPart)
{
    kept.partsLists = 2;
    start();
    AudioPart source(this->part(mute));
    qor::Array<AudioPart> list;
    source.incomingPartsList(list);
    source.outgoingPartsList(list);
    list.clear();
    AudioPart part(this->part(stream));
    simulation().journal().clear();
    log.clear();

    AudioPart& result = part = source;

    EXPECT_EQ(&part, &result);
    EXPECT_EQ(source.part().get(), part.part().get());
    EXPECT_EQ(KSNODETYPE_MUTE, part.subType());
    EXPECT_EQ(mute, part.globalId().toUtf8());
    EXPECT_EQ("Mute", part.name().toUtf8());
    EXPECT_THAT(idsOf(part.m_incomingParts), ElementsAre(volume));
    EXPECT_THAT(idsOf(part.m_outgoingParts), ElementsAre(jack));
    EXPECT_EQ(0, references(stream));
    EXPECT_EQ(2, references(mute));
    EXPECT_EQ(2, references(volume));
    EXPECT_EQ(2, references(jack));
    EXPECT_THAT(asked(), IsEmpty());
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(AudioPartAssignment, ReleasesThePartsOfTheListsThatItReplaces)
{
    kept.partsLists = 1;
    start();
    AudioPart part(this->part(volume));
    qor::Array<AudioPart> list;
    part.incomingPartsList(list);
    list.clear();
    ASSERT_EQ(1, references(stream));

    part = AudioPart(this->part(jack));

    EXPECT_EQ(0, references(stream));
    EXPECT_EQ(0u, part.m_incomingParts.size());
}

TEST_F(AudioPartAssignment, OfItselfTouchesNoReference)
{
    start();
    AudioPart part(this->part(jack));
    const AudioPart& same = part;
    simulation().journal().recordReferences(true);
    simulation().journal().clear();

    part = same;

    EXPECT_EQ(jack, part.globalId().toUtf8());
    EXPECT_EQ(1, references(jack));
    EXPECT_THAT(asked(), IsEmpty());
}

TEST_F(AudioPartAssignment, OfAPartOfItsOwnListIsSafe)
{
    kept.partsLists = 1;
    start();
    AudioPart part(this->part(volume));
    qor::Array<AudioPart> list;
    part.incomingPartsList(list);
    list.clear();

    part = part.m_incomingParts[0];

    EXPECT_EQ(stream, part.globalId().toUtf8());
    EXPECT_EQ(0u, part.m_incomingParts.size());
    EXPECT_EQ(0, references(volume));
    EXPECT_EQ(1, references(stream));
}

TEST_F(AudioPartAssignment, OfAPartInAListOfItsOwnListIsSafe)
{
    kept.partsLists = 2;
    start();
    AudioPart part(this->part(mute));
    qor::Array<AudioPart> list;
    part.incomingPartsList(list);
    part.m_incomingParts[0].incomingPartsList(list);
    list.clear();
    ASSERT_EQ(volume, part.m_incomingParts[0].globalId().toUtf8());
    ASSERT_EQ(stream, part.m_incomingParts[0].m_incomingParts[0].globalId().toUtf8());

    part = part.m_incomingParts[0].m_incomingParts[0];

    EXPECT_EQ(stream, part.globalId().toUtf8());
    EXPECT_EQ(0u, part.m_incomingParts.size());
    EXPECT_EQ(0, references(mute));
    EXPECT_EQ(0, references(volume));
    EXPECT_EQ(1, references(stream));
}

TEST_F(AudioPartAssignment, OfThePartWhoseListHoldsItIsSafe)
{
    kept.partsLists = 1;
    start();
    AudioPart part(this->part(volume));
    qor::Array<AudioPart> list;
    part.incomingPartsList(list);
    list.clear();
    AudioPart& inner = part.m_incomingParts[0];

    inner = part;

    EXPECT_EQ(volume, inner.globalId().toUtf8());
    ASSERT_EQ(1u, inner.m_incomingParts.size());
    EXPECT_EQ(stream, inner.m_incomingParts[0].globalId().toUtf8());
    EXPECT_EQ(8u, inner.m_incomingParts[0].m_incomingParts.capacity());
    EXPECT_EQ(2, references(volume));
    EXPECT_EQ(1, references(stream));
}

TEST_F(AudioPartAssignment, OfAPartOfItsOwnOutgoingListIsSafe)
{
    kept.partsLists = 1;
    start();
    AudioPart part(this->part(volume));
    qor::Array<AudioPart> list;
    part.outgoingPartsList(list);
    list.clear();

    part = part.m_outgoingParts[0];

    EXPECT_EQ(mute, part.globalId().toUtf8());
    EXPECT_EQ(0u, part.m_outgoingParts.size());
    EXPECT_EQ(0, references(volume));
    EXPECT_EQ(1, references(mute));
}

TEST_F(AudioPartAssignment, OfThePartWhoseOutgoingListHoldsItIsSafe)
{
    kept.partsLists = 1;
    start();
    AudioPart part(this->part(volume));
    qor::Array<AudioPart> list;
    part.outgoingPartsList(list);
    list.clear();
    AudioPart& inner = part.m_outgoingParts[0];

    inner = part;

    EXPECT_EQ(volume, inner.globalId().toUtf8());
    ASSERT_EQ(1u, inner.m_outgoingParts.size());
    EXPECT_EQ(mute, inner.m_outgoingParts[0].globalId().toUtf8());
    EXPECT_EQ(2, references(volume));
    EXPECT_EQ(1, references(mute));
}

TEST_F(AudioPartAssignment, LeavesTheOtherPartsListsAlone)
{
    kept.partsLists = 1;
    start();
    AudioPart source(this->part(volume));
    AudioPart part;
    part = source;
    qor::Array<AudioPart> list;

    source.incomingPartsList(list);

    EXPECT_EQ(1u, source.m_incomingParts.size());
    EXPECT_EQ(0u, part.m_incomingParts.size());
}
