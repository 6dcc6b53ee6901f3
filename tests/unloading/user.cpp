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

std::vector<SoundCard>* kept = nullptr;
}

/// Discovers the cards, keeps them and registers an observer with each.
/// @return the number of cards
UNLOADING_EXPORT unsigned keepCards()
{
    static auto* const observer = new Observer;
    const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    kept = new std::vector<SoundCard>;
    for (unsigned int i = 0; i < cards.size(); ++i)
    {
        kept->push_back(cards[i]);
        kept->back().registerPlaybackObserver(BorrowedPointer<SoundCardObserver>(observer));
    }
    return cards.size();
}

/// Destroys the cards. The clients that they have registered stay with the shared enumerator.
UNLOADING_EXPORT void dropCards()
{
    delete kept;
    kept = nullptr;
}
