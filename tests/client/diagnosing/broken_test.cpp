#include "client/diagnosing/findings.h"
#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/propertykeys.h"
#include "sonavit/text.h"
#include "tests/support/clienttest.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

namespace
{
using sonavit::Finding;

/// Something that is wrong in the file, with the description of the endpoint, or of the device, that has it.
struct Wrong
{
    std::string owner;
    std::string thing;

    friend bool operator<(const Wrong& left, const Wrong& right)
    {
        return std::tie(left.owner, left.thing) < std::tie(right.owner, right.thing);
    }
    friend bool operator==(const Wrong& left, const Wrong& right)
    {
        return left.owner == right.owner && left.thing == right.thing;
    }
    friend std::ostream& operator<<(std::ostream& out, const Wrong& wrong)
    {
        return out << wrong.owner << ": " << wrong.thing;
    }
};

#if defined(_WIN32)
constexpr const char* unknownParent = nullptr; // the configuration manager is that of Windows
#else
constexpr const char* unknownParent = "parent-unknown";
#endif

/// A row of the table: what is wrong, and the rule that says so.
struct BrokenRow
{
    Wrong wrong;
    const char* rule;  ///< null: nobody sees it without changing something
    const char* about; ///< the endpoint or card of the finding, a part of its subject; empty: the owner
};

constexpr const char* theComputer = "this computer";
constexpr const char* nameless = "{0.0.0.00000000}.{99b2768d-7283-4e85-a5bb-16f3dc8ed0e6}";
constexpr const char* locked = "{0.0.0.00000000}.{85f1e219-1725-44f4-ba52-6b51b72d87fa}";

const std::vector<BrokenRow>& brokenRows()
{
    static const std::vector<BrokenRow> rows = {
        {{nameless, "no deviceDescription"}, "name-missing", ""},
        {{nameless, "no friendlyName"}, "name-missing", ""},
        {{nameless, "part without id"}, "part-without-id", ""},
        {{nameless, "jack without name"}, "jack-without-name", ""},
        {{"Mistyped", "another type of deviceFormat"}, "property-of-another-type", ""},
        {{"Mistyped", "mix format without device format"}, "mix-format-unreadable", ""},
        {{"Mistyped", "another type of driverNodeStrongName"}, "property-of-another-type", ""},
        {{"Mistyped", "another type of friendlyName"}, "property-of-another-type", ""},
        {{"Mistyped", "another type of speakerConfig"}, "property-of-another-type", ""},
        {{"Short Format", "short format"}, "format-short", ""},
        {{"Short Format", "no GUID"}, "property-malformed", ""},
        {{"Null Texts", "no deviceFormat"}, "format-missing", ""},
        {{"Null Texts", "null driverNodeStrongName"}, "property-null", ""},
        {{"Null Texts", "null friendlyName"}, "property-null", ""},
        {{"Null Texts", "null endpointGuid"}, "property-null", ""},
        {{"Wireless", "no topology"}, "graph-missing", ""},
        {{"Loose Wire", "no join"}, "connector-leads-nowhere", ""},
        {{"No Volume", "no volume"}, "volume-missing", ""},
        {{"Refusing Volume", "refuses GetChannelCount"}, "volume-unreadable", ""},
        {{"Refusing Volume", "refuses SetMute"}, nullptr, ""},
        {{"Refusing Volume", "refuses SetMasterVolumeLevel"}, nullptr, ""},
        {{"Refusing Volume", "refuses SetMasterVolumeLevelScalar"}, nullptr, ""},
        {{"Refusing Volume", "fault of IConnector::GetDeviceIdConnectedTo"}, "join-unreadable", ""},
        {{"No State", "state 0"}, "state-unknown", ""},
        {{"Twin in Capitals", "id in other letters"}, "ids-differ-in-case", ""},
        {{"Twin in Capitals", "no topology"}, "graph-missing", ""},
        {{"Behind a Closed Door", "joined to a closed device"}, "joined-device-closed", ""},
        {{"Also Behind It", "joined to a closed device"}, "joined-device-closed", ""},
        {{"Lost Peer", "joined to no device"}, "joined-device-missing", ""},
        {{"One Way", "joined one way"}, "join-one-way", ""},
        {{"Missing Path", "no instancePath"}, "no-card", ""},
        {{"Empty Path", "malformed instancePath"}, "path-empty", ""},
        {{"Path without Dot", "malformed instancePath"}, "path-malformed", ""},
        {{"Path as Number", "another type of instancePath"}, "property-of-another-type", ""},
        {{locked, "fault of IMMDevice::OpenPropertyStore"}, "properties-unreadable", ""},
        {{locked, "fault of IMMDevice::Activate"}, "volume-unreadable", ""},
        {{"No Answer", "fault of IAudioEndpointVolume::GetMute"}, "volume-unreadable", ""},
        {{"No Answer", "fault of IAudioEndpointVolume::GetMasterVolumeLevel"}, "volume-unreadable", ""},
        {{"No Answer Volume", "fault of IAudioVolumeLevel::GetLevelRange"}, "control-unreadable", "No Answer"},
        {{"No Answer Mute", "fault of IPart::Activate"}, "control-refused", "No Answer"},
        {{"Half a Topology", "fault of IPart::GetName"}, "jack-without-name", ""},
        {{"Failing Audio", "fault of IDeviceTopology::GetConnector"}, "hardware-unreadable", ""},
        {{"USB\\VID_C692&PID_6BBC&MI_00\\7&58C758C&0&0000", "no parent"}, unknownParent, "Nowhere Audio"},
        {{theComputer, "wave output 1"}, "wave-id-unreadable", ""},
        {{theComputer, "wave output 2"}, "wave-id-unreadable", ""},
    };
    return rows;
}

/// Finds what is wrong in a machine by comparing it with what each endpoint of a sound one has.
class WrongThings
{
public:
    explicit WrongThings(const sim::Machine& machine) : m_machine(machine)
    {
        for (const sim::Endpoint& endpoint : machine.endpoints)
            judge(endpoint);
        for (const sim::Adapter& adapter : machine.adapters)
            judge(adapter);
        for (const sim::Join& join : machine.joins)
            judge(join);
        for (const sim::DeviceInstance& instance : machine.deviceInstances)
        {
            if (!instance.parent)
                add(instance.id, "no parent");
        }
        for (std::size_t number = 0; number < machine.waveOut.size(); ++number)
        {
            if (machine.waveOut[number].sizeResult != 0 || machine.waveOut[number].idResult != 0)
                add(theComputer, "wave output " + std::to_string(number));
        }
        for (const sim::FaultRule& fault : machine.faults)
            add(ownerOf(fault.object), "fault of " + fault.operation);
    }

