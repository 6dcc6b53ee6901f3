/// @file
/// What an instrument measures from outside, each a function of a name of its own; nothing else is in them. An event is
/// measured in the client's own OnDeviceStateChanged.
#pragma once

#include "direct/card.h"
#include "libSonavit/libsonavit.h"

#include <vector>

namespace bench
{
/// An endpoint and the card that it belongs to.
struct LibraryEndpoint
{
    const SoundCard* card;
    AudioDevice device;
};

struct DirectEndpoint
{
    const direct::Card* card;
    direct::Device device;
};

// The time to destroy the result is in each of them.
void measureLibraryDiscovery();
void measureLibraryLists();
/// Finds the controls of each endpoint.
void measureLibraryControls(const std::vector<LibraryEndpoint>& endpoints);

// The same without the library.
void measureDirectDiscovery(direct::Client& client, direct::Registration registration);
void measureDirectLists();
void measureDirectControls(const std::vector<DirectEndpoint>& endpoints);
}
