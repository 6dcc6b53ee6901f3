// References to the endpoints of the machines that ship, as the layer reads them.
#include "tests/client/reading/readingtest.h"

#include "sonavit/reference.h"
#include "sonavit/snapshot.h"

#include <gtest/gtest.h>

#include <cctype>

namespace
{
using namespace sonavit;

class ReferenceOnMachines : public ReadingTest, public testing::WithParamInterface<const char*>
{
protected:
    Snapshot snapshotOf(const sim::Machine& machine)
    {
        start(machine);
        Snapshot::Content content;
        content.cards = readEverything().cards;
        return Snapshot(std::move(content));
    }
};

/// The same computer after all drivers were installed anew: all ids are new, and those of before are @p prefix + new.
Snapshot installedAnew(const Snapshot& snapshot, const std::string& prefix)
{
    Snapshot::Content content = snapshot.content();
    for (Card& card : content.cards)
    {
        Card::Content cardContent = card.content();
        for (Endpoint& endpoint : cardContent.endpoints)
        {
            Endpoint::Content endpointContent = endpoint.content();
            endpointContent.id = EndpointId(prefix + endpoint.id().text());
            endpoint = Endpoint(std::move(endpointContent));
        }
        card = Card(std::move(cardContent));
    }
    return Snapshot(std::move(content));
}

TEST_P(ReferenceOnMachines, FindsEachEndpointExactly)
{
    const Snapshot snapshot = snapshotOf(sim::findMachine(GetParam()));

    for (const Endpoint& endpoint : snapshot.endpoints())
    {
        const Reference reference = refer(snapshot, endpoint.id()).value();
        const Resolution resolution = resolve(snapshot, Reference::parse(reference.text()).value());

        EXPECT_LE(reference.text().size(), 512u) << endpoint;
        EXPECT_EQ(resolution.kind, Resolution::Kind::exact) << endpoint;
        EXPECT_EQ(resolution.candidates.at(0).place.endpoint, endpoint);
    }
}

TEST_P(ReferenceOnMachines, TakesNoEndpointForAnotherOneAfterAllDriversWereInstalledAnew)
{
    const Snapshot before = snapshotOf(sim::findMachine(GetParam()));
    const Snapshot after = installedAnew(before, "new.");

    for (const Endpoint& endpoint : before.endpoints())
    {
        const Resolution resolution = resolve(after, refer(before, endpoint.id()).value());
        const std::optional<CardEndpoint> best = resolution.best();

        EXPECT_NE(resolution.kind, Resolution::Kind::exact) << endpoint;
        for (const Candidate& candidate : resolution.candidates)
            EXPECT_EQ(candidate.place.endpoint.flow(), endpoint.flow());
        if (endpoint.state() == State::notPresent)
            continue;                                     // a present one may take its place
        if (!endpoint.name() && !endpoint.instancePath()) // whose properties cannot be read
        {
            EXPECT_EQ(resolution.kind, Resolution::Kind::none);
            continue;
        }
        ASSERT_TRUE(best.has_value()) << endpoint << "\n" << resolution;
        EXPECT_EQ(best->endpoint.id().text(), "new." + endpoint.id().text()) << resolution;
    }
}

std::string nameOf(const testing::TestParamInfo<const char*>& info)
{
    std::string name = info.param;
    for (char& character : name)
        if (std::isalnum(static_cast<unsigned char>(character)) == 0)
            character = '_';
    return name;
}

INSTANTIATE_TEST_SUITE_P(Shipped, ReferenceOnMachines,
                         testing::Values("bluetooth", "broken", "crowded", "desktop", "empty", "laptop", "laptop-user",
                                         "published", "remote-desktop", "studio", "virtual", "waking"),
                         nameOf);
}
