/// @file
/// What an instrument measures from outside, each a function of a name of its own; nothing else is in them.
#pragma once

#include "client/watching/listeners.h"
#include "plainclient.h"
#include "sonavit/system.h"

#include <optional>

namespace bench
{
/// Begins the System and waits for its first snapshot. The rest of it is sonavit::watching::Watcher::start(), on the
/// worker.
void measureSnapshot(std::optional<sonavit::System>& audio, const sonavit::System::Options& options);
/// The same without the layer.
void measurePlain(plain::Client& client);
/// A change that has happened; the rest of it is sonavit::watching::Watcher::refresh() or step(), on the worker.
void measureRefresh(sonavit::System& audio);
/// One notification, on the platform's thread.
void measureVolumeNotification(sonavit::watching::VolumeListener& listener, AUDIO_VOLUME_NOTIFICATION_DATA& data);
void measurePropertyNotification(sonavit::watching::DeviceListener& listener, LPCWSTR endpoint);
}
