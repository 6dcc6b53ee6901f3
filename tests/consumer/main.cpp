/// Uses the installed headers and the libraries, across their borders: data, handles and an exception.
#include "libSonavit/libsonavit.h"
#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/simulation.h"

#include <sonavit/client.h>

#include <cstdio>
#include <vector>

namespace
{
/// The same level by the client layer, which has a thread of its own.
bool agrees(float level)
{
    const sonavit::System audio;
    const sonavit::Snapshot snapshot = audio.snapshot();
    const std::vector<sonavit::Endpoint> endpoints = snapshot.endpoints();
    if (endpoints.size() != 1 || !endpoints.front().volume())
        return false;
    std::printf("%s at %s\n", endpoints.front().title().c_str(), endpoints.front().volume()->sentence().c_str());
    return endpoints.front().volume()->master.decibels == sonavit::Decibels(level);
}
}

int main()
{
    sim::MachineBuilder builder("bench");
    builder.card("Analog Audio").speaker().level(-12.0f);
    const sim::Simulation simulation(builder.build());
    CoInitialize(nullptr);

    qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    qor::Array<AudioDevice> endpoints;
    try
    {
        cards[1].allPlaybackDevice(endpoints, DEVICE_STATE_ACTIVE); // there is one card
    }
    catch (const qor::IndexOutOfBounds& exception)
    {
        std::printf("%s\n", exception.message().toUtf8().c_str());
        cards[0].allPlaybackDevice(endpoints, DEVICE_STATE_ACTIVE);
    }
    if (endpoints.size() != 1)
        return 1;
    const float level = endpoints[0].volumeControl()->masterVolumeLevelDecibel();
    std::printf("%s at %.1f dB\n", cards[0].instanceId().toUtf8().c_str(), static_cast<double>(level));
    return level < -11.9f && level > -12.1f && agrees(level) ? 0 : 1;
}
