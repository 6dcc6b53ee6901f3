/// @file
/// COM on the machine's notification thread.
#pragma once

#include <memory>

namespace sim
{
class State;

/// Initialises COM; not called where the machine's callback thread is bare.
void enterNotificationThread(const std::weak_ptr<State>& state);
void leaveNotificationThread();
}
