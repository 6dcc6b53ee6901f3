// Endpoints that arrive and leave while the account may not open their property stores for writing.
#include "tests/libSonavit/soundcard/supporthotplug.h"
#include "tests/libSonavit/supportstoreaccess.h"

namespace
{
using support::ChosenAccess;
using support::HotPlug;
using support::IdText;
using support::opening;
using support::openingForBoth;
using support::openingForReading;
using testing::ElementsAre;
using testing::IsEmpty;

/// Cards that were found while the account could write; it is ordinary from then on.
class HotPlugOfOrdinaryAccount : public HotPlug
{
protected:
    void SetUp() override
    {
        HotPlug::SetUp();
        simulation().setAccount(sim::Account::ordinary);
    }
};

TEST_F(HotPlugOfOrdinaryAccount, LeavesNewEndpointsOutByDefaultAsTheirCardCannotBeRead)
{
    simulation().events().add(late);

    EXPECT_EQ(2u, playbackDevices().size());
    EXPECT_THAT(playback.notifications, IsEmpty());
    EXPECT_THAT(simulation().journal().of(opening).calls(), ElementsAre(openingForBoth, openingForBoth))
        << "one by the updater of each card";
}

TEST_F(HotPlugOfOrdinaryAccount, KeepsTheListsOfTheCardIfItsProcessReads)
{
    const ChosenAccess access(StoreAccess::writeElseRead);

    simulation().events().add(late);
    simulation().events().plug(headphones);
    simulation().events().remove(late);
    simulation().events().add(foreign);

    EXPECT_EQ(2u, playbackDevices().size());
    EXPECT_THAT(playback.notifications, ElementsAre("added", "state", "removed"));
}

TEST_F(HotPlugOfOrdinaryAccount, AsksForReadingInTheCallbackRightAfterTheDenial)
{
    const ChosenAccess access(StoreAccess::writeElseRead);

    EXPECT_EQ(S_OK, updater().OnDeviceAdded(IdText(late)));

    EXPECT_THAT(simulation().journal().of(opening).calls(), ElementsAre(openingForBoth, openingForReading));
    EXPECT_EQ("Late", playbackDevices()[2].deviceProperty().endpointType.toUtf8());
}
}
