/// @file
/// The census of a simulated machine: the references, task memory and registrations that users still hold.
#pragma once

#include <iosfwd>
#include <map>
#include <string>

namespace sim
{
/// Counts at one moment, or the difference of two such counts. A plain value.
///
/// An object counts under the interface that it is created as: a part as "IConnector" or "ISubunit", even if it is held
/// by its IPart. Single objects have interface and name: "IMMDevice {0.0.0.00000000}.{…}". Differences contain no
/// zeroes, so an empty() difference means that both counts are equal.
class Census
{
public:
    /// References by interface and by object; never zero.
    std::map<std::string, long> byInterface;
    std::map<std::string, long> byObject;
    /// Live objects by interface; an object lives as long as there is a reference on it.
    std::map<std::string, long> objects;
    /// Blocks of task memory that have not been freed, by origin: "IMMDevice::GetId {0.0.0.00000000}.{…}".
    std::map<std::string, long> taskMemory;
    long taskBytes = 0;
    /// Registered clients by interface: "IMMNotificationClient", "IAudioEndpointVolumeCallback",
    /// "IControlChangeNotify". The machine holds one reference for each registration.
    std::map<std::string, long> clients;

    /// All references, or those of one interface.
    long references() const;
    long references(const std::string& interfaceName) const;
    /// All blocks of task memory.
    long taskBlocks() const;

    bool empty() const;
    /// One line for each count; "nothing" if there is none.
    std::string describe() const;
};

/// Each count of @p now less that of @p before; the result can be negative.
Census operator-(const Census& now, const Census& before);
bool operator==(const Census& left, const Census& right);
inline bool operator!=(const Census& left, const Census& right)
{
    return !(left == right);
}

std::ostream& operator<<(std::ostream& stream, const Census& census);
}