    const std::set<Wrong>& all() const { return m_all; }

private:
    void add(const std::string& owner, const std::string& thing) { m_all.insert({owner, thing}); }

    static std::string nameOf(const sim::Device& device)
    {
        const sim::PropertyValue* const name = sim::findProperty(device.properties, sim::keys::deviceDescription);
        const bool isLocked = device.id == locked;
        return name == nullptr || isLocked ? device.id : name->text.value_or(device.id);
    }

    void judge(const sim::Endpoint& endpoint)
    {
        const std::string name = nameOf(endpoint);
        for (const char* const key : {"deviceDescription", "deviceFormat", "instancePath", "driverNodeStrongName",
                                      "friendlyName", "speakerConfig", "endpointGuid"})
            judgeProperty(endpoint, key);
        if (endpoint.state != sim::stateActive)
            add(name, "state " + std::to_string(endpoint.state));
        if (!endpoint.volume)
            add(name, "no volume");
        for (const std::string& refused : endpoint.volume ? endpoint.volume->refused : std::vector<std::string>())
            add(name, "refuses " + refused);
        if (!endpoint.topology)
            add(name, "no topology");
        else if (!m_machine.peer(endpoint.topology->connectors.at(0).id))
            add(name, "no join");
        if (!m_ids.insert(sonavit::text::lowerCase(endpoint.id)).second)
            add(name, "id in other letters");
    }

    void judgeProperty(const sim::Endpoint& endpoint, const std::string& key)
    {
        const std::string name = nameOf(endpoint);
        const sim::PropertyValue* const value =
            sim::findProperty(endpoint.properties, sim::keyFromText(key).value_or(PROPERTYKEY()));
        if (value == nullptr || value->tag == VT_EMPTY)
            return add(name, "no " + key);
        const VARTYPE usual = key == "deviceFormat" ? VT_BLOB : key == "speakerConfig" ? VT_UI4 : VT_LPWSTR;
        if (value->tag != usual)
            add(name, "another type of " + key);
        if (value->tag != usual && key == "deviceFormat")
            add(name, "mix format without device format"); // the engine's format comes from that of the device
        if (value->tag != usual)
            return;
        if (usual == VT_LPWSTR && !value->text)
            add(name, "null " + key);
        else if (key == "endpointGuid" && value->text->size() != 38)
            add(name, "no GUID");
        else if (key == "instancePath" && value->text->compare(0, 4, "{1}.") != 0)
            add(name, "malformed instancePath");
        else if (key == "deviceFormat" && value->bytes.size() != sizeof(WAVEFORMATEXTENSIBLE))
            add(name, "short format");
    }

