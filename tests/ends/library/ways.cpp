#include "tests/ends/library/ways.h"

#include "simulator/redirection.h"
#include "tests/ends/machine/preparation.h"

namespace ends
{
Ways allWays()
{
    return returns() + statics() + handlers() + callbacks() + endingThreads() + forks();
}

/// The machine lacks some properties, which each discovery reports; they are no news here.
void prepareForTheMachine()
{
    qor::LogFactory::setSink([](const qor::LogRecord&) {});
    [[maybe_unused]] static auto& lasting = *new sim::Redirection(reinterpret_cast<const void*>(&enumerateSoundCards));
}

qor::Array<SoundCard> discover()
{
    CoInitialize(nullptr);
    machine().registerOnThisThread();
    qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    printNumber(cards);
    return cards;
}

void Teller::onDeviceStateChanged()
{
    printLine("told");
}

void Teller::onDeviceAdded() {}

void Teller::onDeviceRemoved() {}

void observe(qor::Array<SoundCard>& cards, SoundCardObserver& observer)
{
    for (unsigned int i = 0; i < cards.size(); ++i)
        cards[i].registerPlaybackObserver(BorrowedPointer<SoundCardObserver>(&observer));
}

void causeAnEvent()
{
    machine().events().unplug(speakers());
    machine().events().waitForClients();
}

void printNumber(const qor::Array<SoundCard>& cards)
{
    printLine((std::to_string(cards.size()) + " cards").c_str());
}
}
