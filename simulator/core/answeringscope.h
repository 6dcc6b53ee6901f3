/// @file
/// Marks the machine's own work on a thread, and the work of the clients that it calls.
#pragma once

#include "simulator/answering.h"

namespace sim
{
/// While it lives, isAnswering() returns @p isAnswering on this thread. Scopes end in the reverse order of their
/// beginning.
class AnsweringScope
{
public:
    explicit AnsweringScope(bool isAnswering) noexcept;
    ~AnsweringScope();
    AnsweringScope(const AnsweringScope&) = delete;
    AnsweringScope& operator=(const AnsweringScope&) = delete;

private:
    const bool m_former;
};
}
