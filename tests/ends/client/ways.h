/// @file
/// The ways of a process that uses the client layer.
#pragma once

#include "sonavit/client.h"
#include "tests/ends/machine/machine.h"

#include <chrono>
#include <memory>

namespace ends
{
Ways returns();        ///< of main(), and what else ends a process
Ways statics();        ///< static and thread_local objects, in every order
Ways handlers();       ///< of atexit
Ways callbacks();      ///< that call exit()
Ways hangingDrivers(); ///< that never answer
Ways endingThreads();  ///< before the process, or with it
Ways forks();          ///< none on Windows

/// When the last of the program's static objects has ended, prints what they have left with the machine, which is
/// nothing if all has ended in order, and whether the first speakers have the format that they have now.
void tellWhatIsLeft();
/// Prints then only the format.
void tellTheFormat();

sonavit::System::Options withPatience(std::chrono::milliseconds patience);

/// A System that has read; prints the number of its cards.
std::unique_ptr<sonavit::System> beginSystem();
/// The same for a System that is there; it may be one that does not wait.
void read(sonavit::System& system);

sonavit::EndpointId speakersId();
/// Another program moves the volume of the speakers.
void causeAnEvent();
/// A subscriber that does nothing: how often it is called is not the matter here.
void ignore(const sonavit::Change& change);
/// Waits until a subscriber of the System is told of it.
void causeAnEventAndWait(sonavit::System& system);
/// Another format than the speakers have.
sonavit::Format otherFormat();
}
