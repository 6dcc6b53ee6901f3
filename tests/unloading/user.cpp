// A DLL that uses the library, as a plug-in would. The program that loads it does not link the library, so freeing this
// DLL unloads the library, too.

#include "libSonavit/libsonavit.h"

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
extern "C" __declspec(dllexport) unsigned keepCards()
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
extern "C" __declspec(dllexport) void dropCards()
{
    delete kept;
    kept = nullptr;
}
