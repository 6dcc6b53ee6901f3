#include "client/diagnosing/findings.h"

#include <algorithm>
#include <map>
#include <utility>

namespace sonavit::diagnosing
{
namespace
{
/// Sorts as the snapshot lists cards and endpoints; what belongs to none is at the beginning.
class Ranks
{
public:
    explicit Ranks(const Snapshot& snapshot)
    {
        std::size_t rank = 0;
        for (const Card& card : snapshot.cards())
        {
            m_cards.emplace(card.id(), ++rank);
            for (const Endpoint& endpoint : card.endpoints())
                m_endpoints.emplace(endpoint.id(), ++rank);
        }
    }

    std::size_t of(const Finding& finding) const
    {
        if (finding.endpoint)
            return rankIn(m_endpoints, *finding.endpoint);
        return finding.card ? rankIn(m_cards, *finding.card) : 0;
    }

private:
    template<class Key>
    std::size_t rankIn(const std::map<Key, std::size_t>& ranks, const Key& key) const
    {
        const auto found = ranks.find(key);
        return found == ranks.end() ? m_cards.size() + m_endpoints.size() + 1 : found->second;
    }

    std::map<CardId, std::size_t> m_cards;
    std::map<EndpointId, std::size_t> m_endpoints;
};
}

void Findings::add(Draft draft, Owners owners)
{
    Finding finding = finished(std::move(draft), owners);
    m_entries.push_back({std::move(finding), std::move(owners)});
}

void Findings::addOfCard(const Card& card, Draft draft)
{
    Owners owners;
    for (const Endpoint& endpoint : card.endpoints())
        owners.push_back(endpoint.id().text());
    Finding finding = finished(std::move(draft), {});
    finding.card = card.id();
    finding.subject = card.title();
    m_entries.push_back({std::move(finding), std::move(owners)});
}

void Findings::addShared(Owners owners, Draft draft)
{
    Finding finding = finished(std::move(draft), {});
    m_entries.push_back({std::move(finding), std::move(owners)});
}

Finding Findings::finished(Draft draft, const Owners& owners) const
{
    Finding finding;
    finding.kind = draft.kind;
    finding.rule = draft.rule;
    finding.sentence = std::move(draft.sentence);
    finding.effect = std::move(draft.effect);
    finding.cause = std::move(draft.cause);
    finding.problem = std::move(draft.problem);
    finding.subject = "this computer";
    if (owners.empty())
        return finding;
    const std::optional<Card> card = m_places.cardOf(owners);
    if (card)
        finding.card = card->id();
    if (owners.size() > 1 && card)
        finding.subject = card->title();
    else
    {
        finding.endpoint = EndpointId(owners.front());
        finding.subject = m_places.titleOf(owners.front());
    }
    return finding;
}

std::vector<Entry> Findings::inOrder() const
{
    const Ranks ranks(m_places.snapshot());
    std::vector<Entry> entries = m_entries;
    std::stable_sort(entries.begin(), entries.end(),
                     [&](const Entry& left, const Entry& right)
                     { return ranks.of(left.finding) < ranks.of(right.finding); });
    return entries;
}

std::vector<Entry> findingsOf(const capturing::Survey& survey, const Snapshot& snapshot)
{
    const Places places(survey, snapshot);
    Findings findings(places);
    findFailures(places, findings);
    findComputerFaults(places, findings);
    findPropertyFaults(places, findings);
    findVolumeFaults(places, findings);
    findControlFaults(places, findings);
    findHardwareFaults(places, findings);
    findOddities(places, findings);
    return findings.inOrder();
}

bool hasHardware(const sim::Device& device) noexcept
{
    return device.state == sim::stateActive || device.state == sim::stateUnplugged;
}
}
