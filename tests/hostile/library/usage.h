/// @file
/// A program that uses everything of the object model.
#pragma once

#include "libSonavit/soundcard.h"
#include "simulator/simulation.h"

#include <string>

namespace hostile
{
/// Finds the cards, and expects what holds for them on any platform: paths and endpoints that are there once.
qor::Array<SoundCard> findCards();
/// Asks each card for its jacks, selectors and endpoints, and each endpoint for its number, flow and volume.
void askCards(qor::Array<SoundCard>& cards);
/// Finds the hardware controls of each endpoint, and reads and sets them. A gap in the graph is an IndexOutOfBounds.
void findControls(const qor::Array<SoundCard>& cards);
/// Walks from each connector to its neighbours and to the device that owns it.
void walkParts(qor::Array<SoundCard>& cards);
/// Writes each endpoint's format back as it is.
void writeFormats(qor::Array<SoundCard>& cards);
/// Looks for each card by its instance id, and asks what it has.
void findById(qor::Array<SoundCard>& cards);
/// Asks each endpoint whether it is the default, and registers for changes of its volume, which it then causes.
void askForDefaultsAndChanges(qor::Array<SoundCard>& cards);
/// Announces changes of all endpoints, of none and of unknown ones.
void announceEverything(sim::Simulation& simulation);
/// All that the cards are found to have: ids, names and states of endpoints, and the connectors with their links.
std::string portraitOf(const qor::Array<SoundCard>& cards);
}
