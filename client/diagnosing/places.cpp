#include "client/diagnosing/places.h"

#include "platform/propertykeys.h"
#include "sonavit/text.h"

#include <algorithm>
#include <unordered_set>

namespace sonavit::diagnosing
{
namespace
{
std::string textOf(const sim::Endpoint& endpoint, const PROPERTYKEY& key)
{
    const sim::PropertyValue* const value = sim::findProperty(endpoint, key);
    return value != nullptr && value->tag == VT_LPWSTR ? value->text.value_or("") : "";
}

/// As Endpoint::title() has it.
std::string titleIn(const sim::Endpoint& record)
{
    Endpoint::Content content;
    content.id = EndpointId(record.id);
    content.flow = record.flow == eCapture ? Flow::input : Flow::output;
    const std::string description = textOf(record, platform::propertykeys::deviceDescription);
    const std::string interfaceName = textOf(record, platform::propertykeys::friendlyName);
    if (!description.empty())
        content.description = description;
    if (!interfaceName.empty())
        content.interfaceName = interfaceName;
    return Endpoint(content).title();
}
}

std::string inFull(const std::string& id)
{
    return "\"" + text::escaped(id) + "\"";
}

Places::Places(const capturing::Survey& survey, const Snapshot& snapshot) : m_survey(survey), m_snapshot(snapshot)
{
    for (const sim::Endpoint& endpoint : machine().endpoints)
    {
        index(endpoint);
        if (!endpoint.installed)
            continue;
        m_listed.push_back(&endpoint);
        m_listedIds.insert(text::lowerCase(endpoint.id));
    }
    for (const sim::Adapter& adapter : machine().adapters)
        index(adapter);
    for (const sim::Endpoint& endpoint : machine().endpoints)
        follow(endpoint);
}

void Places::index(const sim::Device& device)
{
    m_devices.emplace(device.id, &device);
    if (!device.topology)
        return;
    for (const sim::Connector& connector : device.topology->connectors)
        m_parts.emplace(connector.id, PartOf{&device, &connector, &connector});
    for (const sim::Subunit& subunit : device.topology->subunits)
        m_parts.emplace(subunit.id, PartOf{&device, &subunit, nullptr});
}

void Places::reach(const std::string& object, const std::string& endpoint)
{
    Owners& owners = m_owners[object];
    if (std::find(owners.begin(), owners.end(), endpoint) == owners.end())
        owners.push_back(endpoint);
}

void Places::follow(const sim::Endpoint& endpoint)
{
    reach(endpoint.id, endpoint.id);
    if (!endpoint.topology)
        return;
    for (const sim::Subunit& subunit : endpoint.topology->subunits)
        reach(subunit.id, endpoint.id);
    for (const sim::Connector& connector : endpoint.topology->connectors)
    {
        reach(connector.id, endpoint.id);
        const std::optional<sim::Peer> peer = machine().peer(connector.id);
        if (!peer)
            continue;
        if (peer->device)
            reach(*peer->device, endpoint.id);
        if (const PartOf entry = part(peer->connector); entry.part != nullptr)
            walk(endpoint.id, entry, endpoint.flow != eCapture);
    }
}

/// Against the signal for outputs, whose jack is its end, and with it for inputs.
void Places::walk(const std::string& endpoint, const PartOf& entry, bool isOutput)
{
    std::unordered_set<std::string> seen = {entry.part->id};
    std::vector<PartOf>& queue = m_behind[endpoint];
    const auto add = [&](const std::string& id)
    {
        const PartOf next = part(id);
        if (next.part != nullptr && seen.insert(id).second)
            queue.push_back(next);
    };
    queue.push_back(entry);
    for (std::size_t place = 0; place < queue.size(); ++place)
    {
        const PartOf here = queue[place];
        reach(here.device->id, endpoint);
        reach(here.part->id, endpoint);
        for (const std::string& id : isOutput ? here.part->incoming : here.part->outgoing)
            add(id);
        if (here.connector == nullptr || here.part == entry.part)
            continue;
        if (const std::optional<sim::Peer> peer = machine().peer(here.part->id))
            add(peer->connector);
    }
}

const sim::Endpoint* Places::endpoint(const std::string& id) const
{
    return machine().endpoint(id);
}

const sim::Device* Places::device(const std::string& id) const
{
    const auto found = m_devices.find(id);
    return found == m_devices.end() ? nullptr : found->second;
}

PartOf Places::part(const std::string& id) const
{
    const auto found = m_parts.find(id);
    return found == m_parts.end() ? PartOf() : found->second;
}

bool Places::isListed(const std::string& id) const
{
    return m_listedIds.count(text::lowerCase(id)) > 0;
}

/// The part or device that the object's name begins with; empty if there is none.
std::string Places::known(const std::string& object) const
{
    const auto isKnown = [this](const std::string& id) { return m_owners.count(id) > 0; };
    if (isKnown(object))
        return object;
    for (std::size_t end = object.rfind(' '); end != std::string::npos && end > 0; end = object.rfind(' ', end - 1))
    {
        if (isKnown(object.substr(0, end)))
            return object.substr(0, end);
    }
    for (std::size_t end = object.rfind('/'); end != std::string::npos && end > 0; end = object.rfind('/', end - 1))
    {
        if (isKnown(object.substr(0, end)))
            return object.substr(0, end);
    }
    return {};
}

Owners Places::ownersOf(const std::string& object) const
{
    const PartOf found = part(object);
    const auto own = m_owners.find(known(object));
    if (own != m_owners.end())
        return own->second;
    const auto ofDevice = m_owners.find(found.device == nullptr ? "" : found.device->id);
    return ofDevice == m_owners.end() ? Owners() : ofDevice->second;
}

std::vector<PartOf> Places::partsBehind(const std::string& endpoint) const
{
    const auto found = m_behind.find(endpoint);
    return found == m_behind.end() ? std::vector<PartOf>() : found->second;
}

bool Places::hasFailure(const std::string& operation, const std::string& object, const std::string& argument) const
{
    return std::any_of(m_survey.failures.begin(), m_survey.failures.end(),
                       [&](const capturing::FailedCall& call)
                       {
                           return call.operation == operation && call.object == object &&
                                  (argument.empty() || (!call.arguments.empty() && call.arguments[0] == argument));
                       });
}

std::optional<Card> Places::cardOf(const std::string& endpoint) const
{
    return m_snapshot.cardOf(EndpointId(endpoint));
}

std::optional<Card> Places::cardOf(const Owners& owners) const
{
    std::map<CardId, std::size_t> counts;
    std::optional<Card> best;
    std::size_t most = 0;
    for (const std::string& owner : owners)
    {
        const std::optional<Card> card = cardOf(owner);
        if (!card || ++counts[card->id()] <= most)
            continue;
        most = counts[card->id()];
        best = card;
    }
    return best;
}

std::string Places::titleOf(const std::string& endpoint) const
{
    const std::optional<Endpoint> read = m_snapshot.endpoint(EndpointId(endpoint));
    const sim::Endpoint* const record = this->endpoint(endpoint);
    const bool isRead = read && read->id().text() == endpoint;
    const std::string title = !isRead && record != nullptr ? titleIn(*record) : read ? read->title() : endpoint;
    const std::optional<Card> card = cardOf(endpoint);
    const bool isNamed = card && card->title() != Card().title();
    return isNamed && title.find(card->title()) == std::string::npos ? title + " on " + card->title() : title;
}

std::string Places::nameOf(const sim::Part& part) const
{
    if (part.name && !part.name->empty())
        return "\"" + text::printable(*part.name) + "\"";
    const std::size_t slash = part.id.rfind('/');
    return text::printable(slash == std::string::npos ? part.id : part.id.substr(slash));
}
}
