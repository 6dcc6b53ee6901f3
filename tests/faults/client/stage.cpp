#include "tests/faults/client/stage.h"

#include "client/reading/endpointreading.h"
#include "client/worker/worker.h"

#include <algorithm>
#include <chrono>
#include <sstream>
#include <utility>

using namespace sonavit;

namespace faults::client
{
Stage::Stage(const sim::Machine& machine, const Targets& targets) : m_targets(targets)
{
    static_cast<void>(CoInitialize(nullptr));
    m_redirection = std::make_unique<sim::Redirection>(reinterpret_cast<const void*>(&reading::createEnumerator));
    m_simulation = std::make_unique<sim::Simulation>(machine);
    m_simulation->latency().clear();
    m_simulation->deliverAtOnce(true);
    m_simulation->onViolation(
        [this](const sim::Violation& violation)
        {
            std::ostringstream out;
            out << violation;
            violations.push_back(out.str());
        });
    worker::replaceClock(m_clock);
    m_audio = std::make_unique<System>(options());
}

Stage::~Stage()
{
    endSystem();
    worker::replaceClock(nullptr);
    m_simulation.reset();
    m_redirection.reset();
    CoUninitialize();
}

System::Options Stage::options()
{
    System::Options options;
    options.delivery = Delivery::poll;
    options.patience = std::chrono::minutes(10); // of a clock that stands still: what hangs is seen from outside
    options.onWorkerStart = [this] { static_cast<void>(m_simulation->registerOnThisThread()); };
    return options;
}

void Stage::settle()
{
    if (const std::shared_ptr<worker::Worker> worker = worker::Worker::current())
        worker->settle();
}

void Stage::advance(std::chrono::milliseconds duration)
{
    m_clock->advance(duration);
    settle();
}

void Stage::endSystem()
{
    hold.reset();
    watches.clear();
    subscriptions.clear();
    m_audio.reset();
}

sim::Census Stage::left()
{
    m_simulation->events().waitForClients();
    return m_simulation->census();
}

namespace
{
/// The settings with each level and mute at another value, so that there is something to restore.
Settings changed(Settings settings)
{
    const auto move = [](std::optional<Decibels>& level)
    {
        if (level)
            level = Decibels(level->value() - 3);
    };
    const auto flip = [](std::optional<bool>& isMuted)
    {
        if (isMuted)
            isMuted = !*isMuted;
    };
    for (Settings::EndpointSetting& endpoint : settings.endpoints)
    {
        std::for_each(endpoint.channels.begin(), endpoint.channels.end(), move);
        move(endpoint.master);
        flip(endpoint.isMuted);
        for (Settings::ControlSetting& control : endpoint.controls)
        {
            std::for_each(control.channels.begin(), control.channels.end(), move);
            flip(control.isMuted); // may be the mute of the endpoint itself
        }
    }
    return settings;
}

void chooseEndpoints(Targets& targets, const Snapshot& snapshot)
{
    std::optional<Endpoint> output = snapshot.defaultEndpoint(Flow::output);
    for (const Endpoint& endpoint : snapshot.endpoints())
    {
        if (!output && endpoint.volume())
            output = endpoint;
        if (targets.formatted.isEmpty() && endpoint.format())
            targets.formatted = endpoint.id();
        const bool isDefault = !endpoint.roles().isEmpty();
        if (endpoint.isActive() && endpoint.flow() == Flow::output && !isDefault)
            targets.other = endpoint.id();
    }
    if (!output)
        return;
    targets.output = output->id();
    const Card card = snapshot.cardOf(output->id()).value();
    targets.card = card.id();
    targets.instanceId = card.instanceId().value_or("");
}

void chooseControls(Targets& targets, const System& audio, const EndpointId& endpoint)
{
    if (targets.control && targets.mute)
        return;
    for (const Control& control : audio.controls(endpoint).value())
    {
        const bool hasLevel = control.channels && !control.channels->empty();
        if (!targets.control && hasLevel)
        {
            targets.controlled = endpoint;
            targets.control = control;
        }
        if (!targets.mute && control.hasMute)
        {
            targets.mutable_ = endpoint;
            targets.mute = control;
        }
    }
}

void chooseSelector(Targets& targets, const System& audio, const CardId& card)
{
    for (const Selector& selector : audio.selectors(card).value())
    {
        for (const SelectorInput& input : selector.inputs)
        {
            if (targets.selector || !input.number || input.number == selector.selection)
                continue;
            targets.selecting = card;
            targets.selector = selector;
            targets.input = std::to_string(*input.number);
        }
    }
}
}

Targets targetsOf(const sim::Machine& machine)
{
    Targets targets;
    Stage stage(machine, targets);
    System& audio = stage.audio();
    const Snapshot snapshot = audio.snapshot();
    chooseEndpoints(targets, snapshot);
    for (const Card& card : snapshot.cards())
    {
        targets.cards.push_back(card.id());
        chooseSelector(targets, audio, card.id());
        for (const Endpoint& endpoint : card.endpoints())
            chooseControls(targets, audio, endpoint.id());
    }
    if (!targets.output.isEmpty())
        targets.reference = audio.refer(targets.output).value();
    targets.settings = changed(audio.settings().value());
    return targets;
}
}
