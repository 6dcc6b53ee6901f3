#include "libSonavit/soundcard.h"

#include "simulator/machine/propertykeys.h"
#include "tests/support/librarytest.h"

#include <algorithm>

using testing::ElementsAreArray;

namespace
{
/// A device as the journal shows it: its id, its connectors, and what its properties are tagged with.
struct Place
{
    std::string id;
    std::vector<std::string> connectors;
    bool isNamed;          ///< whether its connectors have names
    std::string jack;      ///< of an endpoint the connector that its own is joined to
    std::string soundGuid; ///< of an endpoint the text of its DirectSound GUID
};

/// Collects the calls that a discovery is expected to make.
class ExpectedCalls
{
public:
    void add(const std::string& call) { m_lines.push_back(call); }

    void addAll(std::initializer_list<std::string> calls) { m_lines.insert(m_lines.end(), calls); }

    /// The platform's string of @p call is freed after it.
    void addText(const std::string& call, const std::string& object)
    {
        addAll({call + "() on " + object, "CoTaskMemFree(" + call + " " + object + ")"});
    }

    void createEnumerator() { add("CoCreateInstance(MMDeviceEnumerator, 1, IMMDeviceEnumerator)"); }

    /// The only endpoint of @p flow.
    void listOne(const std::string& flow)
    {
        const std::string collection = "endpoints(" + flow + ", 15)";
        addAll({"IMMDeviceEnumerator::EnumAudioEndpoints(" + flow + ", 15) on enumerator",
                "IMMDeviceCollection::GetCount() on " + collection, "IMMDeviceCollection::Item(0) on " + collection});
    }

    void readPart(const std::string& id, bool isNamed)
    {
        add("IPart::GetSubType() on " + id);
        addText("IPart::GetGlobalId", id);
        add("IPart::GetName() on " + id);
        if (isNamed)
            add("CoTaskMemFree(IPart::GetName " + id + ")");
    }

    void readTopology(const Place& device)
    {
        addText("IDeviceTopology::GetDeviceId", device.id);
        add("IDeviceTopology::GetConnectorCount() on " + device.id);
        for (std::size_t i = 0; i < device.connectors.size(); ++i)
        {
            add("IDeviceTopology::GetConnector(" + std::to_string(i) + ") on " + device.id);
            readPart(device.connectors[i], device.isNamed);
        }
        add("IDeviceTopology::GetSubunitCount() on " + device.id);
    }

    void readProperty(const Place& device, const std::string& key, const std::string& tag)
    {
        addAll({"IPropertyStore::GetValue(" + key + ") on " + device.id, "PropVariantClear(" + tag + ")"});
    }

    /// All calls of an AudioDevice that is bound to a device.
    void readDevice(const Place& device)
    {
        const bool isEndpoint = !device.jack.empty();
        addText("IMMDevice::GetId", device.id);
        add("IMMDevice::Activate(IDeviceTopology, 23) on " + device.id);
        readTopology(device);
        add("IMMDevice::OpenPropertyStore(2) on " + device.id);
        readProperty(device, "deviceDescription", "31");
        readProperty(device, "deviceFormat", isEndpoint ? "65" : "0");
        readProperty(device, "instancePath", isEndpoint ? "31" : "0");
        readProperty(device, "driverNodeStrongName", isEndpoint ? "31" : "0");
        readProperty(device, "friendlyName", "31");
        readProperty(device, "speakerConfig", isEndpoint ? "19" : "0");
        addAll({"IPropertyStore::GetValue(endpointGuid) on " + device.id, "CLSIDFromString(" + device.soundGuid + ")",
                "IMMDevice::GetState() on " + device.id});
        if (!isEndpoint)
            return;
        add("IConnector::GetConnectedTo() on " + device.connectors[0]);
        readPart(device.jack, true);
        add("IMMDevice::Activate(IAudioEndpointVolume, 23) on " + device.id);
    }

    /// The map follows a connector to @p farConnector of @p farDevice.
    void followConnector(const std::string& connector, const Place& farDevice, const std::string& farConnector)
    {
        addText("IConnector::GetDeviceIdConnectedTo", connector);
        add("IMMDeviceEnumerator::GetDevice(" + farDevice.id + ") on enumerator");
        readDevice(farDevice);
        add("IConnector::GetConnectedTo() on " + connector);
        readPart(farConnector, farDevice.isNamed);
    }

    /// The map follows a connector of @p device that is not connected.
    void followLooseConnector(const std::string& connector, const Place& device)
    {
        addAll({"IConnector::GetDeviceIdConnectedTo() on " + connector + " -> 0x80070490", "CoTaskMemFree(null)",
                "IMMDeviceEnumerator::GetDevice() on enumerator -> 0x80070057", // an empty id is no id
                "IPart::GetTopologyObject() on " + connector});
        readTopology(device);
        add("IConnector::GetConnectedTo() on " + connector + " -> 0x80070490");
    }

    void tryPath(const Place& device, const std::string& from, const std::string& to, bool isThere)
    {
        add("IDeviceTopology::GetSignalPath(" + from + ", " + to + ", 1) on " + device.id +
            (isThere ? "" : " -> 0x80070490"));
    }

