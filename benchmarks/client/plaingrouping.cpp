#include "OSWindows/configmanager.h"
#include "plainclient.h"
#include "plaintext.h"
#include "qor/string.h"

#include <algorithm>
#include <utility>

namespace plain
{
namespace
{
/// The instance id in an instance path: what stands between its first full stop and the next one.
std::optional<std::string> instanceIdIn(const std::string& path)
{
    const std::size_t first = path.find('.', path.find_first_not_of('.'));
    const std::size_t start = first == std::string::npos ? first : path.find_first_not_of('.', first);
    if (start == std::string::npos)
        return std::nullopt;
    const std::size_t end = path.find('.', start);
    return path.substr(start, end == std::string::npos ? end : end - start);
}

/// Whether the container is one thing, and not nothing or the computer itself.
bool isThing(const GUID& container)
{
    const GUID computer = {0, 0, 0, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}};
    return !(container == GUID_NULL) && !(container == computer);
}

/// What the endpoints of one card have in common: a kind and a text.
std::pair<int, std::string> keyOf(const Endpoint& endpoint)
{
    if (endpoint.instancePath)
        return {0, *endpoint.instancePath};
    if (endpoint.container && isThing(*endpoint.container))
        return {1, textOf(*endpoint.container)};
    if (endpoint.adapter && !endpoint.adapter->empty())
        return {2, lowerCase(*endpoint.adapter)};
    return {3, lowerCase(endpoint.id)};
}

std::string idOf(const Endpoint& endpoint, const std::pair<int, std::string>& key)
{
    if (key.first == 2)
        return *endpoint.adapter;
    return key.first == 3 ? endpoint.id : key.second;
}

void describe(Card& card)
{
    for (const Endpoint& endpoint : card.endpoints)
    {
        if (card.title.empty() && endpoint.interfaceName)
            card.title = *endpoint.interfaceName;
        if (!card.bus)
            card.bus = endpoint.bus;
    }
    if (card.title.empty())
        card.title = "Unnamed card";
    const std::optional<GUID>& container = card.endpoints.front().container;
    const bool isShared = container && std::all_of(card.endpoints.begin(), card.endpoints.end(),
                                                   [&](const Endpoint& endpoint)
                                                   { return endpoint.container && *endpoint.container == *container; });
    if (isShared)
        card.container = container;
}
}

/// Cards with inputs come first, in the order of the inputs; the endpoints of a card begin with its outputs.
void Client::group()
{
    std::map<std::pair<int, std::string>, std::size_t> known;
    std::vector<std::size_t> places(m_endpoints.size());
    for (const EDataFlow flow : {eCapture, eRender})
    {
        for (std::size_t index = 0; index < m_endpoints.size(); ++index)
        {
            if (m_endpoints[index].flow != flow)
                continue;
            std::pair<int, std::string> key = keyOf(m_endpoints[index]);
            const auto place = known.find(key);
            places[index] = place == known.end() ? m_cards.size() : place->second;
            if (place != known.end())
                continue;
            Card card;
            card.id = idOf(m_endpoints[index], key);
            if (key.first == 0)
                card.instancePath = key.second;
            m_cards.push_back(std::move(card));
            known.emplace(std::move(key), places[index]);
        }
    }
    for (std::size_t index = 0; index < m_endpoints.size(); ++index)
        m_cards[places[index]].endpoints.push_back(std::move(m_endpoints[index]));
    m_endpoints.clear();
    for (Card& card : m_cards)
    {
        describe(card);
        if (card.instancePath)
            card.instanceId = instanceIdIn(*card.instancePath);
        if (card.instanceId)
            card.parent = parentOf(*card.instanceId);
    }
}

std::optional<std::string> Client::parentOf(const std::string& instanceId)
{
    const auto [place, isNew] = m_parents.try_emplace(instanceId);
    if (isNew)
    {
        qor::String parent;
        if (libOSWindows::ConfigManager::getParentDeviceInstanceId(qor::String::fromUtf8(instanceId), parent))
            place->second = parent.toUtf8();
    }
    return place->second;
}
}
