#pragma once

#include <chrono>

namespace sonavit
{
/// Catches the user's wish to end, Ctrl-C or a request of the system, for as long as it lives. One at a time.
class Interruption
{
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    /// Waits so long, or until the user wants an end. @return whether the user wants an end
    static bool wait(std::chrono::milliseconds duration);
};
}
