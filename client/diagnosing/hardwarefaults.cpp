#include "client/diagnosing/findings.h"
#include "sonavit/text.h"

#include <algorithm>

namespace sonavit::diagnosing
{
namespace
{
constexpr const char* noJack = "Its jack and its hardware controls are not known.";
constexpr const char* badDriver = "The driver has an error. A newer one may be better.";
constexpr const char* oldJoin = "The driver was removed, replaced or stopped, and Windows keeps the connection; "
                                "restarting the computer or installing the driver again makes it anew.";

/// Judges what the connectors of a device lead to.
class JoinJudge
{
public:
    JoinJudge(const Places& places, Findings& findings, const sim::Device& device)
        : m_places(places),
          m_findings(findings),
          m_device(device)
    {
    }

    void judge(const sim::Connector& connector)
    {
        const std::optional<sim::Peer> peer = m_places.machine().peer(connector.id);
        if (!peer || fails("GetDeviceIdConnectedTo", connector) || fails("GetConnectedTo", connector))
            return;
        const PartOf behind = m_places.part(peer->connector);
        if (!peer->device || peer->device->empty())
            add(connector, "joined-device-unnamed", " to a device that has no id.", noJack, badDriver);
        else if (!isOpenable(*peer->device))
            judgeClosed(connector, *peer->device, behind);
        else if (behind.part == nullptr)
            judgeMissing(connector, *peer->device);
        else if (behind.device->id != *peer->device)
            add(connector, "joined-to-two",
                " to " + inFull(*peer->device) + " by its id and to " + inFull(behind.device->id) +
                    " by its connector.",
                "Which hardware belongs to it is not certain.", badDriver);
        else if (!m_places.machine().peer(peer->connector))
            add(connector, "join-one-way",
                " to " + m_places.nameOf(*behind.part) + ", which says that nothing is connected to it.",
                "Programs that start from the hardware do not find the way back to it.", badDriver);
    }

private:
    bool fails(const char* operation, const sim::Connector& connector) const
    {
        return m_places.hasFailure(std::string("IConnector::") + operation, connector.id);
    }

    bool isOpenable(const std::string& id) const
    {
        const sim::Device* const device = m_places.device(id);
        return device != nullptr && device->openable;
    }

    void judgeClosed(const sim::Connector& connector, const std::string& device, const PartOf& behind)
    {
        if (m_places.hasFailure("IMMDeviceEnumerator::GetDevice", "enumerator", device))
            return;
        const std::string target = " to " + inFull(device) + ", ";
        if (behind.part != nullptr)
            add(connector, "joined-device-closed", target + "which Windows cannot open by that id.",
                "Programs that open the card by its id find neither the jack nor its controls.", oldJoin);
        else
            add(connector, "joined-device-missing", target + "which does not exist.", noJack, oldJoin);
    }

    void judgeMissing(const sim::Connector& connector, const std::string& device)
    {
        const sim::Device* const record = m_places.device(device);
        const bool isEmpty =
            record != nullptr &&
            (!record->topology || (record->topology->connectors.empty() && record->topology->subunits.empty()));
        if (isEmpty && !m_places.hasFailure("IMMDevice::Activate", device, "IDeviceTopology"))
            add(connector, "graph-empty", " to " + inFull(device) + ", which has no hardware graph.", noJack,
                badDriver);
        else if (!isEmpty)
            add(connector, "joined-connector-missing", " to " + inFull(device) + ", and not to one of its connectors.",
                noJack, badDriver);
    }

    void add(const sim::Connector& connector, const char* rule, const std::string& target, std::string effect,
             std::string cause)
    {
        const std::string subject = m_places.endpoint(m_device.id) != nullptr
                                        ? "Its connector is joined"
                                        : "The connector " + m_places.nameOf(connector) + " of the hardware is joined";
        m_findings.addOf(connector.id,
                         {Finding::Kind::data, rule, subject + target, std::move(effect), std::move(cause), {}});
    }

