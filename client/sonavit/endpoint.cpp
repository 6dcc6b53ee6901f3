#include "sonavit/endpoint.h"

#include "sonavit/enumnames.h"
#include "sonavit/text.h"

#include <ostream>
#include <utility>

namespace sonavit
{
inline namespace v1
{
namespace
{
constexpr std::array<EnumName, 2> flows = {{{"render", "output"}, {"capture", "input"}}};
constexpr std::array<EnumName, 4> states = {
    {{"active", "active"}, {"disabled", "disabled"}, {"notPresent", "not present"}, {"unplugged", "unplugged"}}};
constexpr std::array<EnumName, 3> roleNames = {
    {{"console", "console"}, {"multimedia", "multimedia"}, {"communications", "communications"}}};
constexpr std::array<EnumName, 17> fields = {{{"id", "id"},
                                              {"description", "description"},
                                              {"interfaceName", "interface name"},
                                              {"flow", "flow"},
                                              {"state", "state"},
                                              {"roles", "roles"},
                                              {"jacks", "jacks"},
                                              {"volume", "volume"},
                                              {"format", "format"},
                                              {"speakers", "speakers"},
                                              {"waveId", "wave id"},
                                              {"directSoundId", "DirectSound id"},
                                              {"driverNode", "driver node"},
                                              {"container", "container"},
                                              {"instancePath", "instance path"},
                                              {"incarnation", "incarnation"},
                                              {"problems", "problems"}}};

constexpr Guid internalContainer = {0, 0, 0, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}};

/// No bit for a number without a name.
unsigned bitOf(Role role) noexcept
{
    const auto number = static_cast<unsigned>(role);
    return number < allRoles.size() ? 1u << number : 0;
}
}

bool Roles::contains(Role role) const noexcept
{
    return (m_bits & bitOf(role)) != 0;
}

Roles& Roles::add(Role role) noexcept
{
    m_bits |= bitOf(role);
    return *this;
}

std::vector<Role> Roles::list() const
{
    std::vector<Role> roles;
    for (const Role role : allRoles)
    {
        if (contains(role))
            roles.push_back(role);
    }
    return roles;
}

Endpoint::Endpoint() : Endpoint(Content()) {}

Endpoint::Endpoint(const Content& content) : m_content(std::make_shared<const Content>(content)) {}

Endpoint::Endpoint(Content&& content) : m_content(std::make_shared<const Content>(std::move(content))) {}

std::string Endpoint::title() const
{
    const std::optional<std::string> known = name();
    if (known && !known->empty())
        return text::printable(*known);
    const std::string unknown = std::string("unnamed ") + wordsOf(flow());
    return id().isEmpty() ? unknown : unknown + " " + text::printable(id().text());
}

std::optional<std::string> Endpoint::name() const
{
    if (!description() || !interfaceName())
        return description() ? description() : interfaceName();
    return *description() + " (" + *interfaceName() + ")";
}

std::optional<NodeKind> Endpoint::jackKind() const noexcept
{
    if (jacks().empty() || !jacks().front().type)
        return std::nullopt;
    return jacks().front().kind();
}

std::optional<Problem> Endpoint::problemWith(EndpointField field) const
{
    for (const EndpointProblem& one : problems())
    {
        if (one.field == field)
            return one.problem;
    }
    // Of an endpoint whose state is not known, what only some states have was not asked for.
    const bool needsState = field == EndpointField::jacks || (field == EndpointField::volume && !volume());
    return needsState && !state() ? problemWith(EndpointField::state) : std::nullopt;
}

bool operator==(const EndpointProblem& left, const EndpointProblem& right)
{
    return left.field == right.field && left.problem == right.problem;
}

bool operator==(const Endpoint& left, const Endpoint& right)
{
    const Endpoint::Content& a = left.content();
    const Endpoint::Content& b = right.content();
    return &a == &b ||
           (a.id == b.id && a.description == b.description && a.interfaceName == b.interfaceName && a.flow == b.flow &&
            a.state == b.state && a.roles == b.roles && a.jacks == b.jacks && a.volume == b.volume &&
            a.format == b.format && a.speakers == b.speakers && a.waveId == b.waveId &&
            a.directSoundId == b.directSoundId && a.driverNode == b.driverNode && a.container == b.container &&
            a.instancePath == b.instancePath && a.incarnation == b.incarnation && a.problems == b.problems);
}

const char* keyOf(Flow flow) noexcept
{
    return nameOf(flows, flow, unknownName).key;
}

const char* keyOf(State state) noexcept
{
    return nameOf(states, state, unknownName).key;
}

const char* keyOf(Role role) noexcept
{
    return nameOf(roleNames, role, unknownName).key;
}

const char* keyOf(EndpointField field) noexcept
{
    return nameOf(fields, field, unknownName).key;
}

const char* wordsOf(Flow flow) noexcept
{
    return nameOf(flows, flow, unknownName).words;
}

const char* wordsOf(State state) noexcept
{
    return nameOf(states, state, unknownName).words;
}

const char* wordsOf(Role role) noexcept
{
    return nameOf(roleNames, role, unknownName).words;
}

const char* wordsOf(EndpointField field) noexcept
{
    return nameOf(fields, field, unknownName).words;
}

bool isInternalContainer(const Guid& container) noexcept
{
    return container == internalContainer;
}

std::ostream& operator<<(std::ostream& out, Flow flow)
{
    return out << wordsOf(flow);
}

std::ostream& operator<<(std::ostream& out, State state)
{
    return out << wordsOf(state);
}

std::ostream& operator<<(std::ostream& out, Role role)
{
    return out << wordsOf(role);
}

std::ostream& operator<<(std::ostream& out, Roles roles)
{
    std::vector<std::string> words;
    for (const Role role : roles.list())
        words.emplace_back(wordsOf(role));
    return out << (words.empty() ? text::nothing : text::enumeration(words));
}

std::ostream& operator<<(std::ostream& out, EndpointField field)
{
    return out << wordsOf(field);
}

std::ostream& operator<<(std::ostream& out, const EndpointProblem& problem)
{
    return out << wordsOf(problem.field) << ": " << problem.problem;
}

std::ostream& operator<<(std::ostream& out, const Endpoint& endpoint)
{
    const Endpoint::Content& content = endpoint.content();
    text::Fields list(out, "Endpoint");
    list.add("id", content.id.text())
        .add("description", content.description)
        .add("interfaceName", content.interfaceName)
        .add("flow", content.flow)
        .add("state", content.state);
    if (!content.roles.isEmpty())
        list.add("roles", content.roles);
    list.add("jacks", content.jacks)
        .add("volume", content.volume)
        .add("format", content.format)
        .add("speakers", content.speakers)
        .add("waveId", content.waveId)
        .add("directSoundId", content.directSoundId)
        .add("driverNode", content.driverNode)
        .add("container", content.container)
        .add("instancePath", content.instancePath);
    if (content.incarnation != 0)
        list.add("incarnation", content.incarnation);
    list.add("problems", content.problems);
    return out;
}
}
}
