// Finding the cards of a machine.
#include "libSonavit/sysinfohelper.h"
#include "tests/libSonavit/portable/supportnotes.h"
#include "tests/libSonavit/portable/supportoperations.h"

namespace support
{
namespace
{
qor::String lowerCase(const qor::String& id)
{
    std::string text = id.toUtf8();
    for (char& c : text)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return qor::String::fromUtf8(text);
}

void noteFound(Transcript& transcript, const std::string& what, unsigned int count,
               const qor::Array<AudioInterfacePtr>& found)
{
    transcript.note(what + " " + std::to_string(count) + " of " + std::to_string(found.capacity()));
    for (unsigned int i = 0; i < found.size(); ++i)
        transcript.note(what + " " + found[i]->deviceProperty().deviceId.toUtf8());
}

void askByInterface(Transcript& transcript, SoundCardInterface& card)
{
    qor::Array<AudioInterfacePtr> found;
    noteFound(transcript, "microphones", card.microphoneEndpointDevice(found), found);
    noteFound(transcript, "outputs", card.waveOutEndpointDevice(found), found);
    noteFound(transcript, "line inputs", card.lineInEndpointDevice(found), found);
    noteFound(transcript, "digital inputs", card.spdifInEndpointDevice(found), found);
    noteFound(transcript, "digital outputs", card.spdifOutEndpointDevice(found), found);
    qor::Array<SharedPointer<VolumeControllerInterface>> controls;
    for (unsigned int i = 0; i < found.size(); ++i)
        transcript.note("controls " + std::to_string(card.volumeController(*found[i], controls)));
}

/// The instance ids of the machine's cards, found beforehand; then ids that no card has.
std::vector<qor::String> cardIds()
{
    std::vector<qor::String> ids;
    qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    for (unsigned int i = 0; i < cards.size(); ++i)
        ids.push_back(cards[i].instanceId());
    ids.emplace_back("");
    ids.emplace_back("unknown");
    return ids;
}
}

void discover(sim::Simulation&, Transcript& transcript)
{
    transcript.begin();
    {
        const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
        noteCards(transcript, cards);
        transcript.noteCensus();
        const qor::Array<SoundCard> copies = cards; // NOLINT(performance-unnecessary-copy-initialization)
        noteCards(transcript, copies);
        transcript.note("the cards go");
    }
    transcript.noteCensus();
}

void discoverInterfaces(sim::Simulation&, Transcript& transcript)
{
    transcript.begin();
    qor::Array<BorrowedPointer<SoundCardInterface>> cards;
    noteThrown(transcript, [&] { enumerateSoundCards(cards); });
    for (unsigned int i = 0; i < cards.size(); ++i)
    {
        noteCard(transcript, static_cast<SoundCard&>(*cards[i]));
        noteThrown(transcript, [&] { askByInterface(transcript, *cards[i]); });
    }
    transcript.noteCensus();
    for (unsigned int i = 0; i < cards.size(); ++i)
    {
        transcript.note("a card goes");
        noteThrown(transcript, [&] { delete cards[i].get(); });
    }
}

void createCards(sim::Simulation&, Transcript& transcript)
{
    constexpr std::size_t fewCards = 2;
    std::vector<qor::String> ids = cardIds();
    if (ids.size() > fewCards + 2)
        ids.erase(ids.begin() + 1, ids.end()); // each id takes a discovery: on larger machines one is enough
    transcript.begin();
    for (const qor::String& id : ids)
    {
        SoundCard card;
        noteThrown(transcript,
                   [&] { transcript.note(SoundCard::createSoundCard(lowerCase(id), card) ? "found" : "not found"); });
        noteCard(transcript, card);
        transcript.noteCensus();
    }
}

void answerAboutSystem(sim::Simulation&, Transcript& transcript)
{
    const std::vector<qor::String> ids = cardIds();
    transcript.begin();
    noteThrown(transcript,
               [&]
               {
                   CoInitialize(nullptr); // the object's destructor takes this one away, see its class
                   libSonavit::SysInfoHelper helper;
                   for (const qor::String& id : ids)
                   {
                       std::string answers = helper.hasAnalogOut(id) ? "analog out, " : "";
                       answers += helper.hasDigitalOut(id) ? "digital out, " : "";
                       answers += helper.hasLineIn(id) ? "line in, " : "";
                       answers += helper.hasMicIn(id) ? "microphone" : "";
                       transcript.note(id.toUtf8() + " has " + answers);
                   }
                   transcript.noteCensus();
               });
}
}
