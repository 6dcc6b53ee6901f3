/// @file
/// A program that uses everything of the client layer, and looks at what it gets.
#pragma once

#include "simulator/simulation.h"
#include "sonavit/system.h"

namespace hostile
{
/// Reads, and expects values that keep the promises of their types: ids that are there once, titles that say something,
/// percents within their range, texts that are UTF-8.
void readEverything(sonavit::System& audio);
/// Sets all levels, mutes, controls and selectors to what they are, holds a format, saves and restores. Whatever of it
/// is refused is a problem with a sentence.
void changeEverything(sonavit::System& audio);
/// Captures, diagnoses and explains.
void describeEverything(sonavit::System& audio);
/// Announces changes of all endpoints, of none and of unknown ones, and reads what has changed.
void announceEverything(sonavit::System& audio, sim::Simulation& simulation);
}
