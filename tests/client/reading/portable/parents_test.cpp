// On Windows the configuration manager is the system's own.
#include "client/reading/grouping.h"
#include "tests/client/reading/readingtest.h"

namespace
{
using GroupingParents = ReadingTest;

TEST_F(GroupingParents, AreThoseOfTheConfigurationManager)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.usbCard("USB Audio");
    card.speaker();
    card.microphone();
    builder.machine().deviceInstances.at(0).parent = "USB\\ROOT_HUB";
    start(builder.build());
    const Everything all = readEverything();
    reading::Parents parents;

    const std::vector<sonavit::Card> cards = reading::groupIntoCards(all.listing.endpoints, {}, parents);

    ASSERT_EQ(1u, cards.size());
    EXPECT_EQ(card.instanceId(), cards[0].instanceId());
    EXPECT_EQ("USB\\ROOT_HUB", cards[0].parent());
}

/// The parents of devices are asked for once, however often the cards are put together.
TEST_F(GroupingParents, AreAskedForOnceForEachDevice)
{
    sim::Simulation& simulation = start("desktop");
    Everything all = readEverything();
    reading::Parents parents;
    simulation.journal().clear();

    const std::vector<sonavit::Card> first = reading::groupIntoCards(all.listing.endpoints, {}, parents);
    const std::size_t questions = simulation.journal().size();
    const std::vector<sonavit::Card> second = reading::groupIntoCards(all.listing.endpoints, first, parents);

    EXPECT_EQ(first.size(), questions);
    EXPECT_EQ(questions, simulation.journal().size());
}
}
