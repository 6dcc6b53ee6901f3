// Lists the playback endpoints of a machine, card by card, and turns each one that is on down to a quarter.
#include "libSonavit/libsonavit.h"
#include "simulator/machine/file/machinefile.h"
#include "simulator/simulation.h"

#include <iostream>

int main()
{
    qor::LogFactory::setSink([](const qor::LogRecord&) {});
    const sim::Simulation machine(sim::findMachine("desktop")); // without this line: the hardware of a Windows machine
    CoInitialize(nullptr);
    qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    for (unsigned int i = 0; i < cards.size(); ++i)
    {
        qor::Array<AudioDevice> endpoints;
        cards[i].allPlaybackDevice(endpoints, DEVICE_STATE_ACTIVE);
        for (unsigned int j = 0; j < endpoints.size(); ++j)
        {
            const SharedPointer<VolumeControllerInterface> volume = endpoints[j].volumeControl();
            volume->setMasterVolumeLevelPercent(25);
            std::cout << cards[i].instanceId().toUtf8() << ": " << endpoints[j].deviceProperty().endpointType.toUtf8()
                      << " at " << volume->masterVolumeLevelPercent() << " %, " << volume->masterVolumeLevelDecibel()
                      << " dB\n";
        }
    }
}
