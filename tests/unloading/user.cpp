// A DLL that uses the library, as a plug-in of some program would. The program that loads it knows nothing of the
// library, which therefore goes along with it.

#include "libSonavit/libsonavit.h"

#include <vector>

namespace
{
/// There is one for the life of the process, as a card does not let its observers go.
class Observer final : public SoundCardObserver
{
public:
    void onDeviceStateChanged() override {}
    void onDeviceAdded() override {}
    void onDeviceRemoved() override {}
};

std::vector<SoundCard>* kept = nullptr;
}

/// Finds the cards, keeps them and listens to them.
/// @return how many cards there are
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

/// Lets the cards go. What they have registered stays with the shared enumerator.
extern "C" __declspec(dllexport) void dropCards()
{
    delete kept;
    kept = nullptr;
}
