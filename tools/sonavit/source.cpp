#include "tools/sonavit/source.h"

#include "client/model/objectmodel.h"
#include "sonavit/system.h"

#include <algorithm>
#include <utility>

namespace sonavit::program
{
namespace
{
class LayerSource final : public Source
{
public:
    explicit LayerSource(System& audio) : m_audio(audio) {}

    Snapshot snapshot() override { return m_audio.snapshot(); }
    Result<Found<Control>> controls(const CardEndpoint& place) override;
    Result<Found<Selector>> selectors(const CardId& card) override;
    Result<Graph> graph(const std::vector<CardId>& cards) override { return m_audio.graph(cards); }

private:
    Result<Hardware> hardware(const CardId& card);

    System& m_audio;
};

/// While a card is watched, the snapshot has what its walk could not read, too. Its events are of no use here, so
/// neither is it a problem if there are none.
Result<Hardware> LayerSource::hardware(const CardId& card)
{
    const Result<Watch> watch = m_audio.watch(card);
    if (!watch)
        return watch.problem();
    Hardware hardware = m_audio.snapshot().hardware(card).value_or(Hardware());
    const auto isOfEvents = [](const Problem& problem)
    { return problem.operation() == "IPart::RegisterControlChangeCallback"; };
    std::vector<Problem>& problems = hardware.problems;
    problems.erase(std::remove_if(problems.begin(), problems.end(), isOfEvents), problems.end());
    return hardware;
}

Result<Found<Control>> LayerSource::controls(const CardEndpoint& place)
{
    const Result<Hardware> known = hardware(place.card.id());
    if (!known)
        return known.problem();
    Found<Control> found{{}, known->problems};
    for (const Hardware::EndpointControls& controls : known->controls)
    {
        if (controls.endpoint == place.endpoint.id())
            found.things = controls.controls;
    }
    return found;
}

Result<Found<Selector>> LayerSource::selectors(const CardId& card)
{
    const Result<Hardware> known = hardware(card);
    if (!known)
        return known.problem();
    return Found<Selector>{known->selectors, known->problems};
}

/// The object model tells no problems.
template<class Thing>
Result<Found<Thing>> withoutProblems(Result<std::vector<Thing>> things)
{
    if (!things)
        return things.problem();
    return Found<Thing>{*std::move(things), {}};
}

class ModelSource final : public Source
{
public:
    Snapshot snapshot() override { return m_model.snapshot(); }
    Result<Found<Control>> controls(const CardEndpoint& place) override
    {
        return withoutProblems(m_model.controls(place.endpoint.id()));
    }
    Result<Found<Selector>> selectors(const CardId& card) override { return withoutProblems(m_model.selectors(card)); }
    Result<Graph> graph(const std::vector<CardId>& cards) override { return m_model.graph(cards); }

private:
    model::ObjectModel m_model;
};
}

std::unique_ptr<Source> sourceFrom(System& audio)
{
    return std::make_unique<LayerSource>(audio);
}

std::unique_ptr<Source> sourceFromObjectModel()
{
    return std::make_unique<ModelSource>();
}
}
