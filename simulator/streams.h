/// @file
/// The clock and the events of a simulated machine's streams.
#pragma once

#include "platform/coreaudio.h"

#include <chrono>
#include <functional>
#include <memory>

namespace sim
{
class State;

/// Streams play and record without sound: time passes, buffers empty and fill, positions advance.
///
/// By default the time is the real one, and a thread of the simulator signals the events of event-driven streams at the
/// end of each period. Any thread may call any operation.
class Streams
{
public:
    explicit Streams(std::shared_ptr<State> state);

    /// Stops the clock: from now on only advance() moves it. There is no way back. No thread signals events any more:
    /// it waits for the signal that runs, unless it is called in a signal.
    void driveClock();
    /// Moves the clock, which driveClock() must have stopped, and signals the events of all periods that end meanwhile,
    /// on the calling thread; at each signal the clock shows the end of that period. A signal may move it further.
    /// @throws std::logic_error if the clock runs by itself.
    void advance(std::chrono::nanoseconds step);

    /// Calls @p signal with the client's handle at the end of each period instead of the system's SetEvent; null
    /// restores that. Off Windows there is no SetEvent: without a function of the test's own a signal has no effect.
    /// @p signal may call the stream. It runs on the thread that moves the clock. The function before it has returned
    /// for the last time when this returns, unless it is called in a signal. IAudioClient::Stop and the last Release of
    /// a client wait for its signal in the same way.
    void signalWith(std::function<void(HANDLE)> signal);

private:
    std::shared_ptr<State> m_state;
};
}
