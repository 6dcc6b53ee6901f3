#include "client/watching/watches.h"

#include <algorithm>
#include <utility>

namespace sonavit::watching
{
namespace
{
/// What decides whether a walk is still the right one.
std::string endpointsOf(const Card& card)
{
    std::string text;
    for (const Endpoint& endpoint : card.endpoints())
    {
        const int state = endpoint.state() ? static_cast<int>(*endpoint.state()) : -1;
        text +=
            endpoint.id().text() + ' ' + std::to_string(state) + ' ' + std::to_string(endpoint.incarnation()) + '\n';
    }
    return text;
}
}

Watches::Watches(std::shared_ptr<Inbox> inbox) : m_inbox(std::move(inbox)) {}

std::uint64_t Watches::begin(const CardId& card)
{
    Watched& watched = m_cards[card];
    if (watched.key == 0)
        watched.key = ++m_lastKey;
    watched.numbers.push_back(++m_lastNumber);
    return m_lastNumber;
}

void Watches::end(std::uint64_t number)
{
    for (auto card = m_cards.begin(); card != m_cards.end(); ++card)
    {
        std::vector<std::uint64_t>& numbers = card->second.numbers;
        numbers.erase(std::remove(numbers.begin(), numbers.end(), number), numbers.end());
        if (!numbers.empty())
            continue;
        card->second.release();
        m_cards.erase(card);
        return;
    }
}

void Watches::follow(IMMDeviceEnumerator& enumerator, const std::vector<Card>& cards)
{
    for (auto& [id, watched] : m_cards)
    {
        const auto isMeant = [&id = id](const Card& card) { return card.id() == id; };
        const auto card = std::find_if(cards.begin(), cards.end(), isMeant);
        if (card == cards.end())
            watched.release();
        else if (watched.walk == nullptr || !watched.isTrusted || watched.endpoints != endpointsOf(*card))
            walk(enumerator, *card, watched);
    }
}

/// Registers first and reads then, so that no change falls between the two.
void Watches::walk(IMMDeviceEnumerator& enumerator, const Card& card, Watched& watched)
{
    auto walk = std::make_unique<reading::HardwareWalk>(enumerator, std::vector<Card>{card});
    std::vector<ControlRegistration> registrations;
    std::vector<Problem> problems;
    for (const auto& control : walk->changingControls(card.id()))
    {
        ControlRegistration registration = registerForControl(*control.part, m_inbox, watched.key, control.control);
        if (registration)
            registrations.push_back(std::move(registration));
        else
            problems.push_back(
                Problem::ofCall("IPart::RegisterControlChangeCallback", card.id().text(), registration.result()));
    }
    Hardware hardware = walk->hardware(card.id());
    hardware.problems.insert(hardware.problems.end(), problems.begin(), problems.end());
    std::string endpoints = endpointsOf(card);
    // Nothing below fails.
    watched.release();
    watched.hardware = std::move(hardware);
    watched.registrationProblems = std::move(problems);
    watched.registrations = std::move(registrations);
    watched.walk = std::move(walk);
    watched.endpoints = std::move(endpoints);
    watched.isTrusted = true;
}

void Watches::distrust() noexcept
{
    for (auto& [id, watched] : m_cards)
        watched.isTrusted = false;
}

std::optional<CardId> Watches::read(std::uint32_t key)
{
    const auto isMeant = [key](const auto& card) { return card.second.key == key; };
    const auto found = std::find_if(m_cards.begin(), m_cards.end(), isMeant);
    if (found == m_cards.end() || found->second.walk == nullptr)
        return std::nullopt;
    Watched& watched = found->second;
    watched.hardware = watched.walk->hardware(found->first);
    watched.hardware->problems.insert(watched.hardware->problems.end(), watched.registrationProblems.begin(),
                                      watched.registrationProblems.end());
    return found->first;
}

std::optional<std::uint32_t> Watches::keyOf(const CardId& card) const
{
    const auto found = m_cards.find(card);
    return found == m_cards.end() ? std::nullopt : std::optional<std::uint32_t>(found->second.key);
}

std::vector<Hardware> Watches::hardware(const std::vector<Card>& cards) const
{
    std::vector<Hardware> result;
    if (m_cards.empty())
        return result;
    for (const Card& card : cards)
    {
        const auto found = m_cards.find(card.id());
        if (found != m_cards.end() && found->second.hardware)
            result.push_back(*found->second.hardware);
    }
    return result;
}

void Watches::release() noexcept
{
    for (auto& [id, watched] : m_cards)
        watched.release();
}

void Watches::Watched::release() noexcept
{
    registrations.clear();
    walk.reset();
    hardware.reset();
}
}
