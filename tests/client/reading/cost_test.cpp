#include "tests/client/reading/readingtest.h"

#include <map>
#include <sstream>

namespace
{
using ReadingCost = ReadingTest;

/// The journal by operation, without the calls that only free memory.
struct Counts
{
    std::map<std::string, unsigned> byOperation;
    unsigned total = 0;

    explicit Counts(const sim::Journal& journal)
    {
        for (const sim::JournalEntry& entry : journal.entries())
        {
            if (entry.operation == "CoTaskMemFree" || entry.operation == "PropVariantClear")
                continue;
            ++byOperation[entry.operation];
            ++total;
        }
    }

    std::string table() const
    {
        std::ostringstream text;
        for (const auto& [operation, count] : byOperation)
            text << count << '\t' << operation << '\n';
        return text.str();
    }
};

/// Of the 4,200 calls that a first snapshot may make, registrations and wave ids may take 300.
TEST_F(ReadingCost, OfTheCrowdedMachineIsWithinItsBound)
{
    sim::Simulation& simulation = start("crowded");
    simulation.journal().clear();

    const Everything all = readEverything();

    const Counts counts(simulation.journal());
    EXPECT_EQ(120u, all.listing.endpoints.size());
    EXPECT_LE(counts.total, 3900u) << counts.table();
    EXPECT_LE(counts.byOperation.at("waveOutMessage") + counts.byOperation.at("waveInMessage"), 14u);
    RecordProperty("calls", static_cast<int>(counts.total));
}

TEST_F(ReadingCost, OfAnEndpointThatIsNotPresentIsThatOfItsStateAndProperties)
{
    sim::MachineBuilder builder;
    const sim::EndpointBuilder speaker = builder.card("Card").speaker().notPresent();
    sim::Simulation& simulation = start(builder.build());
    reading::EndpointReading endpoint = open(speaker.id());
    simulation.journal().clear();

    reading::readEndpoint(endpoint);

    const Counts counts(simulation.journal());
    EXPECT_EQ(1u, counts.byOperation.at("IMMDevice::GetState"));
    EXPECT_EQ(1u, counts.byOperation.at("IMMDevice::OpenPropertyStore"));
    EXPECT_EQ(counts.total - 2, counts.byOperation.at("IPropertyStore::GetValue")) << counts.table();
    EXPECT_LE(counts.total, 16u);
}

/// What is read again after a change of one endpoint.
TEST_F(ReadingCost, OfOneActiveEndpointIsSmall)
{
    sim::MachineBuilder builder;
    const sim::EndpointBuilder speaker = builder.card("Card").speaker();
    sim::Simulation& simulation = start(builder.build());
    simulation.journal().clear();

    reading::EndpointReading endpoint = read(speaker.id());

    const Counts counts(simulation.journal());
    EXPECT_LE(counts.total, 40u) << counts.table();
    EXPECT_TRUE(endpoint.content.volume);
}

TEST_F(ReadingCost, GrowsByTheSameForEachCard)
{
    const auto cost = [&](unsigned cards)
    {
        sim::MachineBuilder builder;
        for (unsigned index = 0; index < cards; ++index)
        {
            sim::CardBuilder card = builder.card("Card " + std::to_string(index));
            card.speaker();
            card.microphone();
        }
        return builder.build();
    };
    sim::Simulation& simulation = start(cost(10));
    simulation.journal().clear();
    static_cast<void>(readEverything());
    const unsigned ofTen = Counts(simulation.journal()).total;
    simulation.change([&](sim::Machine& machine) { machine = cost(40); });
    simulation.journal().clear();
    static_cast<void>(readEverything());
    const unsigned ofForty = Counts(simulation.journal()).total;

    EXPECT_LE(ofForty, 4 * ofTen);
}
}