    void judge(const sim::Adapter& adapter)
    {
        for (const sim::Connector& connector : adapter.topology.value().connectors)
        {
            const std::string owner = joinedTo(connector.id);
            if (!connector.reportsId)
                add(owner, "part without id");
            if (!connector.name)
                add(owner, "jack without name");
            EXPECT_FALSE(connector.incoming.empty() && connector.outgoing.empty()) << connector.id;
        }
        for (const sim::Subunit& subunit : adapter.topology->subunits)
            EXPECT_TRUE(subunit.reportsId && subunit.name) << subunit.id;
    }

    void judge(const sim::Join& join)
    {
        const std::string owner = nameOf(*m_machine.part(join.from).device);
        const sim::PartPlace peer = m_machine.part(join.to);
        if (!peer)
            add(owner, "joined to no device");
        else if (!peer.device->openable)
            add(owner, "joined to a closed device");
        if (!join.bothWays)
            add(owner, "joined one way");
    }

    std::string joinedTo(const std::string& connector) const
    {
        const auto isIts = [&](const sim::Join& join) { return join.to == connector; };
        const auto join = std::find_if(m_machine.joins.begin(), m_machine.joins.end(), isIts);
        return join == m_machine.joins.end() ? connector : nameOf(*m_machine.part(join->from).device);
    }

    /// The name of the device, or of the part; a part of an endpoint is the endpoint's.
    std::string ownerOf(const std::string& object) const
    {
        if (const sim::Endpoint* const endpoint = m_machine.endpoint(object))
            return nameOf(*endpoint);
        if (const sim::Adapter* const adapter = m_machine.adapter(object))
            return nameOf(*adapter);
        const sim::PartPlace place = m_machine.part(object);
        const bool isEndpoints = m_machine.endpoint(place.device->id) != nullptr;
        return isEndpoints ? nameOf(*place.device) : place.part->name.value_or(object);
    }

    const sim::Machine& m_machine;
    std::set<std::string> m_ids;
    std::set<Wrong> m_all;
};

class DiagnosingBroken : public support::ClientTest
{
protected:
    std::vector<Finding> findings()
    {
        play("broken");
        sonavit::System system(options());
        const sonavit::Result<std::vector<Finding>> all = sonavit::diagnose(system);
        return all ? *all : std::vector<Finding>();
    }
};

TEST_F(DiagnosingBroken, HasARowForEachThingThatIsWrongInTheFile)
{
    const sim::Machine machine = sim::findMachine("broken");

    std::set<Wrong> rows;
    for (const BrokenRow& row : brokenRows())
        EXPECT_TRUE(rows.insert(row.wrong).second) << row.wrong;

    EXPECT_EQ(WrongThings(machine).all(), rows);
}

TEST_F(DiagnosingBroken, HasASentenceForEachThing)
{
    const std::vector<Finding> all = findings();

    std::map<std::pair<std::string, std::string>, std::size_t> wanted;
    for (const BrokenRow& row : brokenRows())
    {
        if (row.rule != nullptr)
            ++wanted[{*row.about == '\0' ? row.wrong.owner : row.about, row.rule}];
    }
    for (const auto& [place, count] : wanted)
    {
        const auto says = [&place = place](const Finding& finding)
        {
            return finding.rule == place.second && finding.subject.find(place.first) != std::string::npos &&
                   !finding.sentence.empty() && !finding.cause.empty();
        };
        // A device without any name is one sentence about two properties.
        const std::size_t sentences = place.second == "name-missing" ? 1 : count;
        EXPECT_LE(sentences, static_cast<std::size_t>(std::count_if(all.begin(), all.end(), says)))
            << place.first << ": " << place.second;
    }
}

TEST_F(DiagnosingBroken, SaysNothingElse)
{
    std::set<std::pair<std::string, std::string>> wanted;
    for (const BrokenRow& row : brokenRows())
        wanted.insert({row.rule == nullptr ? "" : row.rule, *row.about == '\0' ? row.wrong.owner : row.about});

    for (const Finding& finding : findings())
    {
        const auto isWanted = [&](const std::pair<std::string, std::string>& row)
        { return row.first == finding.rule && finding.subject.find(row.second) != std::string::npos; };
        EXPECT_TRUE(std::any_of(wanted.begin(), wanted.end(), isWanted)) << finding;
    }
}
}
