// What a card has: hardware controls, kinds of jacks, selectors.
#include "tests/libSonavit/portable/supportnotes.h"
#include "tests/libSonavit/portable/supportoperations.h"

namespace support
{
namespace
{
void findControlsOf(Transcript& transcript, const SoundCard& card, const qor::Array<AudioDevice>& endpoints)
{
    for (unsigned int i = 0; i < endpoints.size(); ++i)
    {
        qor::Array<SoundCard::VolumeController> controls;
        noteThrown(transcript, [&] { transcript.note(std::to_string(card.volumeController(endpoints[i], controls))); });
        noteControls(transcript, controls);
    }
    transcript.noteCensus();
}

void noteFound(Transcript& transcript, const char* what, unsigned int count, const qor::Array<AudioDevice>& found)
{
    transcript.note(std::string(what) + " " + std::to_string(count));
    noteDevices(transcript, what, found);
}

void findJacksOf(Transcript& transcript, const SoundCard& card)
{
    qor::Array<AudioDevice> found; // grows with each question
    noteFound(transcript, "microphones", card.microphoneEndpointDevice(found), found);
    noteFound(transcript, "outputs", card.waveOutEndpointDevice(found), found);
    noteFound(transcript, "line inputs", card.lineInEndpointDevice(found), found);
    noteFound(transcript, "digital inputs", card.spdifInEndpointDevice(found), found);
    noteFound(transcript, "digital outputs", card.spdifOutEndpointDevice(found), found);
    noteFound(transcript, "loopback", card.loopbackMixEndpointDevice(found), found);
    for (const unsigned int state : {DEVICE_STATE_ACTIVE, DEVICE_STATE_UNPLUGGED | DEVICE_STATE_DISABLED})
    {
        qor::Array<AudioDevice> some;
        noteFound(transcript, "some microphones", card.microphoneEndpointDevice(some, state), some);
        noteFound(transcript, "some outputs", card.waveOutEndpointDevice(some, state), some);
        noteFound(transcript, "some line inputs", card.lineInEndpointDevice(some, state), some);
        noteFound(transcript, "some digital inputs", card.spdifInEndpointDevice(some, state), some);
        noteFound(transcript, "some digital outputs", card.spdifOutEndpointDevice(some, state), some);
        noteFound(transcript, "some of all outputs", card.allPlaybackDevice(some, state), some);
    }
}
}

void findControls(sim::Simulation&, Transcript& transcript)
{
    const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    transcript.begin();
    for (unsigned int i = 0; i < cards.size(); ++i)
    {
        findControlsOf(transcript, cards[i], *cards[i].m_playbackDevices);
        findControlsOf(transcript, cards[i], *cards[i].m_recordDevices);
        findControlsOf(transcript, cards[i], *cards[(i + 1) % cards.size()].m_playbackDevices); // of another card
    }
}

void findJacks(sim::Simulation&, Transcript& transcript)
{
    const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    transcript.begin();
    for (unsigned int i = 0; i < cards.size(); ++i)
        findJacksOf(transcript, cards[i]);
    transcript.noteCensus();
}

void findSelectors(sim::Simulation&, Transcript& transcript)
{
    qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    transcript.begin();
    qor::Array<COMPtr<IAudioInputSelector>::pointer> selectors; // grows with each card
    for (unsigned int i = 0; i < cards.size(); ++i)
    {
        noteThrown(transcript, [&] { transcript.note(std::to_string(cards[i].recordingMux(selectors))); });
        transcript.note("room for " + std::to_string(selectors.capacity()));
    }
    transcript.noteCensus();
}
}
