/// @file
/// The walk through hardware graphs that a survey makes.
#pragma once

#include "client/capturing/devices.h"
#include "client/capturing/hardwarefinds.h"

#include <deque>

namespace sonavit::capturing
{
/// Finds devices and parts, asks each of them once, and records them.
///
/// Devices are met in the order of a breadth-first walk through the connectors. A part that is met again is recognised
/// by its global id, or else by its device and its local id.
class HardwareSurvey
{
public:
    HardwareSurvey(IMMDeviceEnumerator& enumerator, sim::Machine& machine, Recorder& recorder)
        : m_enumerator(enumerator),
          m_machine(machine),
          m_recorder(recorder)
    {
    }

    void walk(const std::vector<OpenEndpoint>& endpoints, const Pause& pause);
    /// Puts what was found into the machine.
    void record();

private:
    /// What a part answers when it is asked for its ids.
    struct Identity
    {
        std::string id;
        std::optional<std::uint32_t> number;
        bool isNull = false;
        bool isNameless = false;
        HRESULT code = S_OK; ///< why there is no number
        Failures failures;

        bool isUnknown() const { return id.empty() && !number; }
    };

    /// A connector's answers about its far side.
    struct FarAnswers
    {
        HRESULT connectorResult = S_OK;
        reading::Handle<IConnector> connector;
        HRESULT connectorIdResult = S_OK;
        std::optional<std::string> connectorId;
        HRESULT deviceIdResult = S_OK;
        std::optional<std::string> deviceId;
        std::size_t device = none; ///< the one with that id
    };

    /// A topology that a part names as its own.
    struct OwnTopology
    {
        reading::Handle<IDeviceTopology> topology;
        std::optional<HRESULT> idResult;
        sim::OptionalString id;
    };

    /// A part as a meeting gives it; the connector is nil for a subunit, and where only the part was asked for.
    struct Meeting
    {
        reading::Handle<IPart> part;
        reading::Handle<IConnector> connector;
    };

    enum class PathAnswer
    {
        found,
        missing,
        failing
    };

    // Devices.
    void addEndpoint(const OpenEndpoint& endpoint, std::size_t record);
    std::size_t addDevice(FoundDevice device);
    std::size_t deviceNamed(const std::string& id);
    std::size_t openedDevice(const std::string& id, IMMDevice& device);
    void describe(FoundDevice& found, IMMDevice& device);
    void openTopology(std::size_t device, IMMDevice& platformDevice);
    void listTopology(std::size_t device);
    void readDeviceId(FoundDevice& found);
    template<class Component>
    void listComponents(std::size_t device, std::vector<std::size_t> FoundDevice::*places, const char* countName,
                        HRESULT (STDMETHODCALLTYPE IDeviceTopology::*count)(UINT*), const char* name,
                        HRESULT (STDMETHODCALLTYPE IDeviceTopology::*get)(UINT, Component**));
    std::size_t meetListed(const Meeting& meeting, std::size_t device, bool isConnector);
    bool askParts(std::size_t device);
    void reportUnopened();

    // Parts.
    Identity identityOf(IPart& part);
    std::size_t find(const Identity& identity, std::size_t device) const;
    std::size_t meet(const reading::Handle<IPart>& part, std::size_t device, const Identity& identity);
    std::size_t addPart(FoundPart part);
    void attach(std::size_t part, const Meeting& meeting, const Identity& identity);
    void askKind(FoundPart& part, std::optional<bool> isConnector);
    void askConnector(FoundPart& part, bool isSure);
    void askPart(std::size_t part);
    void askNeighbours(std::size_t part);
    void readList(IPartsList& list, Failures& failures, const std::string& name, std::size_t device,
                  std::vector<std::size_t>& items);

    // Joins.
    void followConnector(std::size_t part);
    FarAnswers farAnswers(FoundPart& nearEnd);
    std::size_t peerOf(FarAnswers& answers);
    std::size_t farPart(FarAnswers& answers);
    std::size_t ownerOf(const reading::Handle<IPart>& part, Identity& identity, const FarAnswers& answers);
    OwnTopology topologyOf(IPart& part, Identity& identity);
    std::size_t adoptingDevice(const OwnTopology& own, std::size_t device, const FarAnswers& answers) const;
    void adopt(std::size_t device, const OwnTopology& own);
    std::size_t stubNamed(const std::vector<sim::OptionalString>& ids);
    std::size_t namedConnector(const FarAnswers& answers);
    bool hasGap(std::size_t device) const;
    void judgeFarSide(FoundPart& nearEnd, const FarAnswers& answers);

    // Signal paths.
    bool askPaths(std::size_t device);
    FoundPath askPath(std::size_t device, std::size_t from, std::size_t to);
    PathAnswer findPath(std::size_t device, std::size_t from, std::size_t to, BOOL rejectMixed, FoundPath& path,
                        std::vector<std::size_t>& items);
    std::vector<std::size_t> partsBetween(const std::vector<std::size_t>& items, std::size_t from, std::size_t to);

    IMMDeviceEnumerator& m_enumerator;
    sim::Machine& m_machine;
    Recorder& m_recorder;
    std::deque<FoundDevice> m_devices;
    std::deque<FoundPart> m_parts;
    std::unordered_map<std::string, std::size_t> m_devicesById;
    std::unordered_map<std::string, std::size_t> m_opened; ///< by the ids with which GetDevice was asked
    std::vector<std::pair<std::string, std::optional<HRESULT>>> m_unopened; ///< no code: GetDevice has stored null
    std::unordered_map<std::string, std::size_t> m_partsById;
    std::unordered_map<std::string, std::size_t> m_partsByNearName;
    std::size_t m_invented = 0; ///< ids of devices
};

/// Whether a machine's part can have that id.
bool isUsableId(const std::optional<std::string>& id);
}
