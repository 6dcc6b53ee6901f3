#include "client/watching/endpointlist.h"

#include "client/reading/steps.h"

#include <iterator>
#include <string_view>
#include <utility>

namespace sonavit::watching
{
namespace
{
/// So many endpoints that are not in the list are remembered. A driver that makes new ids all the time is forgotten.
constexpr std::size_t mostPast = 1024;

bool isThere(const reading::EndpointReading& reading) noexcept
{
    return reading.content.state && reading.content.state != State::notPresent;
}

/// Ids that differ in case alone are those of two objects of the platform, of which the list has the first one.
bool isSame(const reading::EndpointReading& former, const reading::EndpointReading& listed)
{
    return former.content.id.text() == listed.content.id.text();
}

auto idsOf(const std::vector<reading::EndpointReading>& readings)
{
    return [&readings](std::size_t place) -> std::string_view { return readings[place].content.id.text(); };
}
}

EndpointList::EndpointList(std::shared_ptr<Inbox> inbox) : m_inbox(std::move(inbox)) {}

std::optional<std::size_t> EndpointList::find(const EndpointId& id) const
{
    return m_places.find(id.text(), idsOf(m_readings));
}

std::vector<std::size_t> EndpointList::replace(std::vector<reading::EndpointReading> listing)
{
    const auto idAt = idsOf(listing);
    std::vector<std::size_t> added;
    std::vector<VolumeRegistration> registrations(listing.size());
    IdIndex places(listing.size());
    for (std::size_t place = 0; place < listing.size(); ++place)
    {
        places.add(place, idAt);
        const std::optional<std::size_t> former = find(listing[place].content.id);
        if (!former || !isSame(m_readings[*former], listing[place]))
            added.push_back(place);
    }
    for (const reading::EndpointReading& reading : m_readings)
    {
        if (isThere(reading) && !places.find(reading.content.id.text(), idAt))
            noteAbsence(reading.content.id);
    }
    // Nothing below fails.
    for (std::size_t former = 0; former < m_readings.size(); ++former)
    {
        const std::optional<std::size_t> place = places.find(m_readings[former].content.id.text(), idAt);
        if (!place || !isSame(m_readings[former], listing[*place]))
            continue;
        std::swap(listing[*place], m_readings[former]);
        registrations[*place] = std::move(m_registrations[former]);
    }
    m_readings = std::move(listing);
    m_registrations = std::move(registrations);
    m_places = std::move(places);
    return added;
}

void EndpointList::read(std::size_t index)
{
    readState(index);
    reading::readProperties(m_readings[index]);
    readVolume(index);
    reading::readJacks(m_readings[index]);
}

/// An endpoint that goes keeps its names, even where the platform tells them no more: a list of known devices shows
/// them, and an event says which device has gone.
void EndpointList::read(std::size_t index, unsigned announced, IMMDeviceEnumerator& enumerator)
{
    reading::EndpointReading& reading = m_readings[index];
    const std::optional<State> former = reading.content.state;
    const bool wasThere = isThere(reading);
    if (wasThere && (announced & announcedAbsence) != 0)
        noteAbsence(reading.content.id);
    if ((announced & (announcedState | announcedArrival | announcedRemoval)) != 0)
        readState(index);
    const bool isMoved = reading.content.state != former;
    const bool wasAway = !wasThere || (announced & announcedAbsence) != 0;
    if (wasAway && isThere(reading))
    {
        reopen(index, enumerator);
        return;
    }
    if ((announced & announcedProperty) != 0)
        reading::readProperties(reading);
    if (isMoved || (announced & announcedVolume) != 0)
        readVolume(index);
    if (isMoved)
        reading::readJacks(reading);
}

/// The device behind the objects of the endpoint has gone since they were made. If it cannot be opened, the old ones
/// tell why it cannot be read.
void EndpointList::reopen(std::size_t index, IMMDeviceEnumerator& enumerator)
{
    reading::EndpointReading& reading = m_readings[index];
    const Result<reading::EndpointReading> opened = reading::openEndpoint(enumerator, reading.content.id);
    if (opened)
        reading.device = opened->device;
    m_registrations[index].end();
    reading.volume = nullptr;
    reading::readProperties(reading);
    readVolume(index);
    reading::readJacks(reading);
}

void EndpointList::tell(const reading::Defaults& defaults, const std::array<reading::WaveIds, 2>& waveIds)
{
    for (reading::EndpointReading& reading : m_readings)
    {
        reading.content.roles = Roles();
        reading.content.waveId.reset();
    }
    for (std::size_t flow = 0; flow < allFlows.size(); ++flow)
    {
        const auto place = [&](const EndpointId& id) -> Endpoint::Content*
        {
            const std::optional<std::size_t> index = find(id);
            const bool isFound = index && m_readings[*index].content.flow == allFlows[flow];
            return isFound ? &m_readings[*index].content : nullptr;
        };
        for (const Role role : allRoles)
        {
            if (Endpoint::Content* const content = place(defaults.ids[flow][static_cast<std::size_t>(role)]))
                content->roles.add(role);
        }
        const std::vector<EndpointId>& numbers = waveIds[flow].ids[flow];
        for (std::size_t number = 0; number < numbers.size(); ++number)
        {
            Endpoint::Content* const content = place(numbers[number]);
            if (content != nullptr && !content->waveId)
                content->waveId = static_cast<std::uint32_t>(number);
        }
    }
}

void EndpointList::clear() noexcept
{
    for (VolumeRegistration& registration : m_registrations)
        registration.end();
    m_registrations.clear();
    m_readings.clear();
    m_places = IdIndex();
}

void EndpointList::readState(std::size_t index)
{
    const bool wasThere = isThere(m_readings[index]);
    reading::readState(m_readings[index]);
    if (isThere(m_readings[index]))
        notePresence(index);
    else if (wasThere && m_readings[index].content.state) // a failure to read the state is no absence
        noteAbsence(m_readings[index].content.id);
}

/// Registers first and reads then, so that no change falls between the two.
void EndpointList::readVolume(std::size_t index)
{
    reading::EndpointReading& reading = m_readings[index];
    VolumeRegistration& registration = m_registrations[index];
    reading::openVolume(reading);
    if (reading.volume.get() == nullptr || reading.volume.get() != registration.source())
        registration.end();
    if (reading.volume.get() != nullptr && !registration)
        registration = registerForVolume(*reading.volume, m_inbox, reading.content.id);
    reading::readOpenVolume(reading);
    if (FAILED(registration.result()))
    {
        reading.volumeProblems.push_back(Problem::ofCall("IAudioEndpointVolume::RegisterControlChangeNotify",
                                                         reading.content.id.text(), registration.result()));
        reading::gatherProblems(reading);
    }
}

void EndpointList::noteAbsence(const EndpointId& id)
{
    m_past[id].isAway = true;
    if (m_past.size() > mostPast)
        forgetThoseThatWent();
}

void EndpointList::notePresence(std::size_t index)
{
    if (m_past.empty())
        return;
    Endpoint::Content& content = m_readings[index].content;
    const auto past = m_past.find(content.id);
    if (past == m_past.end())
        return;
    if (std::exchange(past->second.isAway, false))
        ++past->second.incarnation;
    content.incarnation = past->second.incarnation;
}

/// There is no order among them; those that are not in the list go.
void EndpointList::forgetThoseThatWent()
{
    for (auto each = m_past.begin(); each != m_past.end();)
        each = find(each->first) ? std::next(each) : m_past.erase(each);
}
}
