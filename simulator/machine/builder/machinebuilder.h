/// @file
/// Builds a machine with the usual data, so that a test states only what matters to it:
///
///     sim::MachineBuilder bench("bench");
///     sim::CardBuilder codec = bench.card("Analog Audio");
///     codec.speaker().level(-12.0f).hardwareVolume({-96.0f, 0.0f, 1.5f, -30.0f});
///     codec.microphone().unplugged();
///     bench.usbCard("USB Headset").headphones("Headset Earphone").muted();
///     const sim::Machine machine = bench.build();
///
/// Ids are derived from the names and from the order of the calls, so equal calls build equal machines.
#pragma once

#include "simulator/machine/deviceformat.h"
#include "simulator/machine/machine.h"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

namespace sim
{
class CardBuilder;
class MachineBuilder;

/// One endpoint of a machine that is being built: a reference to be copied, valid as long as its MachineBuilder.
class EndpointBuilder
{
public:
    EndpointBuilder& state(std::uint32_t states);
    EndpointBuilder& disabled();
    EndpointBuilder& unplugged();
    EndpointBuilder& notPresent();
    EndpointBuilder& notInstalled();

    /// The default of its flow in all roles, or in one.
    EndpointBuilder& isDefault();
    EndpointBuilder& defaultFor(ERole role);

    EndpointBuilder& volume(const EndpointVolume& volume);
    /// All channels of the endpoint volume, in decibels.
    EndpointBuilder& level(float decibels);
    EndpointBuilder& muted();
    EndpointBuilder& withoutVolume();

    EndpointBuilder& format(const DeviceFormat& format);
    EndpointBuilder& property(const PROPERTYKEY& key, PropertyValue value);
    EndpointBuilder& withoutProperty(const PROPERTYKEY& key);

    /// Inserts a node into the adapter's path between jack and stream: the first node next to the jack, each further
    /// one between the node before it and the stream.
    EndpointBuilder& hardwareVolume(const ChannelLevel& channel, std::size_t channels = 2);
    EndpointBuilder& hardwareMute(bool muted = false);
    /// The nodes that hardwareVolume() and hardwareMute() have added implement the endpoint's volume, which takes over
    /// their range, levels and mute.
    EndpointBuilder& volumeInHardware();
    EndpointBuilder& node(Subunit node);

    EndpointBuilder& jackName(OptionalString name);
    /// Removes the connection between the endpoint and its jack; both stay.
    EndpointBuilder& unjoined();
    EndpointBuilder& withoutTopology();

    std::string id() const;
    /// Connector of the endpoint's own topology, of the adapter's jack, and of the stream that belongs to the jack.
    std::string connectorId() const;
    std::string jackId() const;
    std::string streamId() const;

    /// The data themselves, for changes that have no operation here; valid until the next endpoint or card is added.
    Endpoint& endpoint() const;
    Part& jack() const;

private:
    friend class CardBuilder;
    EndpointBuilder(MachineBuilder& owner, std::size_t wiring);

    /// The parts of the adapter's wire in the order in which the signal passes them.
    std::vector<std::string> signal() const;

    MachineBuilder* m_owner;
    std::size_t m_wiring;
};

/// One card of a machine that is being built: an adapter with its jacks and their endpoints. A reference to be copied,
/// valid as long as its MachineBuilder.
class CardBuilder
{
public:
    EndpointBuilder speaker(const std::string& name = "Speakers");
    EndpointBuilder headphones(const std::string& name = "Headphones");
    EndpointBuilder lineOut(const std::string& name = "Line Out");
    EndpointBuilder spdifOut(const std::string& name = "Digital Output");
    EndpointBuilder hdmi(const std::string& name = "Display Audio");
    EndpointBuilder microphone(const std::string& name = "Microphone");
    EndpointBuilder lineIn(const std::string& name = "Line In");
    EndpointBuilder spdifIn(const std::string& name = "Digital Input");
    EndpointBuilder endpoint(const std::string& name, EDataFlow flow, const GUID& jackType);

    /// Adds a connector or a node to the adapter's topology, with ids of its own and no neighbours; returns its id.
    std::string connector(OptionalString name, const GUID& type, DataFlow direction, ConnectorType kind = Software_IO);
    std::string subunit(Subunit subunit);
    /// Connects each part to the next, and adds a signal path from the first to the last.
    CardBuilder& chain(const std::vector<std::string>& parts);

    /// The instance path of the card's endpoints, and the instance id that it contains.
    std::string instancePath() const;
    std::string instanceId() const;

    /// The data themselves; valid until the next card is added.
    Adapter& adapter() const;

private:
    friend class MachineBuilder;
    friend class EndpointBuilder;
    CardBuilder(MachineBuilder& owner, std::size_t index);

    /// Appends the part to the list of the adapter's topology; returns its id.
    template<class AnyPart>
    std::string append(std::vector<AnyPart>& list, AnyPart part);
    /// Undoes chain().
    void unchain(const std::vector<std::string>& parts);

    MachineBuilder* m_owner;
    std::size_t m_index;
};

/// A machine that is being built.
class MachineBuilder
{
public:
    explicit MachineBuilder(const std::string& name = "bench");
    MachineBuilder(const MachineBuilder&) = delete;
    MachineBuilder& operator=(const MachineBuilder&) = delete;

    /// A card on the board or on USB, with its device instance and parent.
    CardBuilder card(const std::string& name);
    CardBuilder usbCard(const std::string& name);
    /// A card with that instance id; no device instance is added.
    CardBuilder card(const std::string& name, const std::string& instanceId);

    /// Under which a program uses the machine; an administrator's where nothing is said.
    MachineBuilder& account(Account account);

    /// build() chooses no defaults, or assigns no wave ids.
    MachineBuilder& withoutDefaults();
    MachineBuilder& withoutWaveIds();
    MachineBuilder& removedEndpoints(RemovedEndpoints fate);
    MachineBuilder& callbackThread(CallbackThread thread);

    /// The current data. Appending to its lists is safe at any time.
    Machine& machine();

    /// The machine. In a flow without a default, the first active endpoint becomes the default in all roles. In a flow
    /// without wave ids, active endpoints get wave ids in their order.
    Machine build() const;

private:
    friend class CardBuilder;
    friend class EndpointBuilder;

    struct Card
    {
        std::size_t adapter;
        std::string name;
        std::string instanceId;
        std::string instancePath;
    };

    /// The position of an endpoint in the machine, and its parts.
    struct Wiring
    {
        std::size_t endpoint;
        std::size_t card;
        std::string connector;         ///< of the endpoint's own topology
        std::vector<std::string> wire; ///< of the adapter: the jack, the nodes, the stream
    };

    /// Where a part of an adapter is.
    struct PartPosition
    {
        std::size_t adapter;
        std::size_t index; ///< in the list of connectors or of subunits
    };

    /// As Machine::part(). A part that a card has added is found at once.
    ChangeablePartPlace part(const std::string& id);
    /// The part at that position if it still has that id, otherwise an empty place.
    ChangeablePartPlace partAt(const PartPosition& position, const std::string& id);

    Machine m_machine;
    std::vector<Card> m_cards;
    std::vector<Wiring> m_wirings;
    std::unordered_map<std::string, PartPosition> m_parts; ///< of equal ids the first
    bool m_choosesDefaults = true;
    bool m_givesWaveIds = true;
};
}
