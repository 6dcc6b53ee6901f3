#include "client/watching/watcher.h"

#include <algorithm>
#include <array>
#include <utility>

namespace sonavit::watching
{
namespace
{
/// @p cause without what was published when it was made: the platform announces that nevertheless.
template<class Id>
Cause withoutPublished(Cause cause, const std::map<Id, ChangeToken>& published, const Id& id)
{
    const auto last = published.find(id);
    if (last == published.end())
        return cause;
    const auto isPublished = [&](ChangeToken token) { return token <= last->second; };
    cause.tokens.erase(std::remove_if(cause.tokens.begin(), cause.tokens.end(), isPublished), cause.tokens.end());
    const bool isByOther = cause.origin == Origin::other || cause.origin == Origin::both;
    if (cause.tokens.empty())
        cause.origin = isByOther ? Origin::other : Origin::unknown;
    return cause;
}
}

void Watcher::read(const Noted& noted)
{
    if (noted.isEverything)
    {
        for (const Noted::OfEndpoint& each : noted.endpoints)
            noteCause(each);
        readEverything();
        for (const Noted::OfEndpoint& each : noted.endpoints)
        {
            if (m_enumerator.get() != nullptr && !m_endpoints.find(each.id))
                judgeAbsence(each);
        }
    }
    else
    {
        readParts(noted);
    }
    if (m_enumerator.get() != nullptr && std::exchange(m_isServiceDoubted, false))
        static_cast<void>(readNewOnes());
    if (m_enumerator.get() != nullptr && std::exchange(m_isComputerRead, false))
        judgeComputer(noted);
}

void Watcher::readParts(const Noted& noted)
{
    const auto changesList = [this](const Noted::OfEndpoint& each)
    {
        const bool isKnown = m_endpoints.find(each.id).has_value();
        return isKnown ? (each.announced & announcedRemoval) != 0 : (each.announced & ~announcedVolume) != 0;
    };
    const bool isListRead = std::any_of(noted.endpoints.begin(), noted.endpoints.end(), changesList);
    if (isListRead && !readNewOnes())
        return;
    for (const Noted::OfHardware& each : noted.hardware)
        readHardware(each);
    std::array<bool, 2> flows = {isListRead, isListRead}; // in which device numbers may have changed
    for (const Noted::OfEndpoint& each : noted.endpoints)
    {
        letChangesPass();
        if (const std::optional<Flow> flow = readNoted(each))
            flows[static_cast<std::size_t>(*flow)] = true;
    }
    const bool areDefaultsRead = isListRead || noted.defaults[0] || noted.defaults[1];
    if (areDefaultsRead && !readDefaults())
        return;
    for (std::size_t flow = 0; flow < flows.size(); ++flow)
        flows[flow] = flows[flow] || noted.defaults[flow];
    readWaveIds(flows);
}

/// The numbers follow the active endpoints and the defaults.
void Watcher::readWaveIds(const std::array<bool, 2>& flows)
{
    for (const Flow flow : allFlows)
    {
        if (!flows[static_cast<std::size_t>(flow)])
            continue;
        m_waveIds[static_cast<std::size_t>(flow)] = reading::readWaveIds(flow);
        m_isRegrouping = true;
        m_isComputerRead = true;
    }
}

void Watcher::readEverything()
{
    if (!registerForEvents() || !readList())
        return;
    m_service = Service::running;
    m_serviceProblem.reset();
    m_serviceDue = Clock::never;
    m_isServiceDoubted = false;
    m_watches.distrust();
    m_parents.clear(); // a device may be in another port, and what failed may work
    for (std::size_t index = 0; index < m_endpoints.size(); ++index)
    {
        letChangesPass();
        const std::vector<EndpointProblem> former = m_endpoints[index].content.problems;
        m_endpoints.read(index);
        judgeReading(index, former);
    }
    if (readDefaults())
        readWaveIds({true, true});
}

/// Between two endpoints: changes do not wait for a long reading. They leave the list of endpoints as it is, and need
/// the state that the first reading gives.
void Watcher::letChangesPass()
{
    if (m_latest.generation() > 0)
        m_worker->letChangesPass();
}

/// Reads which endpoints there are. @return where the new ones are, which are opened; no value if the service has gone
std::optional<std::vector<std::size_t>> Watcher::readList()
{
    reading::Listing listing = reading::listEndpoints(*m_enumerator);
    if (isServiceLost(listing.problems))
        return std::nullopt;
    if (!listing.isComplete)
        keepUnlisted(listing.endpoints);
    m_listProblems = std::move(listing.problems);
    m_isRegrouping = true;
    m_isComputerRead = true;
    return m_endpoints.replace(std::move(listing.endpoints));
}

/// A list that cannot be read to its end says nothing of the endpoints that it lacks: those that can be opened stay,
/// behind those that they came after, or in place of one whose id differs in case alone.
void Watcher::keepUnlisted(std::vector<reading::EndpointReading>& listed) const
{
    auto place = listed.begin();
    for (const reading::EndpointReading& former : m_endpoints.readings())
    {
        const auto isMeant = [&](const reading::EndpointReading& each) { return each.content.id == former.content.id; };
        const auto found = std::find_if(listed.begin(), listed.end(), isMeant);
        if (found != listed.end())
        {
            place = found + 1;
            if (found->content.id.text() == former.content.id.text())
                continue;
        }
        Result<reading::EndpointReading> opened = reading::openEndpoint(*m_enumerator, former.content.id);
        if (opened && found != listed.end())
            *found = *std::move(opened);
        else if (opened)
            place = listed.insert(place, *std::move(opened)) + 1;
    }
}

/// @return false if the service has gone
bool Watcher::readNewOnes()
{
    const std::optional<std::vector<std::size_t>> added = readList();
    if (!added)
        return false;
    for (const std::size_t index : *added)
    {
        letChangesPass(); // they leave the list as it is
        m_endpoints.read(index);
        judgeReading(index, {});
    }
    return true;
}

/// @return the flow, if device numbers may have changed with it
std::optional<Flow> Watcher::readNoted(const Noted::OfEndpoint& noted)
{
    const std::optional<std::size_t> index = m_endpoints.find(noted.id);
    if (!index)
    {
        judgeAbsence(noted);
        return std::nullopt;
    }
    const Endpoint::Content& content = m_endpoints[*index].content;
    const std::vector<EndpointProblem> formerProblems = content.problems;
    const std::optional<State> formerState = content.state;
    const std::uint32_t formerIncarnation = content.incarnation;
    m_endpoints.read(*index, noted.announced, *m_enumerator);
    judgeReading(*index, formerProblems, noted.isRetry ? announcedNothing : noted.announced);
    m_changed.push_back(noted.id);
    noteCause(noted);
    m_isRegrouping = m_isRegrouping || (noted.announced & ~announcedVolume) != 0;
    const bool isMoved = content.state != formerState || content.incarnation != formerIncarnation;
    return isMoved ? std::optional<Flow>(content.flow) : std::nullopt;
}

void Watcher::noteCause(const Noted::OfEndpoint& noted)
{
    if ((noted.announced & announcedVolume) != 0)
        note(m_authors.volumes, noted.id, withoutPublished(noted.cause, m_publishedChanges, noted.id));
}

/// Levels in the hardware may be those of endpoints, too, and jacks have no events of their own.
void Watcher::readHardware(const Noted::OfHardware& noted)
{
    const std::optional<CardId> card =
        noted.isRetry ? m_watches.readAgain(noted.watch, *m_enumerator, m_latest.cards()) : m_watches.read(noted.watch);
    if (!card)
        return;
    if (!noted.isRetry && m_hardwareRetries.contains(*card))
        m_hardwareRetries.begin(*card, m_worker->clock().now());
    const Cause cause = withoutPublished(noted.cause, m_publishedHardwareChanges, *card);
    note(m_authors.hardware, *card, cause);
    const std::vector<EndpointId> changed = readVolumesOf(*card, cause, m_authors);
    m_changed.insert(m_changed.end(), changed.begin(), changed.end());
}

/// @param cause of what has changed, for @p authors. @return the endpoints that were read
std::vector<EndpointId> Watcher::readVolumesOf(const CardId& id, const Cause& cause, Authors& authors)
{
    std::vector<EndpointId> read;
    const std::optional<Card> card = m_latest.card(id);
    if (!card)
        return read;
    for (const Endpoint& endpoint : card->endpoints())
    {
        const std::optional<std::size_t> index = m_endpoints.find(endpoint.id());
        if (!index || !endpoint.volume())
            continue;
        const std::vector<EndpointProblem> former = m_endpoints[*index].content.problems;
        m_endpoints.read(*index, announcedVolume, *m_enumerator);
        judgeReading(*index, former);
        note(authors.volumes, endpoint.id(), cause);
        read.push_back(endpoint.id());
    }
    return read;
}

/// @return false if the service has gone
bool Watcher::readDefaults()
{
    reading::Defaults defaults = reading::readDefaults(*m_enumerator);
    if (isServiceLost(defaults.problems))
        return false;
    m_defaults = std::move(defaults);
    m_isComputerRead = true;
    return true;
}
}
