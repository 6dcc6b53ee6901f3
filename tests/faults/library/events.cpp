// What a card has, and how it follows events.
#include "benchmarks/direct/card.h"
#include "libSonavit/libsonavit.h"
#include "tests/benchmarks/direct/supportvalues.h"
#include "tests/faults/library/choice.h"
#include "tests/faults/library/operation.h"

#include <algorithm>
#include <list>
#include <stdexcept>

namespace faults::library
{
namespace
{
using directvalues::Lines;

constexpr unsigned int fewCards = 2;

/// Counts its calls.
class CountingObserver final : public SoundCardObserver, public direct::Observer
{
public:
    void onDeviceStateChanged() override { ++m_changed; }
    void onDeviceAdded() override { ++m_added; }
    void onDeviceRemoved() override { ++m_removed; }

    std::string text() const
    {
        return std::to_string(m_changed) + " changed, " + std::to_string(m_added) + " added, " +
               std::to_string(m_removed) + " removed";
    }

private:
    int m_changed = 0;
    int m_added = 0;
    int m_removed = 0;
};

using Announcement = void (*)(sim::Events&, const std::string&);

const std::string leftTheGraph = "left the graph";

/// The first playback and the first record endpoint of the card.
std::vector<const AudioDevice*> someEndpoints(const SoundCard& card)
{
    std::vector<const AudioDevice*> some;
    for (const auto* const list : {card.m_playbackDevices.get(), card.m_recordDevices.get()})
    {
        if (list->size() > 0)
            some.push_back(&(*list)[0]);
    }
    return some;
}

std::vector<const direct::Device*> someEndpoints(const direct::Card& card)
{
    std::vector<const direct::Device*> some;
    for (const direct::Side* const side : {&card.data().playback, &card.data().record})
    {
        if (!side->devices.empty())
            some.push_back(&side->devices.front());
    }
    return some;
}

Lines controlsOf(const SoundCard& card, const AudioDevice& endpoint, qor::Array<SoundCard::VolumeController>& controls)
{
    try
    {
        card.volumeController(endpoint, controls);
        return {};
    }
    catch (const qor::IndexOutOfBounds&)
    {
        controls.clear();
        return {leftTheGraph};
    }
}

struct FoundControls
{
    qor::Array<SoundCard::VolumeController> controls;
    Lines lines;
};

/// In a list: a vector that grows loses what it copies if a destructor throws.
std::list<FoundControls> controlsOf(const qor::Array<SoundCard>& cards)
{
    std::list<FoundControls> all;
    for (unsigned int i = 0; i < std::min(cards.size(), fewCards); ++i)
    {
        for (const AudioDevice* const endpoint : someEndpoints(cards[i]))
        {
            all.emplace_back();
            all.back().lines = controlsOf(cards[i], *endpoint, all.back().controls);
        }
    }
    return all;
}

Lines linesOf(const std::list<FoundControls>& all)
{
    Lines lines;
    for (const FoundControls& found : all)
    {
        lines.insert(lines.end(), found.lines.begin(), found.lines.end());
        for (unsigned int i = 0; i < found.controls.size(); ++i)
            directvalues::add(lines, found.controls[i]);
    }
    return lines;
}

void findControls(Run& run)
{
    const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    std::list<FoundControls> found;
    run.act([&] { found = controlsOf(cards); });
    for (const std::string& line : linesOf(found))
        run.answer(line);
    found.clear();
    for (const std::string& line : linesOf(controlsOf(cards)))
        run.later(line);
}

Lines modelOfControls(sim::Simulation&, const std::function<void()>& arm)
{
    direct::Client client;
    const std::vector<direct::Card> cards = direct::Card::findAll(client);
    arm();
    std::vector<std::vector<direct::Control>> found;
    Lines lines;
    for (std::size_t i = 0; i < cards.size() && i < fewCards; ++i)
    {
        for (const direct::Device* const endpoint : someEndpoints(cards[i]))
        {
            try
            {
                for (const direct::Control& control : cards[i].controlsOf(*endpoint))
                    directvalues::add(lines, control);
            }
            catch (const std::out_of_range&)
            {
                lines.push_back(leftTheGraph);
            }
        }
    }
    return lines;
}

void findSelectors(Run& run)
{
    qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    const auto count = [&]
    {
        unsigned int found = 0;
        for (unsigned int i = 0; i < std::min(cards.size(), fewCards); ++i)
        {
            qor::Array<COMPtr<IAudioInputSelector>::pointer> selectors;
            found += cards[i].recordingMux(selectors);
        }
        return found;
    };
    unsigned int found = 0;
    run.act([&] { found = count(); });
    run.answer("selectors " + std::to_string(found));
    run.later("selectors " + std::to_string(count()));
}

unsigned int countJacks(SoundCard& card)
{
    qor::Array<AudioDevice> copies;
    qor::Array<AudioInterfacePtr> borrowed;
    return card.microphoneEndpointDevice(copies) + card.waveOutEndpointDevice(copies) +
           card.lineInEndpointDevice(copies) + card.spdifInEndpointDevice(copies) +
           card.spdifOutEndpointDevice(copies) + card.loopbackMixEndpointDevice(copies) +
           card.microphoneEndpointDevice(copies, DEVICE_STATE_ACTIVE) +
           card.waveOutEndpointDevice(copies, DEVICE_STATE_ACTIVE) +
           card.lineInEndpointDevice(copies, DEVICE_STATE_ACTIVE) +
           card.spdifInEndpointDevice(copies, DEVICE_STATE_ACTIVE) +
           card.spdifOutEndpointDevice(copies, DEVICE_STATE_ACTIVE) +
           card.allPlaybackDevice(copies, DEVICE_STATEMASK_ALL) + card.microphoneEndpointDevice(borrowed) +
           card.waveOutEndpointDevice(borrowed) + card.lineInEndpointDevice(borrowed) +
           card.spdifInEndpointDevice(borrowed) + card.spdifOutEndpointDevice(borrowed);
}

void findJacks(Run& run)
{
    qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    const auto count = [&]
    {
        unsigned int found = 0;
        for (unsigned int i = 0; i < std::min(cards.size(), fewCards); ++i)
            found += countJacks(cards[i]);
        return std::to_string(found) + " jacks";
    };
    run.act([&] { run.answer(count()); });
    run.later(count());
}

Operation following(const std::string& name, Announcement announce)
{
    const auto firstId = [](sim::Simulation& simulation)
    {
        const std::vector<std::string> ids = endpointIds(simulation.machine());
        return ids.empty() ? std::string() : ids.front();
    };
    const auto perform = [=](Run& run)
    {
        CountingObserver observer;
        qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
        for (unsigned int i = 0; i < cards.size(); ++i)
        {
            cards[i].registerPlaybackObserver(&observer);
            cards[i].registerRecordObserver(&observer);
        }
        const std::string id = firstId(run.simulation());
        run.act([&] { announce(run.simulation().events(), id); });
        run.answer(observer.text());
        Lines lines;
        for (unsigned int i = 0; i < cards.size(); ++i)
            directvalues::add(lines, cards[i]);
        for (const std::string& line : lines)
            run.answer(line);
        libSonavit::AudioDeviceEnumeratorFactory::m_enumerator = nullptr; // the observer does not outlive it
    };
    const auto model = [=](sim::Simulation& simulation, const std::function<void()>& arm)
    {
        CountingObserver observer;
        direct::Client client;
        std::vector<direct::Card> cards = direct::Card::findAll(client);
        for (direct::Card& card : cards)
        {
            card.data().playback.observers.push_back(&observer);
            card.data().record.observers.push_back(&observer);
        }
        arm();
        announce(simulation.events(), firstId(simulation));
        Lines lines = {observer.text()};
        for (const direct::Card& card : cards)
            directvalues::add(lines, card);
        return lines;
    };
    return {name, perform, model};
}
}

std::vector<Operation> eventOperations()
{
    return {
        {"SoundCard::volumeController", findControls, modelOfControls},
        {"SoundCard::recordingMux", findSelectors, nullptr,
         std::vector<Effect>{{"IPart::Activate(IAudioInputSelector*", "*", "selectors ", "0"}}}, // which has one
        {"jack queries", findJacks, nullptr, std::vector<Effect>{}},
        following("OnDeviceStateChanged",
                  [](sim::Events& events, const std::string& id) { events.announceState(id, DEVICE_STATE_DISABLED); }),
        following("OnDeviceAdded", [](sim::Events& events, const std::string& id) { events.announceAdded(id); }),
        following("OnDeviceRemoved", [](sim::Events& events, const std::string& id) { events.announceRemoved(id); })};
}
}
