#include "tools/sonavit/choice.h"
#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/modeljson.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/table.h"
#include "tools/sonavit/output/tableprinter.h"
#include "tools/sonavit/output/text.h"
#include "tools/sonavit/problemnote.h"
#include "tools/sonavit/simulationnote.h"

#include <algorithm>

namespace sonavit::program
{
namespace
{
/// A selector with the card that it belongs to.
struct CardSelector
{
    Card card;
    Selector selector;
};

Found<CardSelector> readSelectors(const Context& context, const std::vector<Card>& cards)
{
    Found<CardSelector> result;
    for (const Card& card : cards)
    {
        const Result<Found<Selector>> selectors = context.session.source().selectors(card.id());
        if (!selectors)
            raise(selectors.problem(), "the selectors of " + inQuotes(card.title()) + " cannot be read");
        for (const Selector& selector : selectors->things)
            result.things.push_back({card, selector});
        result.problems.insert(result.problems.end(), selectors->problems.begin(), selectors->problems.end());
    }
    return result;
}

std::size_t countProblems(const Found<CardSelector>& found)
{
    std::size_t count = found.problems.size();
    for (const CardSelector& known : found.things)
        count += known.selector.problems.size();
    return count;
}

/// Why cards with selectors may be split, and have other ids than otherwise.
std::vector<Problem> problemsOfCards(const std::vector<CardSelector>& selectors)
{
    std::vector<Problem> problems;
    for (const CardSelector& known : selectors)
    {
        for (const Endpoint& endpoint : known.card.endpoints())
        {
            const std::optional<Problem> problem = endpoint.problemWith(EndpointField::instancePath);
            if (problem && std::find(problems.begin(), problems.end(), *problem) == problems.end())
                problems.push_back(*problem);
        }
    }
    return problems;
}

void showSelector(const Environment& environment, const Card& card, const Selector& selector)
{
    const std::string name = selector.name ? ", " + printable(*selector.name) : "";
    environment.out << painted(printable(card.title()) + name, Paint::bold, environment.hasColours) << "\n";
    using Align = Table::Column::Align;
    Table table({{Align::left, 0, 0, 0, 0, ""},
                 {Align::left, 2, 0, 10, 4, ""},
                 {Align::left, 2, 1, 0, 0, "jack"},
                 {Align::left, 2, 2, 0, 0, "input name"}});
    for (const SelectorInput& input : selector.inputs)
    {
        const bool isSelected = &input == selector.selected();
        const Paint paint = isSelected ? Paint::none : Paint::dim;
        table.add({{isSelected ? "  *" : "   ", Paint::green},
                   {printable(input.connectorName.value_or(nothing)), isSelected ? Paint::bold : Paint::dim},
                   {kindWords(input.connectorType), paint},
                   {input.name ? "through " + printable(*input.name) : "", Paint::dim}});
    }
    printTable(environment, table);
    if (selector.selected() == nullptr)
        environment.out << "  selection " << (selector.selection ? std::to_string(*selector.selection) : nothing)
                        << "\n";
}

/// "Combo 3", or the number of a selection that is no input.
std::string selectionWords(const Selector& selector)
{
    if (const SelectorInput* const input = selector.selected())
        return printable(input->title());
    return selector.selection ? std::to_string(*selector.selection) : nothing;
}

/// The selector as it was before it became @p after.
std::optional<CardSelector> before(const std::vector<CardSelector>& selectors, const Selector& after)
{
    const auto found = std::find_if(selectors.begin(), selectors.end(),
                                    [&](const CardSelector& known) { return known.selector.id == after.id; });
    return found == selectors.end() ? std::nullopt : std::optional<CardSelector>(*found);
}

Json selectionJson(const Selector& selector)
{
    const SelectorInput* const input = selector.selected();
    return Json::object({{"id", selector.selection}, {"name", input != nullptr ? Json(input->title()) : Json()}});
}
}

void runSelectors(Context& context)
{
    const Snapshot snapshot = readSnapshot(context);
    const std::vector<Card> cards = requestedCards(context, snapshot);
    reportDenied(context, cards);
    Found<CardSelector> found = readSelectors(context, cards);
    const std::vector<Problem> unlisted = problemsOfLists(snapshot);
    found.problems.insert(found.problems.begin(), unlisted.begin(), unlisted.end());
    const std::vector<CardSelector>& selectors = found.things;
    if (context.arguments.isJson)
    {
        Json list = Json::array();
        for (const CardSelector& known : selectors)
            list.append(selectorJson(known.card, known.selector));
        const std::vector<Problem> ofCards = problemsOfCards(selectors);
        found.problems.insert(found.problems.end(), ofCards.begin(), ofCards.end());
        context.environment.out << machineDocument(context.session.machineName())
                                       .set("selectors", list)
                                       .set("problems", problemsJson(found.problems))
                                       .text()
                                << "\n";
        return;
    }
    for (const CardSelector& known : selectors)
        showSelector(context.environment, known.card, known.selector);
    if (selectors.empty())
        context.environment.out << "There is no input selector.\n";
    showProblems(context, countProblems(found), "--json says why");
}

void runSelect(Context& context)
{
    const Snapshot snapshot = readSnapshot(context);
    const std::vector<Card> cards = requestedCards(context, snapshot);
    reportDenied(context, cards);
    const Found<CardSelector> known = readSelectors(context, cards);
    const Arguments& arguments = context.arguments;
    System& audio = context.session.audio();
    const Result<Selector> after = arguments.card.empty()
                                       ? audio.select(arguments.selector, arguments.input)
                                       : audio.select(cards.front().id(), arguments.selector, arguments.input);
    if (!after)
        raiseOfHardware(after.problem(), known.problems, "sonavit selectors");
    announceTemporaryChange(context);
    const std::optional<CardSelector> former = before(known.things, *after);
    const Card card = former ? former->card : Card();
    if (arguments.isJson)
    {
        context.environment.out << machineDocument(context.session.machineName())
                                       .set("selector", selectorJson(card, *after))
                                       .set("before", former ? selectionJson(former->selector) : Json())
                                       .set("after", selectionJson(*after))
                                       .text()
                                << "\n";
        return;
    }
    context.environment.out << printable(card.title()) << ", " << printable(after->title()) << ": "
                            << (former ? selectionWords(former->selector) : nothing) << " \xE2\x86\x92 "
                            << selectionWords(*after) << "\n";
}
}
