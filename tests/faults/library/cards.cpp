// Finding cards.
#include "benchmarks/direct/card.h"
#include "libSonavit/libsonavit.h"
#include "tests/benchmarks/direct/supportvalues.h"
#include "tests/faults/library/choice.h"
#include "tests/faults/library/operation.h"

#include <memory>

namespace faults::library
{
namespace
{
using directvalues::Lines;

void answerWith(Run& run, const SoundCard& card)
{
    Lines lines;
    directvalues::add(lines, card);
    for (const std::string& line : lines)
        run.answer(line);
}

void discover(Run& run)
{
    qor::Array<SoundCard> cards;
    run.act([&] { cards = SoundCard::enumerateSystemSoundDevices(); });
    for (unsigned int i = 0; i < cards.size(); ++i)
        answerWith(run, cards[i]);
    run.later(std::to_string(SoundCard::enumerateSystemSoundDevices().size()) + " cards");
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

void discoverInterfaces(Run& run)
{
    qor::Array<BorrowedPointer<SoundCardInterface>> cards;
    run.act([&] { enumerateSoundCards(cards); });
    for (unsigned int i = 0; i < cards.size(); ++i)
    {
        answerWith(run, static_cast<SoundCard&>(*cards[i]));
        delete cards[i].get();
    }
}

/// The instance ids of the first two cards, and one that no card has.
std::vector<qor::String> cardIds()
{
    std::vector<qor::String> ids;
    qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    for (unsigned int i = 0; i < cards.size() && i < 2; ++i)
        ids.push_back(cards[i].instanceId());
    ids.emplace_back("unknown");
    return ids;
}

Operation creationOf(std::size_t index)
{
    const auto perform = [=](Run& run)
    {
        const std::vector<qor::String> ids = cardIds();
        const qor::String id = ids[std::min(index, ids.size() - 1)];
        SoundCard card;
        bool isFound = false;
        run.act([&] { isFound = SoundCard::createSoundCard(id, card); });
        if (run.record().thrown.empty() && !isFound && card.deviceId().size() != 0)
            run.report(Kind::answer, "a card is filled in and not found");
        SoundCard again;
        run.later(SoundCard::createSoundCard(id, again) ? "found" : "not found");
    };
    return {"SoundCard::createSoundCard " + std::string(index == 0 ? "first" : "unknown"), perform};
}

void makeCard(Run& run)
{
    run.act([] { const SoundCard card; });
    const SoundCard card;
    run.later(card.deviceId().toUtf8());
}

void copyCards(Run& run)
{
    const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    run.act(
        [&]
        {
            qor::Array<SoundCard> copies = cards;
            if (copies.size() > 0)
                copies[0] = cards[cards.size() - 1];
        });
    run.later(std::to_string(cards.size()) + " cards");
}

void endCards(Run& run)
{
    qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    run.act([&] { cards.clear(); });
    run.later(std::to_string(SoundCard::enumerateSystemSoundDevices().size()) + " cards");
}

std::string answersOf(libSonavit::SysInfoHelper& helper, const qor::String& id)
{
    return id.toUtf8() + (helper.hasAnalogOut(id) ? " analog out" : "") +
           (helper.hasDigitalOut(id) ? " digital out" : "") + (helper.hasLineIn(id) ? " line in" : "") +
           (helper.hasMicIn(id) ? " microphone" : "");
}

void askAboutSystem(Run& run)
{
    const std::vector<qor::String> ids = cardIds();
    run.act(
        [&]
        {
            CoInitialize(nullptr); // the helper's destructor takes this one away, see its class
            libSonavit::SysInfoHelper helper;
            for (const qor::String& id : ids)
                run.answer(answersOf(helper, id));
        });
    CoInitialize(nullptr);
    libSonavit::SysInfoHelper helper;
    for (const qor::String& id : ids)
        run.later(answersOf(helper, id));
}

void endModule(Run& run)
{
    {
        const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    }
    run.act([] { libSonavit::AudioDeviceEnumeratorFactory::m_enumerator = nullptr; });
    run.later(std::to_string(SoundCard::enumerateSystemSoundDevices().size()) + " cards");
}
}

std::vector<Operation> cardOperations()
{
    return {{"SoundCard::enumerateSystemSoundDevices", discover, modelOfDiscovery},
            {"enumerateSoundCards", discoverInterfaces, modelOfDiscovery},
            creationOf(0),
            creationOf(2),
            {"SoundCard::SoundCard", makeCard},
            {"SoundCard copies", copyCards},
            {"~SoundCard", endCards},
            {"SysInfoHelper", askAboutSystem},
            {"end of the module", endModule}};
}
}
