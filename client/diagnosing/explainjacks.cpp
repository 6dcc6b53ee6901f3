#include "client/diagnosing/explain.h"

#include "client/diagnosing/explainfacts.h"
#include "client/reading/text.h"
#include "sonavit/text.h"

#include <algorithm>

namespace sonavit::diagnosing
{
namespace
{
constexpr const char* topologyCall = "IMMDevice::Activate(IDeviceTopology)";

/// What a description says beyond the kind.
std::string description(const Jack& jack)
{
    std::vector<std::string> words;
    if (jack.connection && *jack.connection != JackConnection::unknown)
        words.emplace_back(wordsOf(*jack.connection));
    const Colour black;
    if (jack.colour && !(*jack.colour == black))
        words.push_back(jack.colour->name());
    if (jack.place)
        words.emplace_back(wordsOf(*jack.place));
    if (jack.geometry && *jack.geometry != JackGeometry::notApplicable)
        words.emplace_back(wordsOf(*jack.geometry));
    return text::enumeration(words);
}

/// Follows the first connector of the endpoint, as the client layer does.
class JackExplanation
{
public:
    explicit JackExplanation(const Subject& subject)
        : m_subject(subject),
          m_endpoint(subject.endpoint()),
          m_wiring(subject.survey)
    {
    }

    Reason explain()
    {
        if (addState())
            addTopology();
        addProperties();
        addFailures();
        return m_facts.conclude(conclusion());
    }

private:
    /// Whether the endpoint is asked for its hardware.
    bool addState()
    {
        const std::optional<State> state = m_endpoint.state();
        const std::string& id = m_endpoint.id().text();
        if (!state)
        {
            m_facts.add("Its state is not known, so its hardware is not asked for its jacks.", "IMMDevice::GetState",
                        id);
            return false;
        }
        const std::string words = std::string("Its state is ") + wordsOf(*state);
        const bool isAsked = state == State::active || state == State::unplugged;
        const char* const effect = isAsked ? ", so its hardware can be asked for its jacks."
                                           : ". Only endpoints that are active or unplugged are asked for their jacks.";
        m_facts.add(words + effect, "IMMDevice::GetState", id);
        return isAsked;
    }

    void addTopology()
    {
        const sim::Endpoint* const surveyed = m_subject.surveyed();
        const std::string& id = m_endpoint.id().text();
        if (surveyed == nullptr || !surveyed->topology)
            m_facts.add("It has no hardware graph: it offers no IDeviceTopology.", topologyCall, id);
        else if (surveyed->topology->connectors.empty())
            m_facts.add("Its hardware graph has no connector.", "IDeviceTopology::GetConnector(0)", id);
        else
            addJoin(m_wiring.connectorsOf(*surveyed).front());
    }

    void addJoin(std::size_t connector)
    {
        const Wiring::Node& own = m_wiring[connector];
        if (own.device->topology->connectors.size() > 1)
            m_facts.add("It has " + std::to_string(own.device->topology->connectors.size()) +
                            " connectors. The first one, " + nameOf(own) + ", counts.",
                        "IDeviceTopology::GetConnector(0)", m_endpoint.id().text());
        if (own.peer == Wiring::none)
        {
            m_facts.add(
                "Its first connector is joined to no connector, so the kind of the jack is not known from there.",
                "IConnector::GetConnectedTo", m_wiring.idOf(connector));
            return;
        }
        const Wiring::Node& jack = m_wiring[own.peer];
        m_facts.add("Its first connector is joined to " + connectorWords(jack) + " of " + deviceWords(*jack.device) +
                        ". That is its jack.",
                    "IConnector::GetConnectedTo", m_wiring.idOf(connector));
        addKind(own.peer);
        addDescriptions(own.peer);
    }

    void addKind(std::size_t jack)
    {
        const Guid kind = reading::guidOf(m_wiring[jack].part->subType);
        if (!m_wiring[jack].isTypeKnown)
            return; // the failure follows
        m_isKindFound = !kind.isNull();
        m_facts.add(m_isKindFound ? "This jack is of the kind " + kindWords(m_wiring[jack].part->subType) + "."
                                  : "This jack has no kind.",
                    "IPart::GetSubType", m_wiring.idOf(jack));
    }

    void addDescriptions(std::size_t jack)
    {
        const std::vector<sim::Jack>& found = m_wiring[jack].connector->jacks;
        const std::vector<Jack>& jacks = m_endpoint.jacks();
        const std::string id = m_wiring.idOf(jack);
        if (found.empty())
        {
            m_facts.add("It does not describe itself, so colour and place are not known, nor whether something is "
                        "plugged in.",
                        "IPart::Activate(IKsJackDescription)", id);
            return;
        }
        m_facts.add("It describes " + text::counted(found.size(), "jack") + ".", "IKsJackDescription::GetJackCount",
                    id);
        for (std::size_t i = 0; i < std::min(found.size(), jacks.size()); ++i)
            addDescription(i, jacks[i], id);
    }

    void addDescription(std::size_t index, const Jack& jack, const std::string& id)
    {
        const std::string words = description(jack);
        std::string sentence =
            "Jack " + std::to_string(index + 1) + (words.empty() ? " has no colour and no place" : ": " + words);
        if (jack.isConnected)
            sentence +=
                *jack.isConnected ? "; something is plugged in, or it cannot sense that" : "; nothing is plugged in";
        m_facts.add(sentence + ".", "IKsJackDescription::GetJackDescription(" + std::to_string(index) + ")", id);
    }

    void addProperties()
    {
        if (m_endpoint.jacks().empty())
        {
            m_facts.add("Its properties name no kind of jack and no form factor.",
                        "IPropertyStore::GetValue(jackSubType)", m_endpoint.id().text());
            return;
        }
        const Jack& jack = m_endpoint.jacks().front();
        if (!m_isKindFound && jack.type)
            m_facts.add(std::string("Its properties name the kind of the jack: ") +
                            (jack.kind() == NodeKind::other ? jack.type->text() : wordsOf(jack.kind())) + ".",
                        "IPropertyStore::GetValue(jackSubType)", m_endpoint.id().text());
        if (jack.formFactor)
            m_facts.add(std::string("Its properties name the form of the endpoint: ") + wordsOf(*jack.formFactor) + ".",
                        "IPropertyStore::GetValue(formFactor)", m_endpoint.id().text());
    }

    void addFailures()
    {
        for (const EndpointProblem& known : m_endpoint.problems())
        {
            if (known.field == EndpointField::jacks || known.field == EndpointField::state)
                m_facts.addFailure(known.problem);
        }
    }

    std::string conclusion() const
    {
        const std::vector<Jack>& jacks = m_endpoint.jacks();
        if (jacks.empty())
            return "So no jack of it is known.";
        std::vector<std::string> words;
        words.reserve(jacks.size());
        for (const Jack& jack : jacks)
            words.push_back(named(jack.sentence()));
        return "So it has " + text::counted(jacks.size(), "jack") + ": " + listed(words) + ".";
    }

    const Subject& m_subject;
    const Endpoint& m_endpoint;
    const Wiring m_wiring;
    bool m_isKindFound = false;
    FactList m_facts{Reason::Question::jacks, "Why does it have these jacks?"};
};
}

Reason explainJacks(const Subject& subject)
{
    return JackExplanation(subject).explain();
}
}
