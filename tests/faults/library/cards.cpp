// Finding cards, and what a card has.
#include "benchmarks/direct/card.h"
#include "libSonavit/libsonavit.h"
#include "tests/benchmarks/direct/supportvalues.h"
#include "tests/faults/library/operation.h"

namespace faults::library
{
namespace
{
using directvalues::Lines;

void answerWith(Run& run, const qor::Array<SoundCard>& cards)
{
    Lines lines;
    for (unsigned int i = 0; i < cards.size(); ++i)
        directvalues::add(lines, cards[i]);
    for (const std::string& line : lines)
        run.answer(line);
}

void discover(Run& run)
{
    qor::Array<SoundCard> cards;
    run.act([&] { cards = SoundCard::enumerateSystemSoundDevices(); });
    answerWith(run, cards);
    run.later(std::to_string(SoundCard::enumerateSystemSoundDevices().size()));
}

Lines modelOfDiscovery(sim::Simulation&, const std::function<void()>& arm)
{
    direct::Client client;
    arm();
    Lines lines;
    for (const direct::Card& card : direct::Card::findAll(client))
        directvalues::add(lines, card);
    return lines;
}
}

std::vector<Operation> cardOperations()
{
    return {{"SoundCard::enumerateSystemSoundDevices", discover, modelOfDiscovery}};
}
}
