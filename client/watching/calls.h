/// @file
/// The calls of subscribers that a thread is inside of.
#pragma once

namespace sonavit::watching
{
/// Whether this thread is inside a call of a subscriber, of any System.
bool isInsideCall() noexcept;

/// On the stack of each call.
class CallScope
{
public:
    CallScope() noexcept;
    ~CallScope();
    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;
};
}
