#include "tools/sonavit/accountrights.h"
#include "tools/sonavit/cardgraph.h"
#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/endpointname.h"
#include "tools/sonavit/output/json.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/table.h"
#include "tools/sonavit/output/text.h"

#include <algorithm>
#include <utility>

namespace sonavit::program
{
namespace
{
/// One input of a selector.
struct Input
{
    std::optional<unsigned> id; ///< the selection has this value when the input is selected
    std::optional<std::string> name;
    std::optional<std::string> connectorName; ///< of the connector that feeds this input
    std::optional<GUID> connectorType;
};

struct Selector
{
    std::optional<unsigned> selection;
    std::optional<std::string> deviceId;
    std::optional<std::string> deviceName;
    std::optional<std::string> name;
    std::vector<Input> inputs;
};

std::optional<unsigned> selectionOf(const COMPtr<IAudioInputSelector>::pointer& selector)
{
    UINT selection = 0;
    if (selector.get() == nullptr || FAILED(selector->GetSelection(&selection)))
        return std::nullopt;
    return selection;
}

/// The subunits of a card's adapters that are selectors, in the order in which the library searches.
std::vector<std::size_t> selectorParts(const CardGraph& graph)
{
    std::vector<std::size_t> result;
    for (const CardGraph::Device& device : graph.devices())
    {
        if (device.kind != CardGraph::Device::Kind::adapter)
            continue;
        for (const std::size_t part : device.parts)
        {
            void* object = nullptr;
            const COMPtr<IPart>::pointer platformPart = graph.parts()[part].part.part();
            if (!graph.parts()[part].isConnector && platformPart.get() != nullptr)
                platformPart->Activate(CLSCTX_ALL, IID_IAudioInputSelector, &object);
            const COMPtr<IAudioInputSelector>::pointer holder(static_cast<IAudioInputSelector*>(object));
            if (object != nullptr)
                result.push_back(part);
        }
    }
    return result;
}

/// The nearest connector upstream of a part.
std::size_t sourceConnector(const CardGraph& graph, std::size_t part)
{
    std::vector<std::size_t> reached = {part};
    for (std::size_t i = 0; i < reached.size(); ++i)
    {
        if (graph.parts()[reached[i]].isConnector)
            return reached[i];
        for (const std::size_t source : graph.sourcesOf(reached[i]))
        {
            if (std::find(reached.begin(), reached.end(), source) == reached.end())
                reached.push_back(source);
        }
    }
    return CardGraph::none;
}

Input readInput(const CardGraph& graph, std::size_t part)
{
    Input input;
    UINT id = 0;
    const COMPtr<IPart>::pointer platformPart = graph.parts()[part].part.part();
    if (platformPart.get() != nullptr && SUCCEEDED(platformPart->GetLocalId(&id)))
        input.id = id;
    input.name = graph.parts()[part].name;
    const std::size_t connector = sourceConnector(graph, part);
    if (connector != CardGraph::none)
    {
        input.connectorName = graph.parts()[connector].name;
        input.connectorType = graph.parts()[connector].type;
    }
    return input;
}

/// The library returns only the selectors' interfaces. The part and device of each come from the graph, whose walk has
/// the same order; if the two walks find different numbers, they are left out.
std::vector<Selector> readSelectors(Card& card)
{
    qor::Array<COMPtr<IAudioInputSelector>::pointer> found;
    card.card.recordingMux(found);
    const CardGraph graph(std::vector<Card>{card});
    const std::vector<std::size_t> parts = selectorParts(graph);
    std::vector<Selector> selectors;
    for (unsigned i = 0; i < found.size(); ++i)
    {
        Selector selector;
        selector.selection = selectionOf(found[i]);
        if (parts.size() == found.size())
        {
            const CardGraph::Part& part = graph.parts()[parts[i]];
            selector.deviceId = graph.devices()[part.device].id;
            selector.deviceName = graph.devices()[part.device].name;
            selector.name = part.name;
            for (const std::size_t source : graph.sourcesOf(parts[i]))
                selector.inputs.push_back(readInput(graph, source));
        }
        selectors.push_back(std::move(selector));
    }
    return selectors;
}

Json selectorJson(const Card& card, const Selector& selector)
{
    Json inputs = Json::array();
    for (const Input& input : selector.inputs)
    {
        inputs.append(Json::object({{"id", input.id},
                                    {"name", input.name},
                                    {"connector", input.connectorName},
                                    {"jack", kindKey(input.connectorType)},
                                    {"isSelected", input.id && input.id == selector.selection}}));
    }
    return Json::object({{"card", card.id},
                         {"cardName", card.name},
                         {"device", selector.deviceId},
                         {"deviceName", selector.deviceName},
                         {"name", selector.name},
                         {"selection", selector.selection},
                         {"inputs", inputs}});
}

void showSelector(const Environment& environment, const Card& card, const Selector& selector)
{
    const std::string name = selector.name ? ", " + printable(*selector.name) : "";
    environment.out << painted(printable(card.name) + name, Paint::bold, environment.hasColours) << "\n";
    using Align = Table::Column::Align;
    Table table({{Align::left, 0, 0, 0, 0, ""},
                 {Align::left, 2, 0, 10, 4, ""},
                 {Align::left, 2, 1, 0, 0, "jack"},
                 {Align::left, 2, 2, 0, 0, "input name"}});
    bool isSelectionShown = false;
    for (const Input& input : selector.inputs)
    {
        const bool isSelected = input.id && input.id == selector.selection;
        isSelectionShown = isSelectionShown || isSelected;
        const Paint paint = isSelected ? Paint::none : Paint::dim;
        table.add({{isSelected ? "  *" : "   ", Paint::green},
                   {printable(input.connectorName.value_or(nothing)), isSelected ? Paint::bold : Paint::dim},
                   {kindWords(input.connectorType), paint},
                   {input.name ? "through " + printable(*input.name) : "", Paint::dim}});
    }
    for (const std::string& line : table.lines(environment.width, environment.hasColours))
        environment.out << line << "\n";
    for (const std::string& line : leftOutNote(table.leftOut(environment.width), environment.width))
        environment.out << painted(line, Paint::dim, environment.hasColours) << "\n";
    if (!isSelectionShown)
        environment.out << "  selection " << (selector.selection ? std::to_string(*selector.selection) : nothing)
                        << "\n";
}
}

void runSelectors(Context& context)
{
    std::vector<Card> cards = readCards();
    reportUnreadable(context, cards);
    keepCards(cards, context.arguments.card);
    Json list = Json::array();
    bool hasAny = false;
    for (Card& card : cards)
    {
        for (const Selector& selector : readSelectors(card))
        {
            list.append(selectorJson(card, selector));
            if (!context.arguments.isJson)
                showSelector(context.environment, card, selector);
            hasAny = true;
        }
    }
    if (context.arguments.isJson)
        context.environment.out
            << Json::document({{"machine", context.session.machineName()}, {"selectors", list}}).text() << "\n";
    else if (!hasAny)
        context.environment.out << "There is no input selector.\n";
}
}