    /// The calls that the simulated machine can record: on Windows the functions of COM are the system's own.
    std::vector<std::string> visible() const
    {
        std::vector<std::string> lines = m_lines;
#if defined(_WIN32)
        const auto isHidden = [](const std::string& line)
        { return line[0] != 'I' && line.compare(0, 16, "CoCreateInstance") != 0; };
        lines.erase(std::remove_if(lines.begin(), lines.end(), isHidden), lines.end());
#endif
        return lines;
    }

private:
    std::vector<std::string> m_lines;
};

/// The journal in the form of ExpectedCalls: results only where they are failures.
std::vector<std::string> linesOf(const sim::JournalEntries& entries)
{
    std::vector<std::string> lines;
    for (const sim::JournalEntry& entry : entries)
    {
        const std::string line = entry.line();
        lines.push_back(FAILED(entry.result) ? line : line.substr(0, line.rfind(" -> ")));
    }
    return lines;
}

std::string soundGuidOf(const sim::Machine& machine, const std::string& endpointId)
{
    return *sim::findProperty(machine.endpoint(endpointId)->properties, sim::keys::endpointGuid)->text;
}

/// A card with one speaker and one microphone.
struct SoundCardDiscoveryOrder : support::LibraryTest
{
    void SetUp() override
    {
        LibraryTest::SetUp();
        sim::MachineBuilder builder;
        sim::CardBuilder card = builder.card("Codec");
        const sim::EndpointBuilder output = card.speaker();
        const sim::EndpointBuilder input = card.microphone();
        const sim::Machine machine = builder.build();
        speaker = {output.id(), {output.connectorId()}, false, output.jackId(), soundGuidOf(machine, output.id())};
        microphone = {input.id(), {input.connectorId()}, false, input.jackId(), soundGuidOf(machine, input.id())};
        adapter = {card.adapter().id,
                   {output.jackId(), output.streamId(), input.jackId(), input.streamId()},
                   true,
                   "",
                   "null"};
        run(machine);
        kept.directSoundTexts = 4; // each endpoint is read for the list, and again for the far side of its jack
    }

    void expectFiling()
    {
        expected.createEnumerator();
        expected.listOne("eCapture");
        expected.readDevice(microphone);
        expected.add("CoInitialize()"); // the first card creates the shared enumerator
        expected.createEnumerator();
        expected.add("IMMDeviceEnumerator::RegisterEndpointNotificationCallback(object) on enumerator");
        expected.listOne("eRender");
        expected.readDevice(speaker);
    }

    /// Playback connectors come first in the map, and the adapter's after those of both endpoints.
    void expectExpansion()
    {
        expected.followConnector(speaker.connectors[0], adapter, speaker.jack);
        expected.followConnector(microphone.connectors[0], adapter, microphone.jack);
        expected.followConnector(adapter.connectors[0], speaker, speaker.connectors[0]);
        expected.followLooseConnector(adapter.connectors[1], adapter);
        expected.followConnector(adapter.connectors[2], microphone, microphone.connectors[0]);
        expected.followLooseConnector(adapter.connectors[3], adapter);
    }

    /// Each connector is tested with all later ones, in both directions unless the first one has a path.
    void expectLinks()
    {
        std::vector<std::pair<const Place*, std::string>> nodes = {{&speaker, speaker.connectors[0]},
                                                                   {&microphone, microphone.connectors[0]}};
        for (const std::string& connector : adapter.connectors)
            nodes.emplace_back(&adapter, connector);
        for (std::size_t i = 0; i < nodes.size(); ++i)
        {
            const auto& [device, from] = nodes[i];
            expected.add("IPart::GetTopologyObject() on " + from);
            expected.readTopology(*device);
            for (std::size_t j = i + 1; j < nodes.size(); ++j)
                expectPaths(*device, from, nodes[j].second);
        }
    }

    void expectPaths(const Place& device, const std::string& from, const std::string& to)
    {
        const bool isForward = from == adapter.connectors[2] && to == adapter.connectors[3];  // microphone to stream
        const bool isBackward = from == adapter.connectors[0] && to == adapter.connectors[1]; // stream to speaker
        expected.tryPath(device, from, to, isForward);
        if (!isForward)
            expected.tryPath(device, to, from, isBackward);
    }

    Place speaker;
    Place microphone;
    Place adapter;
    ExpectedCalls expected;
};
}

TEST_F(SoundCardDiscoveryOrder, IsKeptCallByCall)
{
    expectFiling();
    expectExpansion();
    expectLinks();

    const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();

    EXPECT_EQ(1u, cards.size());
    EXPECT_THAT(linesOf(simulation().journal().entries()), ElementsAreArray(expected.visible()));
}

TEST_F(SoundCardDiscoveryOrder, MakesNoCallThatChangesTheMachine)
{
    const sim::Machine before = simulation().machine();

    SoundCard::enumerateSystemSoundDevices();

    EXPECT_TRUE(before == simulation().machine());
}
