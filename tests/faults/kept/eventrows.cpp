// What is kept by events of the platform.
#include "libSonavit/soundcard.h"
#include "libSonavit/soundcardobserver.h"
#include "simulator/machine/propertykeys.h"
#include "tests/faults/kept/row.h"

#include <memory>

namespace faults::kept
{
namespace
{
class SilentObserver final : public SoundCardObserver
{
public:
    void onDeviceStateChanged() override {}
    void onDeviceAdded() override {}
    void onDeviceRemoved() override {}
};

/// Cards that follow the machine.
struct Followed
{
    Followed() : cards(SoundCard::enumerateSystemSoundDevices())
    {
        for (unsigned int i = 0; i < cards.size(); ++i)
        {
            cards[i].registerPlaybackObserver(BorrowedPointer<SoundCardObserver>(&observer));
            cards[i].registerRecordObserver(BorrowedPointer<SoundCardObserver>(&observer));
        }
    }

    SilentObserver observer; // outlives the cards
    qor::Array<SoundCard> cards;
};

/// The operation @p happen with the id of each endpoint, one after the other.
template<class Happen>
std::function<std::function<void()>(sim::Simulation&)> toEachEndpoint(const Happen& happen)
{
    return [happen](sim::Simulation& simulation)
    {
        return [happen, &simulation, followed = std::make_shared<Followed>()]
        {
            for (const sim::Endpoint& endpoint : simulation.machine().endpoints)
                happen(simulation.events(), endpoint.id);
        };
    };
}
}

std::vector<Row> eventRows()
{
    return {
        {"an endpoint is removed",
         {Kind::directSoundTexts, Kind::listedEndpoints},
         toEachEndpoint([](sim::Events& events, const std::string& id) { events.remove(id); })},
        {"an endpoint is removed and added",
         {Kind::directSoundTexts, Kind::listedEndpoints},
         toEachEndpoint(
             [](sim::Events& events, const std::string& id)
             {
                 events.remove(id);
                 events.add(id);
             })},
        {"an endpoint is announced once more",
         {Kind::directSoundTexts, Kind::listedEndpoints},
         toEachEndpoint([](sim::Events& events, const std::string& id) { events.announceAdded(id); })},
        {"an endpoint changes its state",
         {Kind::directSoundTexts},
         toEachEndpoint(
             [](sim::Events& events, const std::string& id)
             {
                 events.setState(id, sim::stateDisabled);
                 events.setState(id, sim::stateActive);
             })},
        {"another endpoint becomes the default",
         {},
         toEachEndpoint([](sim::Events& events, const std::string& id)
                        { events.announceDefault(eRender, eConsole, id); })},
        {"a level changes",
         {},
         toEachEndpoint(
             [](sim::Events& events, const std::string& id)
             {
                 events.announceRemoved("unknown");
                 events.announceProperty(id, sim::keys::deviceDescription);
             })},
    };
}

std::vector<Row> allRows()
{
    std::vector<Row> all;
    for (const auto& rows : {cardRows(), deviceRows(), hardwareRows(), enumeratorRows(), eventRows()})
        all.insert(all.end(), rows.begin(), rows.end());
    return all;
}
}
