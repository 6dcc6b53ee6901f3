#include "client/reading/hardwarewalk.h"
#include "sonavit/namesearch.h"
#include "sonavit/text.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace sonavit::reading
{
namespace
{
using Names = NameSearch::Names;

/// Why a name may be missing.
std::optional<Problem> nameProblem(const std::vector<Problem>& problems)
{
    const auto found = std::find_if(problems.begin(), problems.end(),
                                    [](const Problem& problem) { return problem.operation() == "IPart::GetName"; });
    return found == problems.end() ? std::nullopt : std::optional<Problem>(*found);
}

void add(Names& names, const std::optional<std::string>& name)
{
    if (name)
        names.whole.push_back(*name);
}

/// A title for a sentence that lists candidates; titles may be equal, ids are not.
std::string candidate(const std::string& title, const std::string& id)
{
    return text::shortened(title, NameSearch::longestCandidate) + " " + text::printable(id);
}

Names namesOf(const Control& control)
{
    Names names{{control.id.text(), control.title()}, candidate(control.title(), control.id.text()), std::nullopt};
    add(names, control.name);
    add(names, control.ownerName);
    names.failure = nameProblem(control.problems);
    return names;
}

Names namesOf(const Selector& selector)
{
    Names names{{selector.id.text(), selector.title()}, candidate(selector.title(), selector.id.text()), std::nullopt};
    add(names, selector.name);
    names.failure = nameProblem(selector.problems);
    return names;
}

Names namesOf(const SelectorInput& input)
{
    Names names{{input.title()}, text::shortened(input.title(), NameSearch::longestCandidate), std::nullopt};
    add(names, input.name);
    add(names, input.connectorName);
    if (input.number)
        names.title += " " + std::to_string(*input.number);
    return names;
}

template<class Thing>
Result<Thing> named(const std::vector<Thing>& things, const NameSearch& search)
{
    std::vector<Names> names;
    names.reserve(things.size());
    for (const Thing& thing : things)
        names.push_back(namesOf(thing));
    const Result<std::size_t> position = search.in(names);
    if (!position)
        return position.problem();
    return things[*position];
}
}

Result<Control> controlNamed(const std::vector<Control>& controls, std::string_view text)
{
    const auto found =
        std::find_if(controls.begin(), controls.end(),
                     [&](const Control& control) { return !text.empty() && compareIds(control.id.text(), text) == 0; });
    return found == controls.end() ? named(controls, NameSearch("setControl", "control", text)) : *found;
}

Result<Selector> selectorNamed(const std::vector<Selector>& selectors, std::string_view text)
{
    const auto found = std::find_if(selectors.begin(), selectors.end(),
                                    [&](const Selector& selector)
                                    { return !text.empty() && compareIds(selector.id.text(), text) == 0; });
    return found == selectors.end() ? named(selectors, NameSearch("select", "selector", text)) : *found;
}

Result<SelectorInput> inputNamed(const Selector& selector, std::string_view text)
{
    const auto found =
        std::find_if(selector.inputs.begin(), selector.inputs.end(),
                     [&](const SelectorInput& input) { return input.number && std::to_string(*input.number) == text; });
    return found == selector.inputs.end() ? named(selector.inputs, NameSearch("select", "input", text)) : *found;
}
}
