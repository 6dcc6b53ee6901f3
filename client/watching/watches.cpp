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

void append(std::vector<Problem>& all, const std::vector<Problem>& more)
{
    all.insert(all.end(), more.begin(), more.end());
}

std::vector<Problem> problemsOf(const Hardware& hardware)
{
    std::vector<Problem> problems = hardware.problems;
    for (const Hardware::EndpointControls& endpoint : hardware.controls)
    {
        for (const Control& control : endpoint.controls)
            append(problems, control.problems);
    }
    for (const Selector& selector : hardware.selectors)
        append(problems, selector.problems);
    return problems;
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
    append(hardware.problems, problems);
    Reading reading = readingOf(card.id(), hardware, watched.reading);
    std::string endpoints = endpointsOf(card);
    // Nothing below fails.
    watched.release();
    watched.reading = std::move(reading);
    watched.isReadingNew = true;
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

Watches::Cards::iterator Watches::find(std::uint32_t key)
{
    const auto isMeant = [key](const auto& card) { return card.second.key == key; };
    return std::find_if(m_cards.begin(), m_cards.end(), isMeant);
}

std::optional<CardId> Watches::read(std::uint32_t key)
{
    const auto found = find(key);
    if (found == m_cards.end() || found->second.walk == nullptr)
        return std::nullopt;
    Watched& watched = found->second;
    Hardware hardware = watched.walk->hardware(found->first);
    append(hardware.problems, watched.registrationProblems);
    watched.reading = readingOf(found->first, hardware, watched.reading);
    watched.isReadingNew = true;
    watched.hardware = std::move(hardware);
    return found->first;
}

std::optional<CardId> Watches::readAgain(std::uint32_t key, IMMDeviceEnumerator& enumerator,
                                         const std::vector<Card>& cards)
{
    const auto found = find(key);
    if (found == m_cards.end())
        return std::nullopt;
    Watched& watched = found->second;
    if (watched.walk != nullptr && !watched.walk->hasFailures() && watched.registrationProblems.empty())
        return read(key);
    const auto isMeant = [&](const Card& card) { return card.id() == found->first; };
    const auto card = std::find_if(cards.begin(), cards.end(), isMeant);
    if (card == cards.end())
        return std::nullopt;
    walk(enumerator, *card, watched);
    return found->first;
}

Watches::Reading Watches::readingOf(const CardId& card, const Hardware& hardware, const Reading& former)
{
    Reading reading{card, problemsOf(hardware), false};
    const auto isNew = [&](const Problem& problem)
    { return std::find(former.problems.begin(), former.problems.end(), problem) == former.problems.end(); };
    reading.areNew = std::any_of(reading.problems.begin(), reading.problems.end(), isNew);
    return reading;
}

std::vector<Watches::Reading> Watches::takeReadings()
{
    std::vector<Reading> readings;
    for (auto& [id, watched] : m_cards)
    {
        if (watched.isReadingNew)
            readings.push_back(watched.reading);
    }
    for (auto& [id, watched] : m_cards)
        watched.isReadingNew = false;
    return readings;
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
    reading.problems.clear();
    isReadingNew = false;
}
}
