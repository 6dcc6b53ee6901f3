/// @file
/// What the machine's notification thread does to be a thread with COM.
#pragma once

#include <memory>

namespace sim
{
class State;

void enterNotificationThread(const std::weak_ptr<State>& state);
void leaveNotificationThread();
}
