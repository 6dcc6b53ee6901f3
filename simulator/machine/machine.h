/// @file
/// A machine as data: plain value types that contain everything that the simulated platform answers with.
///
/// A machine is built in code (simulator/machine/builder/machinebuilder.h adds the usual data) or read from a JSON file
/// (simulator/machine/file/machinefile.h). Nothing here calls a platform interface, and nothing is safe for several
/// threads at once unless all of them only read. All strings are UTF-8. Ids refer to parts and devices exactly, case
/// included: ids that differ only in case name two things, although the platform finds a device regardless of case.
#pragma once

#include "platform/coreaudio.h"
#include "simulator/machine/equality.h"
#include "simulator/machine/mixformat.h"
#include "simulator/machine/property.h"
#include "simulator/machine/script.h"
#include "simulator/machine/topology.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sim
{
/// The common data of endpoints and adapters: those of an IMMDevice.
struct Device
{
    std::string id;
    bool openable = true; ///< false: the enumerator does not find it by id, though connectors may refer to it
    std::uint32_t state = stateActive;
    Properties properties;
    Properties unlistedProperties;    ///< the store returns them, but GetCount and GetAt do not list them
    std::optional<Topology> topology; ///< none: Activate(IDeviceTopology) fails
    bool hasAudioClient = false;      ///< Activate(IAudioClient) succeeds
    bool hasBaseFilter = false;       ///< Activate(IBaseFilter) succeeds
    bool hasMeter = false;            ///< Activate(IAudioMeterInformation) succeeds
};

/// The value that the store of @p device has for @p key, listed or not; null if it has none. The pointer is valid until
/// the properties change.
const PropertyValue* findProperty(const Device& device, const PROPERTYKEY& key);

/// How the scalar level of an endpoint volume depends on decibels; 0 at the minimum and 1 at the maximum in any case.
enum class Taper
{
    linear,  ///< linear in decibels
    audio,   ///< as on Windows: the amplitude is about the scalar level to the power of 1.75
    measured ///< through the points of EndpointVolume::taperPoints, linear in decibels between them
};

/// A level as both scales have it.
struct TaperPoint
{
    float level = 0.0f; ///< decibels
    float scalar = 0.0f;
};

/// The parts that implement an endpoint volume, by id; empty: none does.
struct HardwareControls
{
    std::string volume; ///< its level for each channel is the endpoint's
    std::string mute;   ///< its mute is the endpoint's
};

/// IAudioEndpointVolume: one range for all channels and a level for each, all in decibels.
///
/// The master level is that of the loudest channel, unless the machine says otherwise; setting it changes all channels
/// by the same difference.
struct EndpointVolume
{
    float minimum = -65.25f;
    float maximum = 0.0f;
    float step = 0.75f;
    std::vector<float> channels = {0.0f, 0.0f};
    bool muted = false;
    std::uint32_t hardwareSupport =
        0; ///< bits of QueryHardwareSupport: 1 volume, 2 mute, 4 meter; those of @ref hardware are added
    std::vector<std::string> refused; ///< names of operations that return E_NOTIMPL, such as "SetMute"
    Taper taper = Taper::linear;
    std::vector<TaperPoint> taperPoints = {}; ///< with Taper::measured, in rising order
    std::optional<float> master = {}; ///< the master level until a level is set; none: that of the loudest channel
    std::optional<std::uint32_t> steps = {}; ///< what GetVolumeStepInfo counts; none: as range and step say
    HardwareControls hardware = {};
};

/// The periods of an endpoint in units of 100 nanoseconds, as IAudioClient::GetDevicePeriod returns them.
struct DevicePeriods
{
    std::uint32_t usual = 100000;  ///< of the shared engine; "default" in a file
    std::uint32_t minimum = 30000; ///< of exclusive streams
};

/// An audio endpoint, such as the speakers or the microphone.
struct Endpoint : Device
{
    EDataFlow flow = eRender;
    bool installed = true;                    ///< false: no collection contains it before an event adds it
    std::optional<EndpointVolume> volume;     ///< none: Activate(IAudioEndpointVolume) fails
    std::vector<ERole> defaultFor;            ///< roles in which the user has chosen it as the default of its flow
    std::optional<DevicePeriods> periods;     ///< none: 10 ms in whole bursts of 32 frames, and 3 ms
    std::optional<MixFormat> mixFormat;       ///< none: 32-bit floating point at the device format's rate and channels
    std::vector<std::uint8_t> mixFormatBytes; ///< a mix format that MixFormat cannot express; empty: there is none
};

/// A device on the adapter side: it has a topology, but it is not an endpoint and no collection contains it.
struct Adapter : Device
{
};

/// A connection between two connectors of different topologies.
///
/// Several joins may end at one connector, but a connector has one peer: that of the first join in the machine's order
/// that starts at the connector, or that ends at it and runs both ways.
struct Join
{
    std::string from;
    std::string to;          ///< empty: GetConnectedTo fails, only the far device's id is known
    OptionalString toDevice; ///< the far device's id as `from` reports it; no value: the id of the device that has `to`
    bool bothWays = true;    ///< false: `to` does not report `from`
};

/// A device instance and its parent in the configuration manager. No parent: asking for it fails.
struct DeviceInstance
{
    std::string id;
    OptionalString parent;
};

/// What the legacy wave interface returns for one wave id; the position in the list is the id.
struct WaveDevice
{
    std::string endpointId;
    std::uint32_t sizeResult = 0; ///< MMRESULT of the question for the size of the endpoint id
    std::uint32_t idResult = 0;   ///< MMRESULT of the question for the endpoint id
};

/// A part of a machine and its device: pointers into the machine, valid until one of its lists changes.
template<class AnyDevice, class AnyPart, class AnyConnector>
struct BasicPartPlace
{
    AnyDevice* device = nullptr;
    AnyPart* part = nullptr;
    AnyConnector* connector = nullptr; ///< the same part if it is a connector, otherwise null

    explicit operator bool() const { return part != nullptr; }

    AnyPart* operator->() const { return part; }
};

using PartPlace = BasicPartPlace<const Device, const Part, const Connector>;
using ChangeablePartPlace = BasicPartPlace<Device, Part, Connector>;

/// The far side of a connector, as the connector reports it.
struct Peer
{
    OptionalString device; ///< what GetDeviceIdConnectedTo returns
    std::string connector; ///< id of the connector that GetConnectedTo returns; empty: it fails
};

/// The account under which a program uses the machine. Windows opens property stores for writing to administrators
/// only.
enum class Account
{
    administrator,
    ordinary
};

/// What the property store of an endpoint that is not present answers when it is asked for a name: for the description,
/// the name of the adapter or the full name.
enum class NotPresentNames
{
    readable, ///< the name
    failing   ///< 0xE000020B, as on some machines
};

/// What becomes of an endpoint while it is not installed, for those who have its id or an object of it.
enum class RemovedEndpoints
{
    open,    ///< it is opened by its id, and its objects answer
    unknown, ///< its id is unknown, and its objects say that the device is gone
};

/// What the thread is like on which clients are notified.
enum class CallbackThread
{
    com,  ///< it has initialised COM
    bare, ///< it has not, as a thread of a pool may not have
};

/// Whether the platform adds properties to those of the machine, see simulator/README.md.
enum class Composition
{
    usual, ///< what the machine does not mention is composed
    none   ///< the stores contain what the machine says and nothing else, as after a capture
};

/// The user's choice whether programs may record.
enum class CaptureAccess
{
    allowed,
    denied, ///< IAudioClient::Initialize returns E_ACCESSDENIED on capture endpoints
};

/// A whole machine.
struct Machine
{
    std::string name;
    std::string description;
    Account account = Account::administrator;
    RemovedEndpoints removedEndpoints = RemovedEndpoints::open;
    CallbackThread callbackThread = CallbackThread::com;
    NotPresentNames notPresentNames = NotPresentNames::readable;
    Composition composition = Composition::usual;
    CaptureAccess captureAccess = CaptureAccess::allowed;
    std::vector<Endpoint> endpoints; ///< in the order in which the platform enumerates them
    std::vector<Adapter> adapters;
    std::vector<Join> joins;
    std::vector<DeviceInstance> deviceInstances;
    std::vector<WaveDevice> waveOut;
    std::vector<WaveDevice> waveIn;
    std::vector<ScriptEvent> script;
    std::vector<FaultRule> faults;
    LatencyPreset latencyPreset = LatencyPreset::none; ///< for calls that no rule of `latency` names
    std::vector<LatencyRule> latency;

    /// The device with exactly that id; null if there is none. The pointer is valid until a list changes.
    const Endpoint* endpoint(const std::string& id) const;
    Endpoint* endpoint(const std::string& id);
    const Adapter* adapter(const std::string& id) const;
    Adapter* adapter(const std::string& id);

    /// The device that the platform finds by @p id: the one with exactly that id, otherwise one whose id differs in the
    /// case of A to Z only; null if there is none. A device that cannot be opened is not found. An endpoint that is not
    /// installed is found, so a client that is notified of a removal can still ask the device, unless removed endpoints
    /// are unknown.
    const Device* openDevice(const std::string& id) const;

    /// Whether @p endpoint has been removed and is unknown therefore.
    bool isGone(const Endpoint& endpoint) const;

    /// The part with exactly that global id; an empty place if there is none.
    PartPlace part(const std::string& id) const;
    ChangeablePartPlace part(const std::string& id);

    /// The peer of the connector @p id; no value if no join mentions it.
    std::optional<Peer> peer(const std::string& id) const;

    /// The endpoint that is named as the default of @p flow in @p role (Endpoint::defaultFor), whatever its state; null
    /// if there is none.
    const Endpoint* namedDefault(EDataFlow flow, ERole role) const;

    /// The default endpoint of @p flow in @p role, as the platform elects it. Without a named default there is none.
    /// Only endpoints that are installed and active can be elected: the named one, otherwise the one with the best form
    /// of jack, of equal ones the first in the machine's order; null if no active one is left.
    ///
    /// Microsoft gives the order of the forms, for consoles and multimedia: headphones and headset, speakers, line,
    /// display, S/PDIF, others; of capture endpoints headset, microphone (arrays first), line, others. Communications
    /// prefer headset and handset. The jack is that behind the endpoint's first connector.
    const Endpoint* defaultEndpoint(EDataFlow flow, ERole role) const;

    /// The instance @p id regardless of case, as the configuration manager finds it; null if there is none.
    const DeviceInstance* deviceInstance(const std::string& id) const;
};

inline bool operator!=(const Machine& left, const Machine& right)
{
    return !(left == right);
}
}
