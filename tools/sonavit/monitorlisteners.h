/// The listeners that the platform's threads call. Each passes its calls to a monitor, if that still exists.
///
/// An observer cannot be removed from a card, and a call may be in progress when a registration ends: so the listeners
/// live as long as the process.
#pragma once

#include "libSonavit/soundcardobserver.h"
#include "platform/coreaudio.h"

#include <cstddef>
#include <memory>

namespace sonavit::program
{
class Monitor;

/// A listener to the endpoints of one flow of a card.
SoundCardObserver& makeCardListener(const std::weak_ptr<Monitor>& monitor, std::size_t card, EDataFlow flow);

/// What a VolumeChangeNotification calls, and its argument.
struct VolumeListener
{
    std::weak_ptr<Monitor> monitor;
    std::size_t watch;

    static void pass(void* listener);
};

VolumeListener& makeVolumeListener(const std::weak_ptr<Monitor>& monitor, std::size_t watch);

/// A listener to what cards do not notify: defaults, and endpoints of cards that were added later.
IMMNotificationClient& makeSystemListener(const std::weak_ptr<Monitor>& monitor);
}
