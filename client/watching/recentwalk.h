/// @file
/// A walk through the hardware that is used again. It runs on the worker.
#pragma once

#include "client/reading/hardwarewalk.h"
#include "client/worker/clock.h"
#include "sonavit/card.h"

#include <memory>

namespace sonavit::watching
{
/// The last walk through the hardware of one card, for a short time: who asks for the controls of all endpoints of a
/// card walks through its hardware once. Levels, mutes and selections are read at each question nevertheless.
class RecentWalk
{
public:
    using Clock = worker::Clock;

    /// The walk, if it was through the hardware of this card, no call has failed, and the endpoints of the card are
    /// what they were; null otherwise.
    std::shared_ptr<reading::HardwareWalk> find(const Card& card, Clock::Time now) const;
    void keep(const Card& card, std::shared_ptr<reading::HardwareWalk> walk, Clock::Time now);
    /// When it has to be released; Clock::never without one.
    Clock::Time due() const noexcept { return m_due; }
    void release() noexcept;

private:
    Card m_card;
    std::shared_ptr<reading::HardwareWalk> m_walk;
    Clock::Time m_due = Clock::never;
};
}
