#include "sonavit/card.h"

#include "sonavit/contentfields.h"
#include "tests/client/sonavit/supportsnapshots.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <sstream>

using namespace sonavit;

TEST(CardTitle, IsNeverEmpty)
{
    EXPECT_EQ("Unnamed card", Card().title());
    EXPECT_EQ("Unnamed card", Card(Card::Content()).title());
}

TEST(CardTitle, IsOnOneLineAndControlsNoTerminal)
{
    Card::Content content;
    content.title = "Evil\x1B[2J\nCard \xC3\xA9";

    EXPECT_EQ("Evil\xEF\xBF\xBD[2J\xEF\xBF\xBD"
              "Card \xC3\xA9",
              Card(content).title());
}

TEST(Card, CanBeAssignedToAndDestroyedAfterItWasMovedFrom)
{
    Card::Content content;
    content.title = "Board";
    Card card(content);
    Card moved = std::move(card);
    Card forgotten(content);
    static_cast<void>(Card(std::move(forgotten)));

    card = moved;

    EXPECT_EQ(moved, card);
}

TEST(Card, SharesItsContentWithItsCopies)
{
    const Card card;
    const Card copy = card;

    EXPECT_EQ(&card.content(), &copy.content());
    EXPECT_EQ(card, copy);
}

TEST(Card, KeepsItsEndpointsForALoopOverATemporary)
{
    Card::Content content;
    content.endpoints.resize(2);
    std::size_t count = 0;
    for (const Endpoint& endpoint : Card(content).endpoints())
        count += endpoint.title().empty() ? 0 : 1;

    EXPECT_EQ(2u, count);
}

TEST(Card, IsEqualIfEachFieldIs)
{
    support::SnapshotGenerator generator(5);
    std::set<CardField> different;
    for (int i = 0; i < 200; ++i)
    {
        const Card card = generator.card();
        const Card::Content other = generator.card().content();
        for (const CardField field : allCardFields)
        {
            Card::Content content = card.content();
            copyField(content, other, field);
            const bool isSame = hasSameField(content, card.content(), field);
            ASSERT_EQ(isSame, Card(content) == card) << keyOf(field);
            if (!isSame)
                different.insert(field);
        }
    }
    EXPECT_EQ(allCardFields.size(), different.size());
}

TEST(Card, IsEqualIfItsEndpointsAndItsIdAre)
{
    Card::Content content;
    content.id = CardId("a");
    const Card card(content);
    content.endpoints.resize(1);
    const Card withEndpoint(content);
    content.endpoints.clear();
    content.id = CardId("b");

    EXPECT_NE(card, withEndpoint);
    EXPECT_NE(card, Card(content));
    content.id = CardId("A");
    EXPECT_EQ(card, Card(content));
}

TEST(Card, IsPrintedWithAllFieldsThatHaveAValue)
{
    Card::Content content;
    content.id = CardId("card");
    content.bus = "USB";
    content.endpoints.resize(1);
    std::ostringstream out;
    out << Card(content);

    EXPECT_EQ("Card(id: \"card\", bus: \"USB\", title: \"Unnamed card\", "
              "endpoints: [Endpoint(id: \"\", flow: output)])",
              out.str());
}
