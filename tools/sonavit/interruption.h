#pragma once

#include <chrono>

namespace sonavit::program
{
/// Defers the end of the process that the user or the system requests.
///
/// Without an Interruption such a request ends the process at once, as the system does by default. While one lives, the
/// first request is noted and wait() returns, so that its owner can put back what it has changed; later requests change
/// nothing. The requests are, off Windows, SIGINT, SIGTERM, SIGHUP, SIGQUIT and SIGPIPE, unless the parent process
/// ignores them; on Windows Ctrl-C, Ctrl-Break, the closing of the console window, logging off and shutting down.
/// One at a time.
class Interruption
{
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    /// Waits for @p duration or for the first request, also one from before the call. Off Windows it also counts as a
    /// request that the reader of standard output has gone.
    /// @return whether the end was requested
    static bool wait(std::chrono::milliseconds duration);

    /// Whether the noted request is that the reader of standard output has gone. Always false on Windows.
    static bool isOutputLost();

    /// Ends the process in the way of the noted request: off Windows by its signal, so that a shell shows 128 plus
    /// the signal's number. @return the exit code if the process goes on: on Windows that of a program that Ctrl-C
    /// ended; off Windows the number a shell would show
    static int end();
};
}
