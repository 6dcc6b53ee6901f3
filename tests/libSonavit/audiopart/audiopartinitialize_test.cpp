#include "tests/foundation/supportallocations.h"
#include "tests/libSonavit/soundcard/supportscriptedparts.h"
#include "tests/libSonavit/supportgraph.h"

#include <new>

using support::GraphTest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
class AudioPartInitialize : public GraphTest
{
};
}

TEST_F(AudioPartInitialize, ReadsSubTypeThenGlobalIdThenName)
{
    start();

    const AudioPart part(this->part(jack));

    EXPECT_EQ(KSNODETYPE_SPEAKER, part.subType());
    EXPECT_EQ(jack, part.globalId().toUtf8());
    EXPECT_EQ("Speakers", part.name().toUtf8());
    EXPECT_THAT(asked(), ElementsAre("IPart::GetSubType", "IPart::GetGlobalId", "IPart::GetName"));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(AudioPartInitialize, LeavesTheSubTypeZeroWhenItCannotBeReadAndReadsTheRest)
{
    start();
    const sim::PlannedFault fault = simulation().faults().fail("IPart::GetSubType");

    const AudioPart part(this->part(jack));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(GUID(), part.subType());
    EXPECT_EQ(jack, part.globalId().toUtf8());
    EXPECT_EQ("Speakers", part.name().toUtf8());
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(AudioPartInitialize, LeavesTheGlobalIdEmptyWhenItCannotBeReadAndReadsTheRest)
{
    start();
    const sim::PlannedFault fault = simulation().faults().fail("IPart::GetGlobalId");

    const AudioPart part(this->part(jack));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ("", part.globalId().toUtf8());
    EXPECT_EQ("Speakers", part.name().toUtf8());
    EXPECT_EQ(KSNODETYPE_SPEAKER, part.subType());
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(AudioPartInitialize, LeavesTheNameEmptyWhenItCannotBeRead)
{
    start();
    const sim::PlannedFault fault = simulation().faults().fail("IPart::GetName");

    const AudioPart part(this->part(jack));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ("", part.name().toUtf8());
    EXPECT_EQ(jack, part.globalId().toUtf8());
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(AudioPartInitialize, KeepsAnEmptyNameAndTheIdWhenThePlatformGivesNoName)
{
    described(jack).name = std::nullopt;
    start();

    const AudioPart part(this->part(jack));

    EXPECT_EQ("", part.name().toUtf8());
    EXPECT_EQ(jack, part.globalId().toUtf8());
}

TEST_F(AudioPartInitialize, TakesAMissingIdForTheNewIdButAMissingNameForNoNews)
{
    described(volume).reportsId = false;
    described(volume).name = std::nullopt;
    start();
    AudioPart part(this->part(jack));

    part = this->part(volume);

    EXPECT_EQ("", part.globalId().toUtf8());
    EXPECT_EQ("Speakers", part.name().toUtf8());
    EXPECT_EQ(KSNODETYPE_VOLUME, part.subType());
}

TEST_F(AudioPartInitialize, KeepsTheOldSubTypeWhenTheNewOneCannotBeRead)
{
    start();
    AudioPart part(this->part(jack));
    const sim::PlannedFault fault = simulation().faults().fail("IPart::GetSubType").on(volume);

    part = this->part(volume);

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(KSNODETYPE_SPEAKER, part.subType());
    EXPECT_EQ(volume, part.globalId().toUtf8());
}

#if !defined(_WIN32) // the system's own function there, which no journal sees
TEST_F(AudioPartInitialize, FreesTheIdAlsoWhenThereIsNoneButANameOnlyWhenThereIsOne)
{
    described(jack).reportsId = false;
    described(jack).name = std::nullopt;
    start();

    const AudioPart part(this->part(jack));

    EXPECT_THAT(simulation().journal().entries().calls(),
                ElementsAre("IPart::GetSubType()", "IPart::GetGlobalId()", "CoTaskMemFree(null)", "IPart::GetName()"));
}

TEST_F(AudioPartInitialize, FreesEachTextRightAfterItsCall)
{
    start();

    const AudioPart part(this->part(jack));

    EXPECT_THAT(simulation().journal().entries().calls(),
                ElementsAre("IPart::GetSubType()", "IPart::GetGlobalId()",
                            "CoTaskMemFree(IPart::GetGlobalId " + jack + ")", "IPart::GetName()",
                            "CoTaskMemFree(IPart::GetName " + jack + ")"));
}

TEST_F(AudioPartInitialize, FreesAnIdThatThereIsNoMemoryToCopy)
{
    start();
    support::ScriptedPart platformPart("part");
    {
        support::AllocationProbe probe;
        platformPart.afterId = [&probe] { probe.failOnce(); };

        EXPECT_THROW(const AudioPart part(platformPart.handle()), std::bad_alloc);
    }
    EXPECT_EQ(0, simulation().census().taskBlocks());
    EXPECT_EQ(1u, platformPart.references);
}

TEST_F(AudioPartInitialize, FreesANameThatThereIsNoMemoryToCopy)
{
    start();
    support::ScriptedPart platformPart("part");
    platformPart.name = "Speakers";
    {
        support::AllocationProbe probe;
        platformPart.afterName = [&probe] { probe.failOnce(); };

        EXPECT_THROW(const AudioPart part(platformPart.handle()), std::bad_alloc);
    }
    EXPECT_EQ(0, simulation().census().taskBlocks());
    EXPECT_EQ(1u, platformPart.references);
}
#endif
