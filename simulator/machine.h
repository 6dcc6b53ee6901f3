/// A machine as data: everything that the simulated platform answers is written down in these plain value types.
///
/// A machine is filled in code (simulator/machinebuilder.h fills in what is usual) or read from a JSON file
/// (simulator/machinefile.h). Nothing here calls a platform interface. All texts are UTF-8. Parts are referred to by
/// their global id and devices by their device id, everywhere and exactly, case included: ids that differ only in case
/// name two things, although the platform finds a device without regard to case.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/coreaudio.h"

namespace sim
{
/// UTF-8 text that the platform may fail to give: no value stands for a null pointer with a success code.
using Text = std::optional<std::string>;

/// The states of a device, as IMMDevice::GetState answers them and EnumAudioEndpoints takes them.
inline constexpr std::uint32_t stateActive = 0x1;
inline constexpr std::uint32_t stateDisabled = 0x2;
inline constexpr std::uint32_t stateNotPresent = 0x4;
inline constexpr std::uint32_t stateUnplugged = 0x8;

/// One value of a property store together with the tag under which the store hands it out.
///
/// A mistyped property is simply a value with another tag than its reader expects.
struct PropertyValue
{
    VARTYPE tag = VT_EMPTY;
    Text text;                       ///< VT_LPWSTR; no value: the tag comes with a null pointer
    std::uint32_t number = 0;        ///< VT_UI4 and the other numeric tags
    std::vector<std::uint8_t> bytes; ///< VT_BLOB

    static PropertyValue ofText(Text value);
    static PropertyValue ofNumber(std::uint32_t value, VARTYPE tag = VT_UI4);
    static PropertyValue ofBytes(std::vector<std::uint8_t> value);
};

struct Property
{
    PROPERTYKEY key;
    PropertyValue value;
};

/// The content of a property store, in the store's order. A key that is absent is answered with S_OK and VT_EMPTY.
using Properties = std::vector<Property>;

const PropertyValue* findProperty(const Properties& properties, const PROPERTYKEY& key);
void setProperty(Properties& properties, const PROPERTYKEY& key, PropertyValue value);
void removeProperty(Properties& properties, const PROPERTYKEY& key);

/// Level and range of one channel of a hardware volume node, in decibels.
struct ChannelLevel
{
    float minimum = -96.0f;
    float maximum = 0.0f;
    float step = 1.5f;
    float level = 0.0f;
};

/// IAudioVolumeLevel of a part.
struct VolumeControl
{
    std::vector<ChannelLevel> channels;
};

/// IAudioMute of a part.
struct MuteControl
{
    bool muted = false;
};

/// IAudioInputSelector of a part.
struct SelectorControl
{
    std::uint32_t selection = 0; ///< local id of the incoming part that is heard; 0: none
};

/// What connectors and subunits of a topology have in common.
struct Part
{
    std::string id;            ///< global id, stable over all topology objects; unique in the machine
    std::uint32_t localId = 0; ///< unique in the topology
    bool reportsId = true;     ///< false: GetGlobalId stores null; the model refers to the part by @ref id all the same
    Text name;
    GUID subType = {};
    std::vector<std::string> incoming; ///< ids of the neighbours that feed this part, in the platform's order
    std::vector<std::string> outgoing; ///< ids of the neighbours that this part feeds
    std::optional<VolumeControl> volume;
    std::optional<MuteControl> mute;
    std::optional<SelectorControl> selector;
};

/// A plug of a device: a jack, or the bridge between the topologies of two devices.
struct Connector : Part
{
    ConnectorType type = Physical_External;
    DataFlow direction = Out;
};

/// A node inside a device: volume, mute, selector, sum, converter.
struct Subunit : Part
{
};

/// A signal path inside one topology, from one part to another; it says nothing of the way back.
struct SignalPath
{
    std::string from;
    std::string to;
    std::vector<std::string> through; ///< ids of the parts in between, in the signal's order
    bool mixed = false;               ///< it passes a sum: refused when the caller rejects mixed paths
};

/// The hardware graph of one device.
struct Topology
{
    Text deviceId; ///< what GetDeviceId answers
    std::vector<Connector> connectors;
    std::vector<Subunit> subunits;
    std::vector<SignalPath> signalPaths;
};

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
    std::string to;       ///< empty: the far connector cannot be had, only its device's id
    Text toDevice;        ///< the far device's id as `from` reports it; no value: that of the owner of `to`
    bool bothWays = true; ///< false: `to` knows nothing of it
};

/// A device instance and its parent, as the configuration manager knows them. No parent: asking for it fails.
struct DeviceInstance
{
    std::string id;
    Text parent;
};

/// What the legacy wave interface answers for one wave id; its position in the list is the id.
struct WaveDevice
{
    std::string endpointId;
    std::uint32_t sizeResult = 0; ///< MMRESULT of the question for the size of the endpoint id
    std::uint32_t idResult = 0;   ///< MMRESULT of the question for the endpoint id
};

