#include "client/reading/hardwarewalk.h"
#include "sonavit/namesearch.h"
#include "sonavit/text.h"

#include <algorithm>
#include <optional>
#include <string>
#include <type_traits>
#include <unordered_map>
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

/// Adds their ids, which are the first of their names, to the titles that several things have.
void tellApart(std::vector<Names>& things)
{
    std::unordered_map<std::string, unsigned> counts;
    for (const Names& names : things)
        ++counts[names.title];
    for (Names& names : things)
    {
        if (counts[names.title] > 1)
            names.title += " " + text::printable(names.whole.front());
    }
}

/// A title for a sentence that lists candidates.
std::string shortTitle(const std::string& title)
{
    return text::shortened(title, NameSearch::longestCandidate);
}

Names namesOf(const Control& control)
{
    Names names{{control.id.text(), control.title()}, shortTitle(control.title()), std::nullopt};
    add(names, control.name);
    add(names, control.ownerName);
    names.failure = nameProblem(control.problems);
    return names;
}

Names namesOf(const Selector& selector)
{
    Names names{{selector.id.text(), selector.title()}, shortTitle(selector.title()), std::nullopt};
    add(names, selector.name);
    names.failure = nameProblem(selector.problems);
    return names;
}

Names namesOf(const SelectorInput& input)
{
    Names names{{input.title()}, shortTitle(input.title()), std::nullopt};
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
    if constexpr (!std::is_same_v<Thing, SelectorInput>)
        tellApart(names);
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
