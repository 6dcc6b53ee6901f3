// What is kept by operations of cards.
#include "libSonavit/soundcard.h"
#include "libSonavit/soundcardobserver.h"
#include "libSonavit/sysinfohelper.h"
#include "tests/faults/kept/row.h"

#include <memory>

namespace faults::kept
{
namespace
{
const std::set<Kind> discoveries = {Kind::directSoundTexts, Kind::clients, Kind::listedEndpoints, Kind::enumerator};

typedef qor::Array<SoundCard> Cards;

std::shared_ptr<Cards> discovered()
{
    return std::make_shared<Cards>(SoundCard::enumerateSystemSoundDevices());
}

/// The operation @p ask for each card of the system.
template<class Ask>
std::function<std::function<void()>(sim::Simulation&)> ofEachCard(Ask ask)
{
    return [ask](sim::Simulation&)
    {
        return [ask, cards = discovered()]
        {
            for (unsigned int i = 0; i < cards->size(); ++i)
                ask((*cards)[i]);
        };
    };
}

void discover()
{
    const Cards cards = SoundCard::enumerateSystemSoundDevices();
}

void discoverByInterface()
{
    qor::Array<BorrowedPointer<SoundCardInterface>> cards;
    enumerateSoundCards(cards);
    for (unsigned int i = 0; i < cards.size(); ++i)
        delete cards[i].get();
}

void askFacade()
{
    libSonavit::SysInfoHelper helper;
    helper.hasAnalogOut("unknown");
    helper.hasMicIn("unknown");
}

void copyCard(SoundCard& card)
{
    SoundCard copy(card);
    copy = card;
    copy.instanceId();
}

void askForJacks(SoundCard& card)
{
    qor::Array<AudioDevice> found;
    card.microphoneEndpointDevice(found);
    card.waveOutEndpointDevice(found, DEVICE_STATE_ACTIVE);
    card.lineInEndpointDevice(found);
    card.spdifInEndpointDevice(found);
    card.spdifOutEndpointDevice(found, DEVICE_STATEMASK_ALL);
    card.allPlaybackDevice(found, DEVICE_STATEMASK_ALL);
    card.loopbackMixEndpointDevice(found);
    qor::Array<AudioInterfacePtr> views;
    card.waveOutEndpointDevice(views);
    card.microphoneEndpointDevice(views);
}

template<class Controls>
void resolve(SoundCard& card)
{
    Controls controls;
    for (unsigned int i = 0; i < card.m_playbackDevices->size(); ++i)
        card.volumeController((*card.m_playbackDevices)[i], controls);
    for (unsigned int i = 0; i < card.m_recordDevices->size(); ++i)
        card.volumeController((*card.m_recordDevices)[i], controls);
}

void askForSelectors(SoundCard& card)
{
    qor::Array<COMPtr<IAudioInputSelector>::pointer> selectors;
    card.recordingMux(selectors);
}

/// Prepared without any object.
std::function<std::function<void()>(sim::Simulation&)> alone(void (*operation)())
{
    return [operation](sim::Simulation&) { return operation; };
}
}

std::vector<Row> cardRows()
{
    return {
        {"SoundCard::enumerateSystemSoundDevices", discoveries, alone(discover)},
        {"enumerateSoundCards", discoveries, alone(discoverByInterface)},
        {"SoundCard::createSoundCard", discoveries,
         alone(
             []
             {
                 SoundCard card;
                 SoundCard::createSoundCard("unknown", card);
             })},
        {"SysInfoHelper", discoveries, alone(askFacade)},
        {"SoundCard::SoundCard", {Kind::clients, Kind::enumerator}, alone([] { const SoundCard card; })},
        {"SoundCard, copied and assigned", {}, ofEachCard(copyCard)},
        {"SoundCard, questions by jack", {}, ofEachCard(askForJacks)},
        {"SoundCard::volumeController",
         {Kind::partsLists},
         ofEachCard(resolve<qor::Array<SoundCard::VolumeController>>)},
        {"SoundCardInterface::volumeController",
         {},
         ofEachCard(resolve<qor::Array<SharedPointer<VolumeControllerInterface>>>)},
        {"SoundCard::recordingMux", {}, ofEachCard(askForSelectors)},
    };
}
}
