#include "tests/fuzz/support/modelrun.h"

#include "libSonavit/libsonavit.h"
#include "qor/exception.h"
#include "simulator/machine/propertykeys.h"
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

bool isOfValue(const std::string& origin)
{
    return beginsWith(origin, "IPropertyStore::GetValue");
}

/// The lists of walks to neighbours, the strings of DirectSound GUIDs, and the ids of default endpoints.
void checkKinds(const sim::Census& left)
{
    check(left.references() == left.references("IPartsList"), "the object model keeps lists of parts alone");
    for (const auto& block : left.taskMemory)
        check(isOfValue(block.first) || beginsWith(block.first, "IMMDevice::GetId"),
              "the object model keeps two kinds of strings alone");
}

/// Counts the calls of which the object model keeps something on purpose. The journal cannot: what is kept keeps the
/// machine, and with it all that it has recorded.
class KeepingCalls
{
public:
    explicit KeepingCalls(sim::FaultPlan& plan)
        : m_walksIn(plan.run("IPart::EnumPartsIncoming", [] {})),
          m_walksOut(plan.run("IPart::EnumPartsOutgoing", [] {})),
          m_guids(plan.run("IPropertyStore::GetValue", [] {}).with(sim::keyText(sim::keys::endpointGuid))),
          m_defaults(plan.run("IMMDeviceEnumerator::GetDefaultAudioEndpoint", [] {}))
    {
    }

    /// A list for each walk to the neighbours of a part, a string for each DirectSound GUID, and an id for each default
    /// endpoint.
    void check(const sim::Census& left) const
    {
        fuzz::check(left.references() <= long{m_walksIn.met()} + long{m_walksOut.met()},
                    "the object model keeps one list of parts for each walk");
        long values = 0;
        long ids = 0;
        for (const auto& [origin, count] : left.taskMemory)
            (isOfValue(origin) ? values : ids) += count;
        fuzz::check(values <= long{m_guids.met()}, "the object model keeps one string for each GUID that it reads");
        fuzz::check(ids <= long{m_defaults.met()}, "the object model keeps one id for each default endpoint");
    }

private:
    sim::PlannedFault m_walksIn;
    sim::PlannedFault m_walksOut;
    sim::PlannedFault m_guids;
    sim::PlannedFault m_defaults;
};

/// On some machines, as it takes three times as long.
std::optional<KeepingCalls> countCalls(sim::Simulation& simulation, const sim::Machine& machine)
{
    if (machine.endpoints.size() % 4 != 0)
        return std::nullopt;
    return KeepingCalls(simulation.faults());
}

/// Calls are counted on some machines; on the others any number of the same things may be left.
void checkWhatIsKept(sim::Simulation& simulation, const std::optional<KeepingCalls>& calls)
{
    simulation.events().waitForClients();
    const sim::Census left = simulation.census();
    checkKinds(left);
    if (calls)
        calls->check(left);
    check(left.clients.empty(), "the object model unregisters its clients");
    check(simulation.violations().empty(), "no callback does what Windows forbids");
}
}

void checkObjectModel(const sim::Machine& machine, const std::vector<Step>& steps)
{
    sim::Simulation simulation(machine);
    simulation.deliverAtOnce(true);
    simulation.journal().record(false);
    const std::optional<KeepingCalls> calls = countCalls(simulation, machine);
    run(simulation, steps);
    checkWhatIsKept(simulation, calls);
}

support::Answers modelsAnswers(const sim::Machine& machine)
{
    sim::Simulation simulation(machine);
    simulation.journal().record(false);
    const std::optional<KeepingCalls> calls = countCalls(simulation, machine);
    std::optional<support::Answers> answers;
    {
        sonavit::model::ObjectModel model;
        answers = support::askAll(model);
        libSonavit::AudioDeviceEnumeratorFactory::m_enumerator = nullptr; // ends the module for this machine
    }
    checkWhatIsKept(simulation, calls);
    return *answers;
}
}
