/// @file
/// What a survey has found of hardware graphs, as data of a machine.
#pragma once

#include "client/capturing/hardwarefinds.h"

#include <deque>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

namespace sonavit::capturing
{
/// Gives all parts their places and ids, and puts devices, parts, joins and paths into a machine. What no machine file
/// can hold is left out or replaced, and noted.
class HardwareRecord
{
public:
    /// All of them must outlive the record. Parts may be added to the found ones.
    HardwareRecord(std::deque<FoundDevice>& devices, std::deque<FoundPart>& parts, sim::Machine& machine,
                   Recorder& recorder)
        : m_devices(devices),
          m_parts(parts),
          m_machine(machine),
          m_recorder(recorder)
    {
    }

    void write();

private:
    /// The parts of a device in the order of the machine.
    struct Order
    {
        std::vector<std::size_t> connectors;
        std::vector<std::size_t> subunits;

        std::vector<std::size_t> all() const;
    };

    void order(std::size_t device);
    std::vector<std::size_t> filled(std::size_t device, const std::vector<std::size_t>& places, bool isConnector);
    std::size_t invented(std::size_t device, bool isConnector);
    void giveLocalIds(const Order& order);
    void giveLocalIds(const std::vector<std::size_t>& parts, std::uint32_t (*usual)(std::size_t),
                      std::set<std::uint32_t>& taken);
    void giveIds();
    std::string unusedId(std::string id) const;

    sim::Topology topologyOf(std::size_t device);
    void refer(std::size_t part);
    std::vector<std::string> idsOf(const std::vector<std::size_t>& parts, std::size_t device, std::size_t filler);
    std::size_t selectedPart(std::size_t part) const;
    void writeDevice(std::size_t device);
    void writeJoin(std::size_t part);
    bool isMutual(std::size_t part) const;
    std::vector<std::size_t> connectorsWithPaths(std::size_t device) const;
    std::vector<sim::SignalPath> signalPaths(std::size_t device);
    void report(std::size_t device);

    std::deque<FoundDevice>& m_devices;
    std::deque<FoundPart>& m_parts;
    sim::Machine& m_machine;
    Recorder& m_recorder;
    std::vector<Order> m_orders; ///< by device
    std::unordered_set<std::string> m_ids;
    std::unordered_set<std::size_t> m_told; ///< connectors to which a join runs both ways
};
}
