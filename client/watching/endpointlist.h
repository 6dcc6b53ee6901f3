/// @file
/// The endpoints that a System has read, with their registrations. All of it runs on the worker.
#pragma once

#include "client/reading/endpointreading.h"
#include "client/watching/inbox.h"
#include "client/watching/registrations.h"
#include "sonavit/idindex.h"

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace sonavit::watching
{
class EndpointList
{
public:
    explicit EndpointList(std::shared_ptr<Inbox> inbox);

    /// In the platform's order.
    const std::vector<reading::EndpointReading>& readings() const noexcept { return m_readings; }
    reading::EndpointReading& operator[](std::size_t index) { return m_readings[index]; }
    std::size_t size() const noexcept { return m_readings.size(); }
    /// Where the endpoint is; no value if it is not in the list.
    std::optional<std::size_t> find(const EndpointId& id) const;

    /// Replaces the list. Readings and registrations of endpoints that stay go on; new ones are opened and not read,
    /// and so is one whose id is written in another case than before.
    /// @return where the new ones are
    std::vector<std::size_t> replace(std::vector<reading::EndpointReading> listing);
    /// Reads all of an endpoint.
    void read(std::size_t index);
    /// Reads what was announced of an endpoint, and what follows from that; opens it anew if it was away.
    void read(std::size_t index, unsigned announced, IMMDeviceEnumerator& enumerator);
    /// Tells each endpoint for which roles it is the default and which device number it has.
    void tell(const reading::Defaults& defaults, const std::array<reading::WaveIds, 2>& waveIds);
    /// Ends all registrations and releases everything.
    void clear() noexcept;

private:
    /// What is known of an endpoint that was away at least once, even of one that is not in the list now.
    struct Past
    {
        std::uint32_t incarnation = 0;
        bool isAway = false;
    };

    void reopen(std::size_t index, IMMDeviceEnumerator& enumerator);
    void readState(std::size_t index);
    void readVolume(std::size_t index);
    void noteAbsence(const EndpointId& id);
    void notePresence(std::size_t index);
    void forgetThoseThatWent();

    const std::shared_ptr<Inbox> m_inbox;
    std::vector<reading::EndpointReading> m_readings;
    std::vector<VolumeRegistration> m_registrations; ///< of the same positions
    IdIndex m_places;                                ///< of the readings
    std::unordered_map<EndpointId, Past> m_past;
};
}
