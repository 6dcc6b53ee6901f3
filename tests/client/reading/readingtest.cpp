#include "tests/client/reading/readingtest.h"

#include <cstdio>

const reading::EndpointReading* Everything::find(const std::string& id) const
{
    for (const reading::EndpointReading& endpoint : listing.endpoints)
    {
        if (endpoint.content.id.text() == id)
            return &endpoint;
    }
    return nullptr;
}

std::vector<sonavit::Problem> Everything::problems() const
{
    std::vector<sonavit::Problem> all = listing.problems;
    all.insert(all.end(), defaults.problems.begin(), defaults.problems.end());
    all.insert(all.end(), waveIds.problems.begin(), waveIds.problems.end());
    for (const sonavit::Card& card : cards)
    {
        all.insert(all.end(), card.problems().begin(), card.problems().end());
        for (const sonavit::Endpoint& endpoint : card.endpoints())
        {
            for (const sonavit::EndpointProblem& each : endpoint.problems())
                all.push_back(each.problem);
        }
    }
    return all;
}

sim::Simulation& ReadingTest::start(sim::Machine machine)
{
    sim::Simulation& simulation = play(std::move(machine));
    m_com.emplace();
    m_enumerator = std::make_unique<reading::Enumerator>(reading::createEnumerator().value());
    return simulation;
}

void ReadingTest::TearDown()
{
    m_enumerator.reset();
    m_com.reset();
    ClientTest::TearDown();
}

reading::EndpointReading ReadingTest::open(const std::string& id)
{
    return reading::openEndpoint(enumerator(), sonavit::EndpointId(id)).value();
}

reading::EndpointReading ReadingTest::read(const std::string& id)
{
    reading::EndpointReading endpoint = open(id);
    reading::readEndpoint(endpoint);
    return endpoint;
}

Everything ReadingTest::readEverything()
{
    Everything all;
    all.listing = reading::listEndpoints(enumerator());
    for (reading::EndpointReading& endpoint : all.listing.endpoints)
        reading::readEndpoint(endpoint);
    all.defaults = reading::readDefaults(enumerator());
    all.waveIds = reading::readWaveIds();
    reading::Parents parents;
    all.cards = reading::groupIntoCards(all.listing.endpoints, {}, parents);
    return all;
}

std::vector<sonavit::Problem> problemsOf(const reading::EndpointReading& reading, sonavit::EndpointField field)
{
    std::vector<sonavit::Problem> problems;
    for (const sonavit::EndpointProblem& each : reading.content.problems)
    {
        if (each.field == field)
            problems.push_back(each.problem);
    }
    return problems;
}

void KeepingWitness::failed(std::string_view operation, std::string_view object, HRESULT code)
{
    char number[16];
    std::snprintf(number, sizeof number, "0x%08X", static_cast<unsigned>(code));
    seen.push_back(std::string(operation) + " " + std::string(object) + " " + number);
}
