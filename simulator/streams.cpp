#include "simulator/streams.h"

#include "simulator/core/state.h"

#include <stdexcept>
#include <utility>

namespace sim
{
Streams::Streams(std::shared_ptr<State> state) : m_state(std::move(state)) {}

void Streams::driveClock()
{
    m_state->streams.drive();
}

void Streams::advance(std::chrono::nanoseconds step)
{
    if (!m_state->streams.isDriven())
        throw std::logic_error("the streams' clock runs by itself; call driveClock() before advance()");
    m_state->streams.advance(step);
}

void Streams::signalWith(std::function<void(HANDLE)> signal)
{
    m_state->streams.signalWith(std::move(signal));
}
}
