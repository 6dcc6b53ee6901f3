/// @file
/// The ways of a process that uses the object model.
#pragma once

#include "libSonavit/libsonavit.h"
#include "tests/ends/machine/machine.h"

namespace ends
{
Ways returns();       ///< of main(), and what else ends a process
Ways statics();       ///< static and thread_local objects, in every order
Ways handlers();      ///< of atexit
Ways callbacks();     ///< that call exit()
Ways endingThreads(); ///< that end before the process, or with it
Ways forks();         ///< none on Windows

/// Initializes COM on this thread, which ends the process, and discovers the cards.
qor::Array<SoundCard> discover();

/// Writes what it is called for, "told" and a number.
class Teller final : public SoundCardObserver
{
public:
    void onDeviceStateChanged() override;
    void onDeviceAdded() override;
    void onDeviceRemoved() override;
};

/// Registers an observer that lasts with the playback side of each card.
void observe(qor::Array<SoundCard>& cards, SoundCardObserver& observer);

/// Makes the first card's speakers take another state, and waits until all clients have been told.
void causeAnEvent();

/// "3 cards".
void printNumber(const qor::Array<SoundCard>& cards);
}
