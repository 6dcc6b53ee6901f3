#include "client/diagnosing/explain.h"

#include "client/diagnosing/explainfacts.h"
#include "sonavit/text.h"

#include <algorithm>

namespace sonavit::diagnosing
{
namespace
{
const char* platformName(Flow flow)
{
    return flow == Flow::output ? "eRender" : "eCapture";
}

const char* platformName(Role role)
{
    switch (role)
    {
    case Role::console:
        return "eConsole";
    case Role::multimedia:
        return "eMultimedia";
    case Role::communications:
        break;
    }
    return "eCommunications";
}

std::string questionOf(Flow flow, Role role)
{
    return std::string("IMMDeviceEnumerator::GetDefaultAudioEndpoint(") + platformName(flow) + ", " +
           platformName(role) + ")";
}

/// Compares what the platform answers with what is known about its choice.
class DefaultExplanation
{
public:
    explicit DefaultExplanation(const Subject& subject) : m_subject(subject), m_endpoint(subject.endpoint()) {}

    Reason explain()
    {
        for (const Role role : allRoles)
            addRole(role);
        addState();
        if (m_endpoint.isActive())
            addChoice();
        return m_facts.conclude(conclusion());
    }

private:
    void addRole(Role role)
    {
        const Flow flow = m_endpoint.flow();
        const std::string call = questionOf(flow, role);
        const std::optional<Endpoint> chosen = m_subject.snapshot.defaultEndpoint(flow, role);
        const auto& problems = m_subject.snapshot.problems();
        const auto problem = std::find_if(problems.begin(), problems.end(),
                                          [&](const Problem& each) { return each.operation() == call; });
        const std::string start = std::string("For ") + wordsOf(role) + " Windows names ";
        if (problem != problems.end())
            m_facts.addFailure(*problem, std::string("So the default for ") + wordsOf(role) + " is not known.");
        else if (!chosen)
            m_facts.add(start + "no " + wordsOf(flow) + ".", call, {});
        else if (chosen->id() == m_endpoint.id())
            m_facts.add(start + "this endpoint.", call, {});
        else
            m_facts.add(start + named(chosen->title()) + ".", call, {});
    }

    void addState()
    {
        const std::optional<State> state = m_endpoint.state();
        const std::string& id = m_endpoint.id().text();
        if (!state)
            m_facts.add("Its state is not known; only an active endpoint can be a default.", "IMMDevice::GetState", id);
        else if (state == State::active)
            m_facts.add("Its state is active, so Windows may choose it.", "IMMDevice::GetState", id);
        else
            m_facts.add(std::string("Its state is ") + wordsOf(*state) + "; only an active endpoint can be a default.",
                        "IMMDevice::GetState", id);
    }

    void addChoice()
    {
        const std::vector<Jack>& jacks = m_endpoint.jacks();
        if (!jacks.empty() && jacks.front().formFactor)
            m_facts.add(std::string("Its form is ") + wordsOf(*jacks.front().formFactor) + ".",
                        "IPropertyStore::GetValue(formFactor)", m_endpoint.id().text());
        const std::vector<std::string> rivals = activeRivals();
        if (rivals.empty())
            m_facts.add(std::string("No other ") + wordsOf(m_endpoint.flow()) + " is active.", "IMMDevice::GetState",
                        {});
        else
        {
            m_facts.add(text::counted(rivals.size(), std::string("other ") + wordsOf(m_endpoint.flow())) +
                            (rivals.size() == 1 ? " is active: " : " are active: ") + listed(rivals) + ".",
                        "IMMDevice::GetState", {});
            m_facts.add(
                "Windows takes the active endpoint that the user has chosen, for each role; without a choice it "
                "goes by the form of the jack. It does not report which of the two it was.");
        }
    }

    std::vector<std::string> activeRivals() const
    {
        std::vector<std::string> names;
        for (const Endpoint& other : m_subject.snapshot.endpoints())
        {
            if (other.id() != m_endpoint.id() && other.flow() == m_endpoint.flow() && other.isActive())
                names.push_back(named(other.title()));
        }
        return names;
    }

    std::string conclusion() const
    {
        std::vector<std::string> is;
        std::vector<std::string> isNot;
        for (const Role role : allRoles)
            (m_endpoint.roles().contains(role) ? is : isNot).emplace_back(wordsOf(role));
        const std::string flow = std::string("default ") + wordsOf(m_endpoint.flow());
        if (is.empty() && m_endpoint.state() && !m_endpoint.isActive())
            return "So it cannot be a " + flow + " now.";
        if (is.empty())
            return "So it is the " + flow + " for no role.";
        return "So it is the " + flow + " for " + text::enumeration(is) +
               (isNot.empty() ? "." : ", but not for " + text::enumeration(isNot) + ".");
    }

    const Subject& m_subject;
    const Endpoint& m_endpoint;
    FactList m_facts{Reason::Question::isDefault, "Why is it the default, or not?"};
};
}

Reason explainDefault(const Subject& subject)
{
    return DefaultExplanation(subject).explain();
}
}