/// Something that happens to the machine while it runs.
struct ScriptEvent
{
    enum class Kind
    {
        added,           ///< the endpoint enters the collections; listeners hear OnDeviceAdded
        removed,         ///< the endpoint leaves the collections, but can still be opened by id; OnDeviceRemoved
        plugged,         ///< the endpoint becomes active; OnDeviceStateChanged
        unplugged,       ///< the endpoint becomes unplugged; OnDeviceStateChanged
        stateChanged,    ///< the endpoint takes `state`; OnDeviceStateChanged
        defaultChanged,  ///< the endpoint becomes the default of its flow for `role`; OnDefaultDeviceChanged
        volumeChanged,   ///< all channels take `level`, mute takes `muted`, where given; OnNotify
        propertyChanged, ///< the property takes `value`; OnPropertyValueChanged
    };

    std::uint32_t afterMilliseconds = 0; ///< counted from the event before, or from the start of the script
    Kind kind = Kind::plugged;
    std::string endpoint; ///< id; with defaultChanged it may be empty: the flow has no default any more
    std::uint32_t state = stateActive;
    EDataFlow flow = eRender; ///< defaultChanged without an endpoint
    ERole role = eConsole;
    std::optional<float> level; ///< decibels
    std::optional<bool> muted;
    PROPERTYKEY key = {};
    PropertyValue value;
};

/// One planned failure of the platform.
struct FaultRule
{
    enum class Outcome
    {
        result,      ///< `result` is answered, out-parameters are null
        nullSuccess, ///< S_OK is answered, out-parameters are null
        thrown,      ///< an exception leaves the operation; meant for Release
    };

    std::string operation;    ///< "IMMDevice::Activate", or a function's name such as "CoCreateInstance"
    std::string object = "*"; ///< a device id (its store, topology and volume too) or a part's global id; "*": any
    std::string argument;     ///< the first argument as the journal writes it; empty: any
    std::uint32_t call = 0;   ///< the n-th matching call, counted from 1; 0: every call
    Outcome outcome = Outcome::result;
    HRESULT result = E_FAIL;
};

/// What a call of an operation costs.
struct LatencyRule
{
    std::string operation; ///< as in FaultRule; "*": every call that no other rule names
    std::uint32_t microseconds = 0;
};

/// Where a part stands in a machine. It points into the machine and holds as long as no list of the machine changes.
struct PartPlace
{
    const Device* device = nullptr;
    const Part* part = nullptr;
    const Connector* connector = nullptr; ///< the same part where it is a connector, otherwise null

    explicit operator bool() const
    {
        return part != nullptr;
    }
};

/// The far side of a connector as the connector reports it.
struct Peer
{
    Text device;           ///< answer of GetDeviceIdConnectedTo
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

    /// The part with that global id, exactly spelled.
    PartPlace part(const std::string& id) const;
    Part* part(const std::string& id);

    /// What the connector @p id is joined to; no value where no join says so.
    std::optional<Peer> peer(const std::string& id) const;

    /// The default endpoint of @p flow in @p role; null where there is none.
    const Endpoint* defaultEndpoint(EDataFlow flow, ERole role) const;

    /// The instance @p id without regard to case, as the configuration manager looks it up; null where there is none.
    const DeviceInstance* deviceInstance(const std::string& id) const;
};

bool sameKey(const PROPERTYKEY& left, const PROPERTYKEY& right);

/// Whether two texts are equal when A to Z and a to z count as the same.
bool equalNoCase(const std::string& left, const std::string& right);

// Equal means all data, levels to the last bit.
bool operator==(const PropertyValue& left, const PropertyValue& right);
bool operator==(const Property& left, const Property& right);
bool operator==(const ChannelLevel& left, const ChannelLevel& right);
bool operator==(const VolumeControl& left, const VolumeControl& right);
bool operator==(const MuteControl& left, const MuteControl& right);
bool operator==(const SelectorControl& left, const SelectorControl& right);
bool operator==(const Part& left, const Part& right);
bool operator==(const Connector& left, const Connector& right);
bool operator==(const Subunit& left, const Subunit& right);
bool operator==(const SignalPath& left, const SignalPath& right);
bool operator==(const Topology& left, const Topology& right);
bool operator==(const Device& left, const Device& right);
bool operator==(const EndpointVolume& left, const EndpointVolume& right);
bool operator==(const Endpoint& left, const Endpoint& right);
bool operator==(const Adapter& left, const Adapter& right);
bool operator==(const Join& left, const Join& right);
bool operator==(const DeviceInstance& left, const DeviceInstance& right);
bool operator==(const WaveDevice& left, const WaveDevice& right);
bool operator==(const ScriptEvent& left, const ScriptEvent& right);
bool operator==(const FaultRule& left, const FaultRule& right);
bool operator==(const LatencyRule& left, const LatencyRule& right);
bool operator==(const Machine& left, const Machine& right);
inline bool operator!=(const Machine& left, const Machine& right)
{
    return !(left == right);
}
} // namespace sim
