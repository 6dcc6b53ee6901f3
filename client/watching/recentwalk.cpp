#include "client/watching/recentwalk.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace sonavit::watching
{
namespace
{
using namespace std::chrono_literals;

constexpr auto lifetime = 1s;

bool hasSameHardware(const Card& left, const Card& right)
{
    const auto isSame = [](const Endpoint& one, const Endpoint& other)
    {
        return one.id() == other.id() && one.state() == other.state() && one.incarnation() == other.incarnation() &&
               one.title() == other.title();
    };
    return left.id() == right.id() && std::equal(left.endpoints().begin(), left.endpoints().end(),
                                                 right.endpoints().begin(), right.endpoints().end(), isSame);
}
}

std::shared_ptr<reading::HardwareWalk> RecentWalk::find(const Card& card, Clock::Time now) const
{
    const bool isFit = m_walk != nullptr && now < m_due && hasSameHardware(m_card, card) && !m_walk->hasFailures();
    return isFit ? m_walk : nullptr;
}

void RecentWalk::keep(const Card& card, std::shared_ptr<reading::HardwareWalk> walk, Clock::Time now)
{
    m_card = card;
    m_walk = std::move(walk);
    m_due = now + lifetime;
}

void RecentWalk::release() noexcept
{
    m_walk = nullptr;
    m_due = Clock::never;
}
}
