#include "tests/fuzz/support/modelrun.h"

#include "libSonavit/libsonavit.h"
#include "qor/exception.h"
#include "simulator/simulation.h"
#include "tests/fuzz/support/check.h"

#include <optional>
#include <string>

namespace fuzz
{
namespace
{
constexpr unsigned int anyState = DEVICE_STATEMASK_ALL;

class Observer final : public SoundCardObserver
{
public:
    void onDeviceStateChanged() override { ++notifications; }
    void onDeviceAdded() override { ++notifications; }
    void onDeviceRemoved() override { ++notifications; }

    unsigned notifications = 0;
};

const qor::String& idOf(const AudioDevice& endpoint)
{
    return endpoint.deviceProperty().deviceId;
}

/// A discovery lists each endpoint once; identity ignores case. An arrival is added without that test.
void checkDiscovery(const SoundCard& card)
{
    qor::Array<AudioDevice> endpoints;
    card.allPlaybackDevice(endpoints, anyState);
    card.microphoneEndpointDevice(endpoints);
    card.lineInEndpointDevice(endpoints);
    card.spdifInEndpointDevice(endpoints);
    for (unsigned int i = 0; i < endpoints.size(); ++i)
    {
        for (unsigned int j = 0; j < i; ++j)
            check(qor::String::compareNoCase(idOf(endpoints[i]), idOf(endpoints[j])) != 0,
                  "a card lists each endpoint once");
    }
}

/// A newcomer has no place in the graph: its controls raise the exception that says so.
void checkControls(const SoundCard& card, const AudioDevice& endpoint)
{
    qor::Array<SoundCard::VolumeController> controls;
    try
    {
        check(card.volumeController(endpoint, controls) == controls.size(), "controls are counted");
    }
    catch (const qor::IndexOutOfBounds&)
    {
    }
    for (unsigned int i = 0; i < controls.size(); ++i)
        check(controls[i].volumeLevel.get() != nullptr, "a control has a level");
}

void checkCard(SoundCard& card)
{
    qor::Array<AudioDevice> outputs;
    check(card.allPlaybackDevice(outputs, anyState) == outputs.size(), "outputs are counted");
    qor::Array<AudioDevice> inputs;
    card.microphoneEndpointDevice(inputs);
    card.lineInEndpointDevice(inputs);
    card.spdifInEndpointDevice(inputs);
    for (const qor::Array<AudioDevice>* const list : {&outputs, &inputs})
    {
        for (const AudioDevice& endpoint : *list)
            checkControls(card, endpoint);
    }
    qor::Array<COMPtr<IAudioInputSelector>::pointer> selectors;
    check(card.recordingMux(selectors) == selectors.size(), "selectors are counted");
}

void run(sim::Simulation& simulation, const std::vector<Step>& steps)
{
    Observer observer;
    qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    for (SoundCard& card : cards)
    {
        const BorrowedPointer<SoundCardObserver> handle(&observer);
        check(card.registerPlaybackObserver(handle) && card.registerRecordObserver(handle), "an observer is accepted");
        checkDiscovery(card);
        checkCard(card);
    }
    for (const Step& step : steps)
    {
        if (step.kind == Step::Kind::event)
            simulation.events().play(step.event);
    }
    simulation.events().waitForClients();
    for (SoundCard& card : cards)
        checkCard(card);
    libSonavit::AudioDeviceEnumeratorFactory::m_enumerator = nullptr; // before the observer, as the module ends
}

bool beginsWith(const std::string& text, const std::string& start)
{
    return text.compare(0, start.size(), start) == 0;
}

/// The lists of walks to neighbours, the strings of DirectSound GUIDs, and the ids of default endpoints.
void checkWhatIsKept(sim::Simulation& simulation)
{
    simulation.events().waitForClients();
    const sim::Census left = simulation.census();
    check(left.references() == left.references("IPartsList"), "the object model keeps lists of parts alone");
    check(left.clients.empty(), "the object model unregisters its clients");
    for (const auto& block : left.taskMemory)
        check(beginsWith(block.first, "IPropertyStore::GetValue") || beginsWith(block.first, "IMMDevice::GetId"),
              "the object model keeps two kinds of strings alone");
    check(simulation.violations().empty(), "no callback does what Windows forbids");
}
}

void checkObjectModel(const sim::Machine& machine, const std::vector<Step>& steps)
{
    sim::Simulation simulation(machine);
    simulation.deliverAtOnce(true);
    simulation.journal().record(false);
    run(simulation, steps);
    checkWhatIsKept(simulation);
}

support::Answers modelsAnswers(const sim::Machine& machine)
{
    sim::Simulation simulation(machine);
    simulation.journal().record(false);
    std::optional<support::Answers> answers;
    {
        sonavit::model::ObjectModel model;
        answers = support::askAll(model);
        libSonavit::AudioDeviceEnumeratorFactory::m_enumerator = nullptr; // ends the module for this machine
    }
    checkWhatIsKept(simulation);
    return *answers;
}
}
