#include "client/diagnosing/explainfacts.h"

#include "client/reading/text.h"
#include "simulator/machine/propertykeys.h"
#include "sonavit/nodekind.h"
#include "sonavit/text.h"

#include <string_view>
#include <utility>

namespace sonavit::diagnosing
{
namespace
{
/// How the ids of endpoints begin, and of no adapter.
constexpr std::string_view endpointIdStart = "{0.0.";
}

FactList::FactList(Reason::Question question, std::string title)
{
    m_reason.question = question;
    m_reason.title = std::move(title);
}

void FactList::add(std::string sentence)
{
    m_reason.facts.push_back({std::move(sentence), {}, {}, 0});
}

void FactList::add(std::string sentence, std::string call, std::string object)
{
    m_reason.facts.push_back({std::move(sentence), std::move(call), std::move(object), 0});
}

void FactList::addFailure(const Problem& problem, const std::string& effect)
{
    std::string sentence = problem.code() == 0 ? text::printable(problem.sentence()) + "."
                                               : "This call failed: " + reasonText(problem.code()) + ".";
    if (!effect.empty())
        sentence += " " + effect;
    m_reason.facts.push_back({std::move(sentence), problem.operation(), problem.object(), problem.code()});
}

Reason FactList::conclude(std::string sentence)
{
    m_reason.conclusion = std::move(sentence);
    return std::move(m_reason);
}

std::string listed(const std::vector<std::string>& names)
{
    if (names.size() <= mostNames)
        return text::enumeration(names);
    std::vector<std::string> first(names.begin(), names.begin() + (mostNames - 1));
    first.push_back(std::to_string(names.size() - first.size()) + " more");
    return text::enumeration(first);
}

std::string named(const std::string& name)
{
    return "\"" + text::printable(name) + "\"";
}

std::string kindWords(const GUID& type)
{
    const Guid guid = reading::guidOf(type);
    const NodeKind kind = kindOf(guid);
    return kind == NodeKind::other ? guid.text() : wordsOf(kind);
}

std::string labelOf(const Wiring::Node& node)
{
    const sim::OptionalString& name = node.part->name;
    return name && !name->empty() ? named(*name) : text::hexCode(node.part->localId);
}

std::string nameOf(const Wiring::Node& node)
{
    const std::string label = labelOf(node);
    return label.front() == '"' ? label : (node.connector == nullptr ? "the node " : "the connector ") + label;
}

std::string connectorWords(const Wiring::Node& node)
{
    return "the connector " + labelOf(node);
}

std::string sentenceFrom(std::string text)
{
    if (!text.empty() && text.front() >= 'a' && text.front() <= 'z')
        text.front() = static_cast<char>(text.front() - 'a' + 'A');
    return text;
}

std::string deviceWords(const sim::Device& device)
{
    // An endpoint's own name is its description; that of its device is the friendly name.
    const bool isEndpoint = device.id.compare(0, endpointIdStart.size(), endpointIdStart) == 0;
    const sim::PropertyValue* const name =
        sim::findProperty(device, isEndpoint ? sim::keys::deviceDescription : sim::keys::friendlyName);
    const bool isNamed = name != nullptr && name->tag == VT_LPWSTR && name->text && !name->text->empty();
    const std::string words = isEndpoint ? "endpoint" : "adapter";
    return isNamed ? "the " + words + " " + named(*name->text) : "an " + words + " without a name";
}
}
