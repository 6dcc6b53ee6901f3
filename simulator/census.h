/// @file
/// The census of a simulated machine: what users still hold of it.
#pragma once

#include <iosfwd>
#include <map>
#include <string>

namespace sim
{
/// Counts at one moment, or the difference of two such counts. A plain value.
///
/// Interfaces go by the name of the one that an object was first handed out as: a part counts as "IConnector" or
/// "ISubunit" even when it is held by its IPart. Objects go by interface and name: "IMMDevice {0.0.0.00000000}.{…}".
/// Differences hold no zeroes, so an empty() difference means that all went back to what it was.
class Census
{
public:
    /// References by interface and by object; never zero.
    std::map<std::string, long> byInterface;
    std::map<std::string, long> byObject;
    /// Live objects by interface; an object lives as long as anybody holds a reference on it.
    std::map<std::string, long> objects;
    /// Blocks of task memory that were not freed, by where they came from: "IMMDevice::GetId {0.0.0.00000000}.{…}".
    std::map<std::string, long> taskMemory;
    long taskBytes = 0;
    /// Clients that are registered with the machine: "IMMNotificationClient", "IAudioEndpointVolumeCallback",
    /// "IControlChangeNotify". The machine holds one reference on each.
    std::map<std::string, long> clients;

    /// All references, or those of one interface.
    long references() const;
    long references(const std::string& interfaceName) const;
    /// All blocks of task memory.
    long taskBlocks() const;

    bool empty() const;
    /// One line for each count; "nothing" when there is none.
    std::string describe() const;
};

/// What @p now has more than @p before; what it has less counts below zero.
Census operator-(const Census& now, const Census& before);
bool operator==(const Census& left, const Census& right);
inline bool operator!=(const Census& left, const Census& right)
{
    return !(left == right);
}

std::ostream& operator<<(std::ostream& stream, const Census& census);
}
