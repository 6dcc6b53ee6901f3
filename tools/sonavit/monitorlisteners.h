/// What the platform's threads call, each of which passes on to a monitor, if that is still there.
///
/// An observer cannot be taken off a card, and a call may be under way when a registration ends: so listeners live as
/// long as the process.
#pragma once

#include "libSonavit/soundcardobserver.h"
#include "platform/coreaudio.h"

#include <cstddef>
#include <memory>

namespace sonavit
{
class Monitor;

/// A listener to one side of a card.
SoundCardObserver& makeCardListener(const std::weak_ptr<Monitor>& monitor, std::size_t card, EDataFlow flow);

/// What a VolumeChangeNotification calls, and with what.
struct VolumeListener
{
    std::weak_ptr<Monitor> monitor;
    std::size_t watch;

    static void pass(void* listener);
};

VolumeListener& makeVolumeListener(const std::weak_ptr<Monitor>& monitor, std::size_t watch);

/// A listener to what cards do not tell: defaults, and endpoints of cards that were not there before.
IMMNotificationClient& makeSystemListener(const std::weak_ptr<Monitor>& monitor);
}
