#include "client/diagnosing/explain.h"

#include "client/diagnosing/explainfacts.h"
#include "client/diagnosing/explainotherlevels.h"
#include "sonavit/text.h"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>

namespace sonavit::diagnosing
{
namespace
{
/// More failures are only counted.
constexpr std::size_t mostFailures = 5;

/// Whether a call was on the object, or on one of its lists.
bool isOn(const capturing::FailedCall& failure, const std::string& object)
{
    return failure.object == object || failure.object.compare(0, object.size() + 1, object + " ") == 0;
}

/// Follows the search for controls.
class ControlExplanation
{
public:
    explicit ControlExplanation(const Subject& subject)
        : m_subject(subject),
          m_wiring(subject.survey),
          m_surveyed(subject.surveyed()),
          m_road(m_surveyed == nullptr ? Road() : roadOf(m_wiring, *m_surveyed))
    {
    }

    Reason explain()
    {
        if (m_surveyed == nullptr || !m_surveyed->topology)
            m_facts.add("It has no hardware graph: it offers no IDeviceTopology. So no wire leads to a control.",
                        "IMMDevice::Activate(IDeviceTopology)", m_subject.endpoint().id().text());
        else
            addRoad();
        addFailures();
        addDifference();
        return m_facts.conclude(conclusion());
    }

private:
    void addRoad()
    {
        addStart();
        for (std::size_t stop = 0; stop < m_road.stops.size(); ++stop)
        {
            addLevels(stop);
            addJoin(stop);
            addPaths(stop);
        }
        addBareStops();
        addLevelsBetween();
        addOtherLevels(m_facts, m_subject, m_wiring, m_road);
    }

    const Wiring::Node& nodeAt(std::size_t stop) const { return m_wiring[m_road.stops[stop].connector]; }
    std::string idAt(std::size_t stop) const { return m_wiring.idOf(m_road.stops[stop].connector); }

    void addStart()
    {
        const std::size_t count = m_surveyed->topology->connectors.size();
        m_facts.add(count == 0 ? "Its hardware graph has no connector, so no wire leads to a control."
                    : count == 1
                        ? "It has one connector. The search for controls begins there."
                        : "It has " + std::to_string(count) + " connectors. The search for controls begins there.",
                    "IDeviceTopology::GetConnectorCount", m_subject.endpoint().id().text());
    }

    void addLevels(std::size_t stop)
    {
        for (const Road::Level& level : m_road.levels)
        {
            if (level.stop == stop)
                addLevel(level,
                         std::string("Next to ") + (isOnlyOwn(stop) ? "its connector" : nameOf(nodeAt(stop))) + " is ",
                         level.isFed ? "IPart::EnumPartsIncoming" : "IPart::EnumPartsOutgoing", idAt(stop));
        }
    }

    bool isOnAdapter(std::size_t stop) const
    {
        return m_subject.survey.machine.adapter(nodeAt(stop).device->id) != nullptr;
    }

    bool isOnlyOwn(std::size_t stop) const { return isOwn(stop) && m_surveyed->topology->connectors.size() == 1; }
    bool isOwn(std::size_t stop) const { return m_road.stops[stop].by == Road::By::start; }

    void addLevel(const Road::Level& level, const std::string& place, const std::string& call,
                  const std::string& object)
    {
        std::string sentence = place + "the volume node " + labelOf(m_wiring[level.volume]);
        if (!level.isControl)
        {
            m_facts.add(sentence + ", but it offers no IAudioVolumeLevel: no control.",
                        "IPart::Activate(IAudioVolumeLevel)", m_wiring.idOf(level.volume));
            return;
        }
        sentence += level.mute == Wiring::none ? ", without a mute" : " with the mute " + labelOf(m_wiring[level.mute]);
        m_facts.add(sentence + ": a control.", call, object);
    }

    void addJoin(std::size_t stop)
    {
        const Wiring::Node& node = nodeAt(stop);
        const std::string start = (isOnlyOwn(stop) ? "Its connector" : sentenceFrom(nameOf(node)));
        for (const Road::Stop& next : m_road.stops)
        {
            if (next.from != stop || next.by != Road::By::join)
                continue;
            const Wiring::Node& other = m_wiring[next.connector];
            m_facts.add(start + " is joined to " + connectorWords(other) + " of " + deviceWords(*other.device) + ".",
                        "IConnector::GetConnectedTo", idAt(stop));
            addClosed(*other.device);
        }
        if (node.peer != Wiring::none)
            return;
        const std::optional<sim::Peer> peer = m_subject.survey.machine.peer(node.part->id);
        if (peer && peer->device)
            m_facts.add(start + " leads to the device " + text::printable(*peer->device) +
                            ", but to none of its connectors. This way ends there.",
                        "IConnector::GetDeviceIdConnectedTo", idAt(stop));
        else if (isOwn(stop))
            m_facts.add(start + " is joined to nothing. This way ends there.", "IConnector::GetConnectedTo",
                        idAt(stop));
    }

    /// The device is mentioned once.
    void addClosed(const sim::Device& device)
    {
        if (!device.openable && m_closed.insert(&device).second)
            m_facts.add("That adapter cannot be opened, so only its connectors and what is next to them are known.",
                        "IMMDeviceEnumerator::GetDevice", device.id);
    }

