// A module that uses the library, as a plug-in would. The program that loads it does not link the library, so unloading
// this module unloads the library, too.

#include "libSonavit/libsonavit.h"
#include "tests/unloading/module.h"

#include <vector>

namespace
{
/// Exists until the process ends, because a card cannot unregister an observer.
class Observer final : public SoundCardObserver
{
public:
    void onDeviceStateChanged() override {}
    void onDeviceAdded() override {}
    void onDeviceRemoved() override {}
};

/// What the module keeps: for good, as the library may use an observer to its own end, after that of the module.
struct Kept
{
    Observer observer;
    std::vector<SoundCard> cards;
};

Kept* kept = nullptr;
}

/// Discovers the cards, keeps them and registers an observer with each.
/// @return the number of cards
UNLOADING_EXPORT unsigned keepCards()
{
    if (kept == nullptr)
        kept = new Kept;
    const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    for (unsigned int i = 0; i < cards.size(); ++i)
    {
        kept->cards.push_back(cards[i]);
        kept->cards.back().registerPlaybackObserver(BorrowedPointer<SoundCardObserver>(&kept->observer));
    }
    return cards.size();
}

/// Destroys the cards. The clients that they have registered stay with the shared enumerator.
UNLOADING_EXPORT void dropCards()
{
    kept->cards.clear();
}

/// What outlives the module. A program that looks for lost memory remembers it.
UNLOADING_EXPORT const void* keptObjects()
{
    return kept;
}
