#include "client/model/objectmodel.h"

#include "client/model/cards.h"
#include "client/model/hardwaregraph.h"
#include "client/model/levels.h"
#include "qor/exception.h"

#include <algorithm>
#include <utility>

namespace sonavit::model
{
/// The cards of the last snapshot.
struct ObjectModel::State
{
    std::vector<ModelCard> cards;

    /// Null if there is no such card. The object model keeps paths apart that differ in case; the first one counts.
    ModelCard* find(const CardId& id)
    {
        const auto found =
            std::find_if(cards.begin(), cards.end(), [&](const ModelCard& card) { return card.value.id() == id; });
        return found == cards.end() ? nullptr : &*found;
    }
};

namespace
{
Problem noCard(const char* operation, const CardId& id)
{
    return Problem(Problem::Kind::notThere, operation, id.text(), "there is no card " + id.text());
}

/// The object model finds the controls on a walk through the card's graph, which may lead out of it.
Result<std::vector<Control>> readControls(const ModelCard& card, const ModelEndpoint& endpoint)
{
    const auto failure = [&](const std::string& reason)
    {
        return Problem(Problem::Kind::internal, "SoundCard::volumeController", endpoint.value.id().text(),
                       "the hardware controls of " + endpoint.value.title() + " cannot be read: " + reason);
    };
    qor::Array<::SoundCard::VolumeController> records;
    try
    {
        card.card.volumeController(endpoint.device, records);
    }
    catch (const qor::IndexOutOfBounds&)
    {
        return failure("the path leads to a part that the card's graph does not contain");
    }
    catch (const qor::AssertionFailure&)
    {
        return failure("the platform reported success without a result");
    }
    std::vector<Control> controls;
    for (unsigned i = 0; i < records.size(); ++i)
        controls.push_back(readControl(records[i]));
    return controls;
}

/// The object model returns the selectors' interfaces alone. The part and device of each come from the graph, whose
/// walk has the same order; if the two walks find different numbers, they are left out.
std::vector<Selector> readSelectors(ModelCard& card)
{
    qor::Array<COMPtr<IAudioInputSelector>::pointer> found;
    card.card.recordingMux(found);
    const HardwareGraph graph(card.endpoints);
    const std::vector<std::size_t> parts = graph.selectorParts();
    std::vector<Selector> selectors;
    for (unsigned i = 0; i < found.size(); ++i)
    {
        Selector selector = parts.size() == found.size() ? graph.describeSelector(parts[i]) : Selector();
        selector.selection = readSelection(found[i]);
        selectors.push_back(std::move(selector));
    }
    return selectors;
}
}

ObjectModel::ObjectModel() = default;
ObjectModel::~ObjectModel() = default;

ObjectModel::State& ObjectModel::state()
{
    if (m_state == nullptr)
        static_cast<void>(snapshot());
    return *m_state;
}

Snapshot ObjectModel::snapshot()
{
    Listing listing = listEndpoints();
    auto state = std::make_unique<State>();
    state->cards = listCards(listing.endpoints, listing.problems);
    Snapshot::Content content;
    for (const ModelCard& card : state->cards)
        content.cards.push_back(card.value);
    content.defaults = listing.defaults;
    content.problems = std::move(listing.problems);
    m_state = std::move(state);
    return Snapshot(std::move(content));
}

Result<std::vector<Control>> ObjectModel::controls(const EndpointId& endpoint)
{
    for (const ModelCard& card : state().cards)
    {
        for (const ModelEndpoint& candidate : card.endpoints)
        {
            if (candidate.value.id() == endpoint)
                return readControls(card, candidate);
        }
    }
    return Problem(Problem::Kind::notThere, "controls", endpoint.text(), "there is no endpoint " + endpoint.text());
}

Result<std::vector<Selector>> ObjectModel::selectors(const CardId& card)
{
    ModelCard* const found = state().find(card);
    if (found == nullptr)
        return noCard("selectors", card);
    return readSelectors(*found);
}

Result<Graph> ObjectModel::graph(const std::vector<CardId>& cards)
{
    for (const CardId& card : cards)
    {
        if (state().find(card) == nullptr)
            return noCard("graph", card);
    }
    std::vector<ModelEndpoint> endpoints;
    for (const ModelCard& card : state().cards)
    {
        const bool isMeant = std::find(cards.begin(), cards.end(), card.value.id()) != cards.end();
        if (isMeant && state().find(card.value.id()) == &card)
            endpoints.insert(endpoints.end(), card.endpoints.begin(), card.endpoints.end());
    }
    return HardwareGraph(endpoints).graph();
}
}