    void addPaths(std::size_t stop)
    {
        std::vector<std::string> names;
        for (const Road::Stop& next : m_road.stops)
        {
            if (next.from == stop && next.by == Road::By::path)
                names.push_back(nameOf(m_wiring[next.connector]));
        }
        if (names.empty())
            return;
        const std::string start = nameOf(nodeAt(stop));
        m_facts.add(names.size() == 1 ? "A signal path connects " + start + " with " + names.front() + "."
                                      : "Signal paths connect " + start + " with " + std::to_string(names.size()) +
                                            " connectors: " + listed(names) + ".",
                    "IDeviceTopology::GetSignalPath", nodeAt(stop).device->id);
    }

    void addBareStops()
    {
        std::vector<std::string> names;
        for (std::size_t stop = 0; stop < m_road.stops.size(); ++stop)
        {
            const bool hasLevel = std::any_of(m_road.levels.begin(), m_road.levels.end(),
                                              [&](const Road::Level& level) { return level.stop == stop; });
            const std::string name = nameOf(nodeAt(stop));
            if (!hasLevel && isOnAdapter(stop) && std::find(names.begin(), names.end(), name) == names.end())
                names.push_back(name);
        }
        if (!names.empty())
            m_facts.add("No further volume node is next to a connector that the search reaches; " + listed(names) +
                            (names.size() == 1 ? " has none." : " have none."),
                        "IPart::EnumPartsIncoming", {});
    }

    void addLevelsBetween()
    {
        for (const Road::Level& level : m_road.levels)
        {
            if (level.stop == Wiring::none)
                addLevel(level, "On the wires between these connectors is ", "IPart::EnumPartsOutgoing",
                         m_wiring.idOf(level.volume));
        }
    }

    /// Failures on the parts of the road and their neighbours, and on their devices.
    void addFailures()
    {
        std::set<std::string> objects = {m_subject.endpoint().id().text()};
        for (const Road::Stop& stop : m_road.stops)
        {
            const Wiring::Node& node = m_wiring[stop.connector];
            objects.insert(node.device->id);
            objects.insert(node.part->id);
            for (const std::size_t next : m_wiring.wired(stop.connector))
                objects.insert(m_wiring[next].part->id);
        }
        for (const Road::Level& level : m_road.levels)
            objects.insert(m_wiring[level.volume].part->id);
        std::size_t count = 0;
        for (const capturing::FailedCall& failure : m_subject.survey.failures)
        {
            const bool isMeant = concernsHardware(failure) &&
                                 std::any_of(objects.begin(), objects.end(),
                                             [&](const std::string& object) { return isOn(failure, object); });
            if (isMeant && ++count <= mostFailures)
                m_facts.addFailure(failure.problem());
        }
        if (count > mostFailures)
            m_facts.add(text::counted(count - mostFailures, "further call") +
                        " on this hardware failed, so the search may have missed something.");
    }

    static bool concernsHardware(const capturing::FailedCall& failure)
    {
        constexpr std::array<std::string_view, 7> others = {
            "IPropertyStore::", "IAudioEndpointVolume::",       "IAudioClient",       "IKsJackDescription",
            "IPart::GetName",   "IMMDevice::OpenPropertyStore", "IMMDevice::GetState"};
        if (failure.operation == "IMMDevice::Activate")
            return !failure.arguments.empty() && failure.arguments.front() == "IDeviceTopology";
        if (failure.operation == "IPart::Activate")
            return !failure.arguments.empty() &&
                   std::any_of(failure.arguments.begin(), failure.arguments.end(),
                               [](const std::string& argument)
                               { return argument == "IAudioVolumeLevel" || argument == "IAudioMute"; });
        return std::none_of(others.begin(), others.end(),
                            [&](const std::string_view other)
                            { return failure.operation.compare(0, other.size(), other) == 0; });
    }

    /// Survey and controls are asked for one after the other.
    void addDifference()
    {
        if (!m_subject.controls)
        {
            m_facts.addFailure(m_subject.controls.problem());
            return;
        }
        std::vector<ControlId> found;
        for (const Road::Level& level : m_road.levels)
        {
            if (level.isControl)
                found.emplace_back(m_wiring.idOf(level.volume));
        }
        std::vector<ControlId> reported;
        for (const Control& control : *m_subject.controls)
            reported.push_back(control.id);
        if (found != reported)
            m_facts.add("A second search a moment later has found other controls than this one: the hardware has "
                        "changed, a call failed in one of them alone, or something is behind two adapters that cannot "
                        "be opened. The second one counts.");
    }

    std::string conclusion() const
    {
        if (!m_subject.controls)
            return "So its controls are not known.";
        std::vector<std::string> names;
        for (const Control& control : *m_subject.controls)
            names.push_back(named(control.title()));
        if (names.empty())
            return "So no hardware control acts on it. The volume of the endpoint itself needs none.";
        return "So " + text::counted(names.size(), "hardware control") + (names.size() == 1 ? " acts" : " act") +
               " on it: " + listed(names) + ".";
    }

    const Subject& m_subject;
    const Wiring m_wiring;
    const sim::Endpoint* const m_surveyed;
    const Road m_road;
    std::set<const sim::Device*> m_closed;
    FactList m_facts{Reason::Question::controls, "Why these hardware controls, and no others?"};
};
}

Reason explainControls(const Subject& subject)
{
    return ControlExplanation(subject).explain();
}
}
