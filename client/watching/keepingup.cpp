#include "client/watching/watcher.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

namespace sonavit::watching
{
namespace
{
using namespace std::chrono_literals;

constexpr auto pauseAfterException = 250ms;

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

worker::Clock::Time Watcher::step(Clock::Time now) noexcept
{
    if (m_isToEnd)
    {
        end();
        return Clock::never;
    }
    if (!m_isStarted)
        return Clock::never;
    try
    {
        keepUp(now);
    }
    catch (...)
    {
        startAgainLater();
    }
    return nextDue();
}

void Watcher::startAgainLater() noexcept
{
    const Clock::Time now = m_worker->clock().now();
    m_inbox->noteEverything();
    m_afterFailure = now + pauseAfterException;
    for (auto& [id, retry] : m_retries)
        retry.due = std::min(retry.due, m_afterFailure); // some were taken by the reading that failed
    if (m_enumerator.get() != nullptr || m_serviceDue != Clock::never)
        return;
    m_serviceLostAt = now;
    m_serviceDue = m_afterFailure;
}

void Watcher::keepUp(Clock::Time now)
{
    if (now >= m_recentWalk.due())
        m_recentWalk.release();
    if (m_afterFailure != Clock::never && now < m_afterFailure)
        return;
    m_afterFailure = Clock::never;
    if (m_enumerator.get() == nullptr)
    {
        if (now >= m_serviceDue)
            lookForService();
        return;
    }
    const bool isAll = now >= m_inbox->restDue();
    const bool areLevels = now >= m_inbox->levelsDue(m_lastLevels);
    Noted noted;
    if (isAll || areLevels)
        noted = m_inbox->take(isAll);
    if (areLevels)
        m_lastLevels = now;
    takeDueRetries(now, noted);
    if (noted.isEmpty() && !m_isServiceDoubted)
        return;
    read(noted);
    publishRead();
}

worker::Clock::Time Watcher::nextDue() const noexcept
{
    if (m_afterFailure != Clock::never)
        return m_afterFailure;
    if (m_enumerator.get() == nullptr)
        return m_serviceDue;
    Clock::Time due = std::min(m_recentWalk.due(), std::min(m_inbox->restDue(), m_inbox->levelsDue(m_lastLevels)));
    for (const auto& [id, retry] : m_retries)
        due = std::min(due, retry.due);
    return due;
}

Result<Snapshot> Watcher::refresh(Depth depth)
{
    if (m_enumerator.get() == nullptr && depth == Depth::everything)
    {
        lookForService();
        return m_latest;
    }
    if (m_enumerator.get() == nullptr)
        return m_latest;
    Noted noted = m_inbox->take(true);
    if (depth == Depth::everything)
        noted.isEverything = true;
    takeDueRetries(Clock::never, noted);
    if (noted.isEmpty() && !m_isServiceDoubted)
        return m_latest;
    read(noted);
    publishRead();
    return m_latest;
}

void Watcher::read(const Noted& noted)
{
    if (noted.isEverything)
    {
        readEverything();
        for (const Noted::OfEndpoint& each : noted.endpoints)
        {
            noteCause(each);
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
        judgeComputer();
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
    for (std::size_t index = 0; index < m_endpoints.size(); ++index)
    {
        if (m_latest.generation() > 0)
            m_worker->letChangesPass(); // they leave the list as it is
        const std::vector<EndpointProblem> former = m_endpoints[index].content.problems;
        m_endpoints.read(index);
        judgeReading(index, former);
    }
    if (readDefaults())
        readWaveIds({true, true});
}

/// Reads which endpoints there are. @return where the new ones are, which are opened; no value if the service has gone
std::optional<std::vector<std::size_t>> Watcher::readList()
{
    reading::Listing listing = reading::listEndpoints(*m_enumerator);
    if (isServiceLost(listing.problems))
        return std::nullopt;
    if (!listing.problems.empty())
        keepUnlisted(listing.endpoints);
    m_listProblems = std::move(listing.problems);
    m_isRegrouping = true;
    m_isComputerRead = true;
    return m_endpoints.replace(std::move(listing.endpoints));
}

/// A list that cannot be read to its end says nothing of the endpoints that it lacks: those that can be opened stay,
/// behind those that they came after.
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
            continue;
        }
        Result<reading::EndpointReading> opened = reading::openEndpoint(*m_enumerator, former.content.id);
        if (opened)
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
    judgeReading(*index, formerProblems);
    m_changed.push_back(noted.id);
    noteCause(noted);
    m_isRegrouping = m_isRegrouping || (noted.announced & ~announcedVolume) != 0;
    const bool isMoved = content.state != formerState || content.incarnation != formerIncarnation;
    return isMoved ? std::optional<Flow>(content.flow) : std::nullopt;
}

void Watcher::noteCause(const Noted::OfEndpoint& noted)
{
    if ((noted.announced & announcedVolume) != 0)
        note(m_causes, noted.id, withoutPublished(noted.cause, m_publishedChanges, noted.id));
}

/// Levels in the hardware may be those of endpoints, too, and jacks have no events of their own.
void Watcher::readHardware(const Noted::OfHardware& noted)
{
    const std::optional<CardId> card = m_watches.read(noted.watch);
    if (!card)
        return;
    const Cause cause = withoutPublished(noted.cause, m_publishedHardwareChanges, *card);
    note(m_hardwareCauses, *card, cause);
    const std::vector<EndpointId> changed = readVolumesOf(*card, cause);
    m_changed.insert(m_changed.end(), changed.begin(), changed.end());
}

/// @param cause of what has changed. @return the endpoints that were read
std::vector<EndpointId> Watcher::readVolumesOf(const CardId& id, const Cause& cause)
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
        m_endpoints.read(*index, announcedVolume, *m_enumerator);
        note(m_causes, endpoint.id(), cause);
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
