#include "work.h"

#include "measured.h"

#include <stdexcept>
#include <vector>

namespace bench
{
namespace
{
/// The cards of the library, and all endpoints with theirs.
struct LibraryCards
{
    qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    std::vector<LibraryEndpoint> endpoints;
};

void addEndpoints(LibraryCards& found, EDataFlow flow)
{
    qor::Array<AudioDevice> devices;
    libSonavit::EndpointDeviceEnumerator().audioDevices(flow, devices);
    for (unsigned int index = 0; index < devices.size(); ++index)
    {
        for (unsigned int card = 0; card < found.cards.size(); ++card)
        {
            if (found.cards[card].deviceId() == devices[index].deviceProperty().instancePath)
                found.endpoints.push_back({&found.cards[card], devices[index]});
        }
    }
}

Operation libraryControls()
{
    const auto found = std::make_shared<LibraryCards>();
    addEndpoints(*found, eRender);
    addEndpoints(*found, eCapture);
    return [found] { measureLibraryControls(found->endpoints); };
}

/// The last endpoint, which belongs to one of the last cards; the others must find out that it is not theirs.
Operation event(std::shared_ptr<const void> cards, sim::Simulation& simulation)
{
    const sim::Machine machine = simulation.machine();
    if (machine.endpoints.empty())
        throw std::invalid_argument("the machine has no endpoint");
    const sim::Endpoint& endpoint = machine.endpoints.back();
    return [cards = std::move(cards), &simulation, id = endpoint.id, state = endpoint.state]
    { simulation.events().announceState(id, state); };
}

/// The same without the library. The client outlives the cards.
struct DirectCards
{
    direct::Client client;
    std::vector<direct::Card> cards = direct::Card::findAll(client);
    std::vector<DirectEndpoint> endpoints;
};

void addEndpoints(DirectCards& found, EDataFlow flow)
{
    const direct::ComPtr<IMMDeviceEnumerator> enumerator = direct::createEnumerator();
    for (const direct::Device& device : direct::readEndpoints(*enumerator.get(), flow, DEVICE_STATEMASK_ALL))
    {
        for (const direct::Card& card : found.cards)
        {
            if (card.data().instancePath == device.properties.instancePath)
                found.endpoints.push_back({&card, device});
        }
    }
}

Operation directControls()
{
    const auto found = std::make_shared<DirectCards>();
    addEndpoints(*found, eRender);
    addEndpoints(*found, eCapture);
    return [found] { measureDirectControls(found->endpoints); };
}

Operation libraryOperation(const std::string& work, sim::Simulation& simulation)
{
    if (work == "discovery")
        return measureLibraryDiscovery;
    if (work == "lists")
        return measureLibraryLists;
    if (work == "controls")
        return libraryControls();
    if (work == "event")
        return event(std::make_shared<LibraryCards>(), simulation);
    throw std::invalid_argument("no such work: " + work);
}

Operation directDiscovery(direct::Registration registration)
{
    return [client = std::make_shared<direct::Client>(), registration]
    { measureDirectDiscovery(*client, registration); };
}

Operation directOperation(const std::string& work, sim::Simulation& simulation)
{
    if (work == "discovery")
        return directDiscovery(direct::Registration::newDevice);
    if (work == "lists")
        return measureDirectLists;
    if (work == "controls")
        return directControls();
    if (work == "event")
        return event(std::make_shared<DirectCards>(), simulation);
    throw std::invalid_argument("no such work: " + work);
}
}

Operation prepareOperation(const std::string& side, const std::string& work, sim::Simulation& simulation)
{
    if (side == "library")
        return libraryOperation(work, simulation);
    if (side == "direct")
        return directOperation(work, simulation);
    if (side == "direct-wholelist" && work == "discovery")
        return directDiscovery(direct::Registration::wholeList);
    throw std::invalid_argument("no such side, or no such work of that side: " + side);
}
}
