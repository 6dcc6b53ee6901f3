/// @file
/// The walk that fills a HardwareMap.
#pragma once

#include "client/reading/hardwaremap.h"
#include "client/reading/judge.h"

#include <cstddef>
#include <map>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace sonavit::reading
{
/// Fills a map. Each part and each device is registered once, however many ways lead to it, so every walk ends; lists
/// that claim more entries than a device can have are cut, which is a problem.
class HardwareReader
{
public:
    HardwareReader(IMMDeviceEnumerator& enumerator, HardwareMap& map) : m_enumerator(enumerator), m_map(map) {}

    /// An endpoint of the cards. Endpoints with the same id are one.
    void addListedEndpoint(const Endpoint& endpoint);
    /// Follows the connectors of all devices, and of those that they lead to.
    void followConnectors();
    /// The wires within the devices of the graph.
    void addWires();
    /// What only the controls need: the parts next to all connectors and next to the volume nodes among them.
    void readSurroundings();
    /// Finds the islands, and those with volume nodes next to a connector or between connectors.
    void findIslands();

private:
    using Device = Handle<IMMDevice>;
    using Part = Handle<IPart>;

    /// Whether a part that the walk meets belongs to the graph.
    enum class Place
    {
        graph,
        surroundings
    };

    // Devices.
    std::size_t addDevice(Graph::Device facts);
    void readTopology(std::size_t device, IMMDevice& platformDevice);
    void readComponents(std::size_t device, Place place);
    template<class Component, class Add>
    void readComponents(std::size_t device, HRESULT (STDMETHODCALLTYPE IDeviceTopology::*count)(UINT*),
                        HRESULT (STDMETHODCALLTYPE IDeviceTopology::*get)(UINT, Component**), const char* countName,
                        const char* name, const Add& add);
    Device listedDevice(const EndpointId& id, std::vector<Problem>& problems);
    std::size_t deviceIndex(const std::string& id, std::vector<Problem>& problems);
    void readFarDevice(std::size_t device, IMMDevice& platformDevice);
    void readAdapterName(std::size_t device, IMMDevice& platformDevice);
    Judge judgeOf(std::size_t device);

    // Connectors and their joins.
    std::size_t addConnector(const Handle<IConnector>& connector, std::size_t device, Place place);
    void followConnector(std::size_t part);
    std::string farDeviceId(std::size_t part, IConnector& connector, IConnector* peer);
    std::string ownerOf(IConnector& peer, std::size_t part);
    void join(std::size_t part, std::size_t peer);
    void openThroughPeer(std::size_t device);

    // Parts.
    std::size_t addPart(Part part, std::size_t device, Place place);
    std::size_t addPart(HardwarePart found);
    std::string readId(IPart& part, std::size_t device);
    std::optional<std::uint32_t> readNumber(IPart& part, Judge judge);
    void readFacts(HardwarePart& part, Judge judge);
    void putIntoGraph(std::size_t part);
    Judge judgeOfPart(std::size_t part);
    void readSide(std::size_t part, HardwarePart::Side HardwarePart::*side, Place place);
    void readList(std::size_t part, IPartsList& list, std::vector<std::size_t>& parts, Place place);
    bool isNextToVolume(const HardwarePart& part) const;

    IMMDeviceEnumerator& m_enumerator;
    HardwareMap& m_map;
    /// Parts by their device and number; -1 for a number that cannot be read.
    std::map<std::pair<std::size_t, std::int64_t>, std::size_t> m_numbers;
    std::unordered_set<std::uint64_t> m_joins;
    std::vector<std::pair<std::size_t, std::size_t>> m_joinedDevices;
    std::optional<std::unordered_map<EndpointId, Device>> m_listing;
};
}
