/// @file
/// One sound card: its endpoints, the graph of connectors around them, and the hardware controls in it.
#pragma once

#include "client.h"
#include "device.h"
#include "text.h"
#include "topology.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace direct
{
/// Is called after a list of a card has changed.
class Observer
{
public:
    virtual void onDeviceStateChanged() = 0;
    virtual void onDeviceAdded() = 0;
    virtual void onDeviceRemoved() = 0;

protected:
    ~Observer() = default;
};

/// The endpoints of one flow, and who wants to know of their changes.
struct Side
{
    std::vector<Device> devices;
    std::vector<Observer*> observers;
};

/// What a card shares with its updater.
struct SharedData
{
    std::u16string instancePath;
    Side playback;
    Side record;
};

/// A connector, and those that are joined to it or that a signal path leads to.
struct Node
{
    Component<IConnector> connector;
    std::vector<unsigned int> links; ///< indexes in the graph, or outsideGraph
};

inline constexpr unsigned int outsideGraph = 0xFFFFFFFF;

/// A hardware control that acts on an endpoint.
struct Control
{
    ComPtr<IAudioVolumeLevel> level;
    ComPtr<IAudioMute> mute; ///< null if there is none next to the level
    GUID ownerType = {};
    std::u16string ownerName;
};

/// What is added to the graph when a connector leads to a new device. The graph is the same in both cases.
enum class Registration
{
    newDevice, ///< the connectors of that device
    wholeList, ///< those of all devices that connectors have led to: those that are known are found again
};

class Card
{
public:
    /// All cards of the system, those with a record endpoint first. Each stays registered for events with @p client,
    /// which must outlive the events.
    static std::vector<Card> findAll(Client& client, Registration registration = Registration::newDevice);

    const SharedData& data() const { return *m_data; }
    SharedData& data() { return *m_data; }
    const std::vector<Node>& graph() const { return m_graph; }
    const std::vector<Device>& adapters() const { return m_adapters; }

    /// The controls that act on @p endpoint.
    /// @exception std::out_of_range if the walk leaves the graph
    std::vector<Control> controlsOf(const Device& endpoint) const;

private:
    Card(Client& client, const std::u16string& instancePath);

    void addEndpoint(EDataFlow flow, Device device);
    void buildGraph(Client& client, Registration registration);
    void addConnectors(const Topology& topology);
    void follow(unsigned int index, Client& client, Registration registration);
    void addFarDevice(Device device, const std::u16string& id, Registration registration);
    void addNearDevice(unsigned int index);
    void linkToPeer(unsigned int index);
    void linkWithinTopology(unsigned int index);
    unsigned int indexOf(const std::u16string& connectorId) const;

    std::shared_ptr<SharedData> m_data;
    std::unordered_set<std::u16string, FoldedHash, FoldedEqual> m_endpointIds;
    std::vector<Device> m_adapters; ///< devices that the endpoints' connectors lead to
    std::unordered_set<std::u16string, FoldedHash, FoldedEqual> m_adapterIds;
    std::unordered_set<std::u16string> m_knownDevices;
    std::vector<Node> m_graph;
    std::unordered_map<std::u16string, unsigned int, FoldedHash, FoldedEqual> m_indexes; ///< by id of the connector
};
}
