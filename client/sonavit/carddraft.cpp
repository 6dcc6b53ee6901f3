#include "sonavit/carddraft.h"

namespace sonavit::drafts
{
using matching::idsOf;
using matching::none;

Endpoint CardDraft::take(const matching::Key& key)
{
    const std::vector<Endpoint>& endpoints = former().endpoints();
    if (!m_placesBefore)
        m_placesBefore.emplace(idsOf(endpoints));
    m_isTaken.resize(endpoints.size(), false);
    const std::size_t place = m_placesBefore->of(key);
    require(place != none && !m_isTaken[place], "an endpoint is not there");
    m_isTaken[place] = true;
    ++m_taken;
    return endpoints[place];
}

Draft<Endpoint>& CardDraft::endpoint(const matching::Key& key)
{
    arrange();
    if (!m_placesAfter)
        m_placesAfter.emplace(afterIds());
    const std::size_t place = m_placesAfter->of(key);
    require(place != none, "an endpoint is not there");
    return (*m_endpoints)[place];
}

Card CardDraft::finished()
{
    if (m_taken > 0 || !m_placed.empty())
        arrange();
    if (m_endpoints)
    {
        std::vector<Endpoint> endpoints;
        endpoints.reserve(m_endpoints->size());
        for (Draft<Endpoint>& endpoint : *m_endpoints)
            endpoints.push_back(endpoint.take());
        content().endpoints = std::move(endpoints);
    }
    return m_card.take();
}

void CardDraft::arrange()
{
    if (m_endpoints)
        return;
    std::vector<Endpoint> kept;
    const std::vector<Endpoint>& endpoints = former().endpoints();
    for (std::size_t i = 0; i < endpoints.size(); ++i)
    {
        if (m_isTaken.empty() || !m_isTaken[i])
            kept.push_back(endpoints[i]);
    }
    m_endpoints.emplace();
    for (Endpoint& endpoint : arranged(std::move(kept), std::move(m_placed)))
        m_endpoints->emplace_back(std::move(endpoint));
}

std::vector<std::string_view> CardDraft::afterIds() const
{
    std::vector<std::string_view> ids;
    for (const Draft<Endpoint>& endpoint : *m_endpoints)
        ids.emplace_back(endpoint.former().id().text());
    return ids;
}
}
