#include "client/diagnosing/explain.h"

#include "client/diagnosing/explainfacts.h"
#include "sonavit/text.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace sonavit::diagnosing
{
namespace
{
using By = Grouping::By;

constexpr const char* pathCall = "IPropertyStore::GetValue(instancePath)";
constexpr const char* containerCall = "IPropertyStore::GetValue(containerId)";
constexpr const char* adapterCall = "IConnector::GetDeviceIdConnectedTo";

/// A container that belongs to one thing, and not to the computer or to nothing.
bool groups(const std::optional<Guid>& container)
{
    return container && !container->isNull() && !isInternalContainer(*container);
}

/// The device behind the first connector. Only endpoints that can have hardware are asked.
std::optional<std::string> adapterOf(const capturing::Survey& survey, const Endpoint& endpoint)
{
    const sim::Endpoint* const surveyed = surveyedEndpoint(survey, endpoint.id());
    const bool isAsked = endpoint.state() == State::active || endpoint.state() == State::unplugged;
    if (!isAsked || surveyed == nullptr || !surveyed->topology || surveyed->topology->connectors.empty())
        return std::nullopt;
    const std::optional<sim::Peer> peer = survey.machine.peer(surveyed->topology->connectors.front().id);
    return peer && peer->device && !peer->device->empty() ? peer->device : std::nullopt;
}

std::string titled(const Endpoint& endpoint)
{
    return named(endpoint.description().value_or(endpoint.title()));
}

/// Says why the endpoint is in its card, and others are not.
class CardExplanation
{
public:
    explicit CardExplanation(const Subject& subject)
        : m_subject(subject),
          m_endpoint(subject.endpoint()),
          m_grouping(groupingOf(subject.survey, m_endpoint))
    {
        for (const Endpoint& other : subject.snapshot.endpoints())
        {
            if (other.id() != m_endpoint.id())
                m_others.push_back(other);
        }
    }

    Reason explain()
    {
        addPath();
        if (m_grouping.by != By::path)
            addContainer();
        if (m_grouping.by == By::adapter || m_grouping.by == By::nothing)
            addAdapter();
        addNearMisses();
        return m_facts.conclude(conclusion());
    }

private:
    using Condition = std::function<bool(const Endpoint&)>;

    std::vector<std::string> namesOf(const Condition& isMeant) const
    {
        std::vector<std::string> names;
        for (const Endpoint& other : m_others)
        {
            if (isMeant(other))
                names.push_back(titled(other));
        }
        return names;
    }

    /// The endpoints that are grouped with this one.
    std::vector<std::string> companions() const
    {
        return namesOf(
            [this](const Endpoint& other)
            {
                const Grouping grouping = groupingOf(m_subject.survey, other);
                return grouping.by == m_grouping.by && grouping.key == m_grouping.key;
            });
    }

    void addPath()
    {
        const std::optional<Problem> problem = m_endpoint.problemWith(EndpointField::instancePath);
        const std::string& id = m_endpoint.id().text();
        if (m_grouping.by == By::path)
        {
            m_facts.add("The instance path of its device is " + text::printable(*m_endpoint.instancePath()) + ".",
                        pathCall, id);
            addInstanceId();
            addCompanions("exactly this path", pathCall);
        }
        else if (problem)
            m_facts.addFailure(*problem, "So it has no instance path, by which endpoints belong together.");
        else
            m_facts.add("It has no instance path, by which endpoints usually belong together.", pathCall, id);
    }

    void addInstanceId()
    {
        const std::optional<std::string>& instanceId = m_subject.place.card.instanceId();
        if (!instanceId)
            m_facts.add("The path has no text between two full stops, so the card has no instance id.");
        else
            m_facts.add("The text between its first full stop and the next one is the card's instance id: " +
                        text::printable(*instanceId) + ".");
    }

    void addCompanions(const std::string& what, const std::string& call)
    {
        const std::vector<std::string> names = companions();
        if (names.empty())
            m_facts.add("No other endpoint has " + what + ".", call, {});
        else
            m_facts.add(text::counted(names.size(), "other endpoint") + (names.size() == 1 ? " has " : " have ") +
                            what + ": " + listed(names) + ".",
                        call, {});
    }

    void addContainer()
    {
        const std::optional<Guid>& container = m_endpoint.container();
        const std::optional<Problem> problem = m_endpoint.problemWith(EndpointField::container);
        const std::string& id = m_endpoint.id().text();
        if (problem)
            m_facts.addFailure(*problem, "So its container is not known.");
        else if (!container)
            m_facts.add("It has no container either.", containerCall, id);
        else if (container->isNull())
            m_facts.add("Its container is the null GUID, which stands for no container.", containerCall, id);
        else if (isInternalContainer(*container))
            m_facts.add("Its container is the computer itself, " + container->text() +
                            ". That holds everything that is built in, so it groups nothing.",
                        containerCall, id);
        else
        {
            m_facts.add("Its container is " + container->text() +
                            ". Without a path, endpoints with one container are one card.",
                        containerCall, id);
            addCompanions("this container and no path", containerCall);
        }
    }

    void addAdapter()
    {
        const std::string& id = m_endpoint.id().text();
        if (m_grouping.by == By::adapter)
        {
            const std::string adapter = adapterOf(m_subject.survey, m_endpoint).value_or("");
            m_facts.add("Its first connector leads to the device " + text::printable(adapter) +
                            ". Without path and container, endpoints with one such device are one card.",
                        adapterCall, id);
            addCompanions("this device, no path and no container", adapterCall);
        }
        else if (m_endpoint.state() != State::active && m_endpoint.state() != State::unplugged)
            m_facts.add("Its connectors are not asked for: it is neither active nor unplugged.", "IMMDevice::GetState",
                        id);
        else
            m_facts.add("It has no connector that leads to a device.", adapterCall, id);
    }

    /// Endpoints of other cards that a person may expect in this one.
    void addNearMisses()
    {
        const std::optional<std::string>& path = m_endpoint.instancePath();
        const auto isElsewhere = [this](const Endpoint& other)
        {
            const std::optional<Card> card = m_subject.snapshot.cardOf(other.id());
            return card && card->id() != m_subject.place.card.id();
        };
        const auto hasPathButForCase = [&](const Endpoint& other)
        {
            return path && other.instancePath() && *path != *other.instancePath() &&
                   text::equalNoCase(*path, *other.instancePath());
        };
        addElsewhere(namesOf(hasPathButForCase),
                     "the same path but for the case of letters. Paths are compared exactly, so", "another card",
                     pathCall);
        addElsewhere(namesOf(
                         [&](const Endpoint& other)
                         {
                             return isElsewhere(other) && !hasPathButForCase(other) && groups(m_endpoint.container()) &&
                                    other.container() == m_endpoint.container();
                         }),
                     "the same container, " + (m_endpoint.container() ? m_endpoint.container()->text() : "") +
                         ". A container counts only if neither has an instance path, so",
                     "another card", containerCall);
        addElsewhere(namesOf(
                         [&](const Endpoint& other)
                         {
                             return isElsewhere(other) && !hasPathButForCase(other) && m_endpoint.interfaceName() &&
                                    other.interfaceName() == m_endpoint.interfaceName() &&
                                    (other.container() != m_endpoint.container() || !groups(m_endpoint.container()));
                         }),
                     "the same device name, " + named(m_endpoint.interfaceName().value_or("")) +
                         ". Names do not count, so",
                     "another card", "IPropertyStore::GetValue(friendlyName)");
    }

    void addElsewhere(const std::vector<std::string>& names, const std::string& what, const std::string& where,
                      const std::string& call)
    {
        if (names.empty())
            return;
        const bool isOne = names.size() == 1;
        m_facts.add(listed(names) + (isOne ? " has " : " have ") + what + (isOne ? " it is in " : " they are in ") +
                        where + ".",
                    call, {});
    }

    std::string conclusion() const
    {
        const Card& card = m_subject.place.card;
        const std::size_t others = card.endpoints().size() - 1;
        const std::string title = named(card.title());
        if (others == 0)
            return "So it is a card of its own, " + title + ".";
        return "So it is in the card " + title + ", with " + text::counted(others, "other endpoint") + ".";
    }

    const Subject& m_subject;
    const Endpoint& m_endpoint;
    const Grouping m_grouping;
    std::vector<Endpoint> m_others;
    FactList m_facts{Reason::Question::card, "Why is it in this card?"};
};
}

Grouping groupingOf(const capturing::Survey& survey, const Endpoint& endpoint)
{
    if (endpoint.instancePath())
        return {By::path, *endpoint.instancePath()};
    if (groups(endpoint.container()))
        return {By::container, endpoint.container()->text()};
    if (const std::optional<std::string> adapter = adapterOf(survey, endpoint))
        return {By::adapter, text::lowerCase(*adapter)};
    return {By::nothing, text::lowerCase(endpoint.id().text())};
}

Reason explainCard(const Subject& subject)
{
    return CardExplanation(subject).explain();
}
}
