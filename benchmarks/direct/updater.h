/// @file
/// Keeps the lists of a card as the hardware is.
#pragma once

#include "card.h"

#include <memory>

namespace direct
{
/// A client for the events of the card whose data these are. @p client must outlive the events.
ComPtr<IMMNotificationClient> makeUpdater(Client& client, std::shared_ptr<SharedData> data);
}
