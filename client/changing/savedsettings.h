/// @file
/// What System::settings() keeps. All of it runs on the worker.
#pragma once

#include "sonavit/settings.h"
#include "sonavit/snapshot.h"

namespace sonavit::reading
{
class HardwareWalk;
}

namespace sonavit::changing
{
/// The levels, mutes and selections of all endpoints that have some, in their order.
/// @param walk through the hardware of all cards
Settings savedSettings(const Snapshot& snapshot, const reading::HardwareWalk& walk);
}