    const Places& m_places;
    Findings& m_findings;
    const sim::Device& m_device;
};

bool isJoined(const Places& places, const sim::Endpoint& endpoint)
{
    const std::vector<sim::Connector>& connectors = endpoint.topology->connectors;
    const auto hasPeer = [&](const sim::Connector& connector)
    {
        return places.machine().peer(connector.id).has_value() ||
               places.hasFailure("IConnector::GetConnectedTo", connector.id) ||
               places.hasFailure("IConnector::GetDeviceIdConnectedTo", connector.id);
    };
    return std::any_of(connectors.begin(), connectors.end(), hasPeer);
}

/// Whether another endpoint of the same card is joined to its hardware, so that the same is to be expected of this one.
bool isExpectedToBeJoined(const Places& places, const std::string& endpoint)
{
    const std::optional<Card> card = places.cardOf(endpoint);
    if (!card)
        return false;
    const auto leadsToHardware = [&](const Endpoint& other)
    {
        const sim::Endpoint* const record = places.endpoint(other.id().text());
        return record != nullptr && record->id != endpoint && record->topology && isJoined(places, *record);
    };
    return std::any_of(card->endpoints().begin(), card->endpoints().end(), leadsToHardware);
}

/// An endpoint without a way into the hardware.
void judgeEndpoint(const Places& places, Findings& findings, const sim::Endpoint& endpoint)
{
    const auto add = [&](const char* rule, const char* sentence, const char* cause) {
        findings.addOfEndpoint(endpoint.id, {Finding::Kind::data, rule, sentence, noJack, cause, {}});
    };
    if (!hasHardware(endpoint) || places.hasFailure("IMMDevice::Activate", endpoint.id, "IDeviceTopology") ||
        !isExpectedToBeJoined(places, endpoint.id))
        return;
    if (!endpoint.topology)
        return add("graph-missing", "It has no hardware graph, although other endpoints of its card have one.",
                   "The driver describes only a part of its hardware, or a program has added the endpoint.");
    const std::vector<sim::Connector>& connectors = endpoint.topology->connectors;
    if (connectors.empty())
    {
        if (!places.hasFailure("IDeviceTopology::GetConnectorCount", endpoint.id) &&
            !places.hasFailure("IDeviceTopology::GetConnector", endpoint.id))
            add("graph-without-connectors", "Its hardware graph has no connector.", badDriver);
        return;
    }
    if (!isJoined(places, endpoint))
        add("connector-leads-nowhere", "Its connector is joined to nothing.",
            "The driver describes only a part of its hardware, or it stopped while Windows was asking it.");
}

/// Whether what its connectors lead to has to be there. Windows remembers the adapter of an endpoint whose device is
/// away.
bool isToBeJoined(const Places& places, const sim::Device& device)
{
    return hasHardware(device) || places.endpoint(device.id) == nullptr;
}

void judgePart(const Places& places, Findings& findings, const sim::Part& part)
{
    const auto add = [&](const char* rule, std::string sentence, const char* effect) {
        findings.addOf(part.id, {Finding::Kind::data, rule, std::move(sentence), effect, badDriver, {}});
    };
    const std::string name = places.nameOf(part);
    if (!part.reportsId && !places.hasFailure("IPart::GetGlobalId", part.id))
        add("part-without-id",
            "The part " + name + " of the hardware does not tell its id: IPart::GetGlobalId stores null.",
            "It cannot be named or found again, and a control there cannot be changed.");
    for (const std::vector<std::string>* const list : {&part.incoming, &part.outgoing})
    {
        for (const std::string& neighbour : *list)
        {
            if (places.part(neighbour).part == nullptr)
                add("part-unknown",
                    "The part " + name + " of the hardware is connected to " + inFull(neighbour) +
                        ", which its device does not have.",
                    "Controls behind it may be missing from the list of hardware controls.");
        }
    }
}

void judgeJackName(const Places& places, Findings& findings, const sim::Connector& connector)
{
    if (connector.type == Physical_External && !connector.name && !places.hasFailure("IPart::GetName", connector.id))
        findings.addOf(connector.id, {Finding::Kind::data,
                                      "jack-without-name",
                                      "The jack " + places.nameOf(connector) +
                                          " of the hardware has no name: IPart::GetName stores null.",
                                      "Lists and graphs show the kind of jack in place of a name.",
                                      badDriver,
                                      {}});
}
}

void findHardwareFaults(const Places& places, Findings& findings)
{
    const auto judgeParts = [&](const sim::Device& device)
    {
        if (!device.topology)
            return;
        JoinJudge joins(places, findings, device);
        for (const sim::Connector& connector : device.topology->connectors)
        {
            if (isToBeJoined(places, device))
                joins.judge(connector);
            judgePart(places, findings, connector);
        }
        for (const sim::Subunit& subunit : device.topology->subunits)
            judgePart(places, findings, subunit);
    };
    for (const sim::Endpoint* const listed : places.listed())
    {
        const sim::Endpoint& endpoint = *listed;
        judgeEndpoint(places, findings, endpoint);
        judgeParts(endpoint);
    }
    for (const sim::Adapter& adapter : places.machine().adapters)
    {
        judgeParts(adapter);
        if (!adapter.topology)
            continue;
        for (const sim::Connector& connector : adapter.topology->connectors)
            judgeJackName(places, findings, connector);
    }
}
}
