#include "tools/sonavit/source.h"

#include "client/model/objectmodel.h"
#include "sonavit/system.h"

namespace sonavit::program
{
namespace
{
class LayerSource final : public Source
{
public:
    explicit LayerSource(System& audio) : m_audio(audio) {}

    Snapshot snapshot() override { return m_audio.snapshot(); }
    Result<std::vector<Control>> controls(const EndpointId& endpoint) override { return m_audio.controls(endpoint); }
    Result<std::vector<Selector>> selectors(const CardId& card) override { return m_audio.selectors(card); }
    Result<Graph> graph(const std::vector<CardId>& cards) override { return m_audio.graph(cards); }

private:
    System& m_audio;
};

class ModelSource final : public Source
{
public:
    Snapshot snapshot() override { return m_model.snapshot(); }
    Result<std::vector<Control>> controls(const EndpointId& endpoint) override { return m_model.controls(endpoint); }
    Result<std::vector<Selector>> selectors(const CardId& card) override { return m_model.selectors(card); }
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
