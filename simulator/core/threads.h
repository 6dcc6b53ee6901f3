/// @file
/// COM on the machine's notification thread.
#pragma once

#include <memory>

namespace sim
{
class State;

void enterNotificationThread(const std::weak_ptr<State>& state);
void leaveNotificationThread();
}
