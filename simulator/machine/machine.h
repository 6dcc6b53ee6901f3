/// A machine as data: everything that the simulated platform answers is written down in these plain value types.
///
/// A machine is filled in code (simulator/machine/builder/machinebuilder.h fills in what is usual) or read from a JSON
/// file (simulator/machine/file/machinefile.h). Nothing here calls a platform interface. All texts are UTF-8. Parts are
/// referred to by their global id and devices by their device id, everywhere and exactly, case included: ids that
/// differ only in case name two things, although the platform finds a device without regard to case.
#pragma once

#include "platform/coreaudio.h"
#include "simulator/machine/property.h"
#include "simulator/machine/script.h"
#include "simulator/machine/topology.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sim
{
/// What endpoints and adapters have in common: what stands behind an IMMDevice.
struct Device
{
    std::string id;
    bool openable = true; ///< false: the enumerator cannot find it by id, though connectors may name it
    std::uint32_t state = stateActive;
    Properties properties;
    std::optional<Topology> topology; ///< none: Activate(IDeviceTopology) fails
    bool hasAudioClient = false;      ///< Activate(IAudioClient) succeeds
    bool hasBaseFilter = false;       ///< Activate(IBaseFilter) succeeds
};

/// IAudioEndpointVolume: one range for all channels, a level for each, all in decibels.
///
/// The master level is that of the loudest channel; setting it moves all channels by the same distance. The scalar
/// level runs linearly from 0 at the minimum to 1 at the maximum.
struct EndpointVolume
{
    float minimum = -65.25f;
    float maximum = 0.0f;
    float step = 0.75f;
    std::vector<float> channels = {0.0f, 0.0f};
    bool muted = false;
    std::uint32_t hardwareSupport = 0; ///< bits of QueryHardwareSupport: 1 volume, 2 mute, 4 meter
    std::vector<std::string> refused;  ///< names of operations that answer E_NOTIMPL, such as "SetMute"
};

/// An audio endpoint: what a person calls "the speakers" or "the microphone".
struct Endpoint : Device
{
    EDataFlow flow = eRender;
    bool installed = true;                ///< false: no collection lists it before an event adds it
    std::optional<EndpointVolume> volume; ///< none: Activate(IAudioEndpointVolume) fails
    std::vector<ERole> defaultFor;        ///< roles in which it is the default of its flow
};

/// A device on the adapter side: it has a topology, but it is no endpoint and no collection lists it.
struct Adapter : Device
{
};

/// A wire between two connectors of different topologies.
///
/// Several joins may end at one connector. A connector has one peer all the same: the first join in the machine's order
/// that starts at it, or that ends at it and runs both ways, tells what the connector is joined to.
struct Join
{
    std::string from;
    std::string to;          ///< empty: the far connector cannot be had, only its device's id
    OptionalString toDevice; ///< the far device's id as `from` reports it; no value: that of the owner of `to`
    bool bothWays = true;    ///< false: `to` knows nothing of it
};

/// A device instance and its parent, as the configuration manager knows them. No parent: asking for it fails.
struct DeviceInstance
{
    std::string id;
    OptionalString parent;
};

/// What the legacy wave interface answers for one wave id; its position in the list is the id.
struct WaveDevice
{
    std::string endpointId;
    std::uint32_t sizeResult = 0; ///< MMRESULT of the question for the size of the endpoint id
    std::uint32_t idResult = 0;   ///< MMRESULT of the question for the endpoint id
};

/// Where a part stands in a machine. It points into the machine and holds as long as no list of the machine changes.
template<class AnyDevice, class AnyPart, class AnyConnector>
struct BasicPartPlace
{
    AnyDevice* device = nullptr;
    AnyPart* part = nullptr;
    AnyConnector* connector = nullptr; ///< the same part where it is a connector, otherwise null

    explicit operator bool() const { return part != nullptr; }

    AnyPart* operator->() const { return part; }
};

using PartPlace = BasicPartPlace<const Device, const Part, const Connector>;
using ChangeablePartPlace = BasicPartPlace<Device, Part, Connector>;

/// The far side of a connector as the connector reports it.
struct Peer
{
    OptionalString device; ///< answer of GetDeviceIdConnectedTo
    std::string connector; ///< id of the connector that GetConnectedTo gives; empty: there is none to be had
};

/// A whole machine.
struct Machine
{
    std::string name;
    std::string description;
    std::vector<Endpoint> endpoints; ///< in the order in which the platform enumerates them
    std::vector<Adapter> adapters;
    std::vector<Join> joins;
    std::vector<DeviceInstance> deviceInstances;
    std::vector<WaveDevice> waveOut;
    std::vector<WaveDevice> waveIn;
    std::vector<ScriptEvent> script;
    std::vector<FaultRule> faults;
    std::vector<LatencyRule> latency;

    /// The device with that id, exactly spelled; null where there is none.
    const Endpoint* endpoint(const std::string& id) const;
    Endpoint* endpoint(const std::string& id);
    const Adapter* adapter(const std::string& id) const;
    Adapter* adapter(const std::string& id);

    /// What the platform finds by @p id: the exactly spelled device before one that differs in the case of A to Z.
    /// A device that cannot be opened is not found. An endpoint that is not installed is: whoever hears of a removal
    /// can still ask the device what it was.
    const Device* openDevice(const std::string& id) const;

    /// The part with that global id, exactly spelled; an empty place where there is none.
    PartPlace part(const std::string& id) const;
    ChangeablePartPlace part(const std::string& id);

    /// What the connector @p id is joined to; no value where no join says so.
    std::optional<Peer> peer(const std::string& id) const;

    /// The default endpoint of @p flow in @p role; null where there is none.
    const Endpoint* defaultEndpoint(EDataFlow flow, ERole role) const;

    /// The instance @p id without regard to case, as the configuration manager looks it up; null where there is none.
    const DeviceInstance* deviceInstance(const std::string& id) const;
};

/// Whether two texts are equal when A to Z and a to z count as the same.
bool equalNoCase(const std::string& left, const std::string& right);

// Equal means all data, levels to the last bit.
bool operator==(const Device& left, const Device& right);
bool operator==(const EndpointVolume& left, const EndpointVolume& right);
bool operator==(const Endpoint& left, const Endpoint& right);
bool operator==(const Adapter& left, const Adapter& right);
bool operator==(const Join& left, const Join& right);
bool operator==(const DeviceInstance& left, const DeviceInstance& right);
bool operator==(const WaveDevice& left, const WaveDevice& right);
bool operator==(const Machine& left, const Machine& right);
inline bool operator!=(const Machine& left, const Machine& right)
{
    return !(left == right);
}
}
