#include "client/reading/grouping.h"

#include "OSWindows/configmanager.h"
#include "client/reading/content.h"
#include "client/reading/text.h"
#include "platform/text.h"
#include "qor/string.h"
#include "sonavit/text.h"

#include <algorithm>
#include <deque>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace sonavit::reading
{
namespace
{
/// The endpoints of one card, outputs first.
struct Group
{
    std::string id;
    bool hasPath = false;
    std::size_t size = 0;
    std::vector<const EndpointReading*> members;
};

/// Finds the group of each endpoint. The readings must outlive it.
class Groups
{
public:
    explicit Groups(const std::vector<EndpointReading>& readings)
    {
        std::vector<std::size_t> places(readings.size());
        // Inputs come first and decide the order of the cards; callers of the object model rely on the same order.
        for (const Flow flow : {Flow::input, Flow::output})
        {
            for (std::size_t index = 0; index < readings.size(); ++index)
            {
                if (readings[index].content.flow == flow)
                    places[index] = placeOf(readings[index]);
            }
        }
        for (Group& group : m_all)
            group.members.reserve(group.size);
        for (const Flow flow : allFlows)
        {
            for (std::size_t index = 0; index < readings.size(); ++index)
            {
                if (readings[index].content.flow == flow)
                    m_all[places[index]].members.push_back(&readings[index]);
            }
        }
    }

    std::vector<Group>& all() { return m_all; }

private:
    /// By what endpoints belong together.
    using Known = std::unordered_map<std::string_view, std::size_t>;

    /// Paths are compared exactly, all else as the platform compares ids.
    std::size_t placeOf(const EndpointReading& reading)
    {
        const Endpoint::Content& content = reading.content;
        if (content.instancePath)
            return placeOf(m_paths, *content.instancePath, *content.instancePath, true);
        if (content.container && !content.container->isNull() && !isInternalContainer(*content.container))
        {
            const std::string& guid = m_texts.emplace_back(content.container->text());
            return placeOf(m_containers, guid, guid, false);
        }
        const bool hasAdapter = reading.adapter && !reading.adapter->empty();
        const std::string& id = hasAdapter ? *reading.adapter : content.id.text();
        return placeOf(hasAdapter ? m_adapters : m_endpoints, m_texts.emplace_back(text::lowerCase(id)), id, false);
    }

    std::size_t placeOf(Known& known, std::string_view key, const std::string& id, bool isPath)
    {
        const auto [place, isNew] = known.try_emplace(key, m_all.size());
        if (isNew)
            m_all.push_back({id, isPath, 0, {}});
        ++m_all[place->second].size;
        return place->second;
    }

    std::vector<Group> m_all;
    Known m_paths;
    Known m_containers;
    Known m_adapters;
    Known m_endpoints;
    std::deque<std::string> m_texts; ///< of keys that no reading holds
};

/// The instance id in an instance path: what stands between its first full stop and the next one.
std::optional<std::string> instanceIdOf(const std::string& path)
{
    const auto pieceFrom = [&](std::size_t start)
    {
        const std::size_t first = path.find_first_not_of('.', start);
        const std::size_t end = first == std::string::npos ? first : path.find('.', first);
        return std::make_pair(first, end);
    };
    const std::size_t behindFirst = pieceFrom(0).second;
    if (behindFirst == std::string::npos)
        return std::nullopt;
    const auto [start, end] = pieceFrom(behindFirst);
    if (start == std::string::npos)
        return std::nullopt;
    return path.substr(start, end == std::string::npos ? end : end - start);
}

const std::optional<std::string>& parentOf(const std::string& instanceId, Parents& parents)
{
    const auto [place, isNew] = parents.try_emplace(instanceId);
    if (isNew)
    {
        qor::String parent;
        const qor::String id(platform::ucs2(wide(instanceId).data()));
        if (libOSWindows::ConfigManager::getParentDeviceInstanceId(id, parent))
            place->second = utf8(platform::wide(parent.getUCS2Buffer()));
    }
    return place->second;
}

/// The name of the card's device, as its endpoints report it, and as Card::title() has it.
std::string titleOf(const Group& group)
{
    for (const EndpointReading* const member : group.members)
    {
        if (member->content.interfaceName)
            return text::printable(*member->content.interfaceName);
    }
    return "Unnamed card";
}

/// Whether the container of the endpoint is known, and be it that there is none.
bool isContainerRead(const EndpointReading& reading)
{
    const std::vector<EndpointProblem>& problems = reading.propertyProblems;
    return std::none_of(problems.begin(), problems.end(),
                        [](const EndpointProblem& problem) { return problem.field == EndpointField::container; });
}

/// The container, if all endpoints whose container is known have the same.
std::optional<Guid> containerOf(const Group& group)
{
    const std::optional<Guid>* first = nullptr;
    for (const EndpointReading* const member : group.members)
    {
        if (!isContainerRead(*member))
            continue;
        if (first == nullptr)
            first = &member->content.container;
        else if (*first != member->content.container)
            return std::nullopt;
    }
    return first == nullptr ? std::nullopt : *first;
}

void addBus(const Group& group, Card::Content& card)
{
    for (const EndpointReading* const member : group.members)
    {
        if (member->bus)
        {
            card.bus = member->bus;
            return;
        }
    }
    for (const EndpointReading* const member : group.members)
        card.problems.insert(card.problems.end(), member->busProblems.begin(), member->busProblems.end());
}

/// All of the card but its endpoints.
Card::Content describe(Group& group, Parents& parents)
{
    Card::Content card;
    if (group.hasPath)
    {
        card.instancePath = group.id;
        card.instanceId = instanceIdOf(group.id);
    }
    if (card.instanceId)
        card.parent = parentOf(*card.instanceId, parents);
    card.title = titleOf(group);
    card.container = containerOf(group);
    addBus(group, card);
    card.id = CardId(std::move(group.id));
    return card;
}

/// The endpoint of the reading; the former one if it is the same.
Endpoint endpointOf(const EndpointReading& reading, const Endpoint* former)
{
    return former != nullptr && isSame(reading.content, former->content()) ? *former : Endpoint(reading.content);
}

/// Adds the endpoints. @return whether all of them are those of @p former
bool addEndpoints(const Group& group, const Card* former, Card::Content& card)
{
    card.endpoints.reserve(group.members.size());
    const std::vector<Endpoint> none;
    const std::vector<Endpoint>& formerEndpoints = former == nullptr ? none : former->endpoints();
    bool isUnchanged = formerEndpoints.size() == group.members.size();
    for (std::size_t index = 0; index < group.members.size(); ++index)
    {
        const Endpoint* const sameplace = index < formerEndpoints.size() ? &formerEndpoints[index] : nullptr;
        card.endpoints.push_back(endpointOf(*group.members[index], sameplace));
        isUnchanged = isUnchanged && &card.endpoints.back().content() == &sameplace->content();
    }
    return isUnchanged;
}
}

std::vector<Card> groupIntoCards(const std::vector<EndpointReading>& readings, const std::vector<Card>& former,
                                 Parents& parents)
{
    std::unordered_map<CardId, const Card*> formerCards;
    for (const Card& card : former)
        formerCards.emplace(card.id(), &card);
    std::vector<Card> cards;
    Groups groups(readings);
    cards.reserve(groups.all().size());
    for (Group& group : groups.all())
    {
        Card::Content content = describe(group, parents);
        const auto place = formerCards.find(content.id);
        const Card* const formerCard = place == formerCards.end() ? nullptr : place->second;
        const bool hasSameEndpoints = addEndpoints(group, formerCard, content);
        if (formerCard != nullptr && hasSameEndpoints && isSameDescription(content, formerCard->content()))
            cards.push_back(*formerCard);
        else
            cards.emplace_back(std::move(content));
    }
    return cards;
}
}
