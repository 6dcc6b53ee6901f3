#include "client/watching/systemstate.h"

#include <new>
#include <utility>

namespace sonavit
{
inline namespace v1
{
Subscription::Subscription() noexcept = default;
Subscription::Subscription(std::shared_ptr<State> state) noexcept : m_state(std::move(state)) {}
Subscription::Subscription(Subscription&& other) noexcept = default;

Subscription& Subscription::operator=(Subscription&& other) noexcept
{
    if (this == &other)
        return *this;
    const Subscription former(std::move(m_state)); // ends as the destructor says
    m_state = std::move(other.m_state);
    return *this;
}

Subscription::~Subscription()
{
    stop();
    if (m_state != nullptr && m_state->hub != nullptr && !worker::isForked() && !worker::isEnding())
        m_state->hub->waitFor(*m_state->subscriber);
}

Snapshot Subscription::initial() const
{
    return m_state == nullptr || m_state->subscriber == nullptr ? Snapshot() : m_state->subscriber->initial;
}

void Subscription::stop() noexcept
{
    if (m_state != nullptr && m_state->hub != nullptr && !worker::isForked() && !worker::isEnding())
        m_state->hub->stop(*m_state->subscriber);
}

bool Subscription::isActive() const noexcept
{
    return m_state != nullptr && m_state->hub != nullptr && !worker::isForked() &&
           m_state->hub->isActive(*m_state->subscriber);
}

std::optional<Problem> Subscription::lastProblem() const
{
    if (m_state == nullptr)
        return std::nullopt;
    if (worker::isForked())
        return endedProblem("subscribe");
    if (m_state->hub == nullptr)
        return m_state->problem;
    return m_state->hub->problemOf(*m_state->subscriber);
}

Watch::Watch() noexcept = default;
Watch::Watch(std::shared_ptr<State> state) noexcept : m_state(std::move(state)) {}
Watch::Watch(Watch&& other) noexcept = default;

Watch& Watch::operator=(Watch&& other) noexcept
{
    if (this == &other)
        return *this;
    stop();
    m_state = std::move(other.m_state);
    return *this;
}

Watch::~Watch()
{
    stop();
}

void Watch::stop() noexcept
{
    const std::shared_ptr<State> state = std::move(m_state);
    m_state = nullptr;
    if (state == nullptr || worker::isForked() || worker::isEnding())
        return;
    try
    {
        state->worker->post(worker::Urgency::change,
                            [watcher = state->watcher, number = state->number]
                            {
                                if (const std::shared_ptr<watching::Watcher> there = watcher.lock())
                                    there->unwatch(number);
                            });
    }
    catch (const std::bad_alloc&)
    {
        return; // the card stays watched until the end of the System
    }
}
}
}
