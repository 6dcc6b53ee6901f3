// Lists the active playback endpoints of a machine, card by card, and sets those that have a volume to 25 %.
#include "libSonavit/libsonavit.h"
#include "simulator/machine/file/machinefile.h"
#include "simulator/simulation.h"

#include <iostream>

/// Every endpoint has a volume controller, but some, such as digital outputs, have no volume that it could control.
bool hasVolume(AudioDevice& endpoint)
{
    void* volume = nullptr;
    if (FAILED(endpoint.device()->Activate(IID_IAudioEndpointVolume, CLSCTX_ALL, nullptr, &volume)))
        return false;
    const COMPtr<IAudioEndpointVolume>::pointer owned(static_cast<IAudioEndpointVolume*>(volume));
    return owned.get() != nullptr;
}

void setVolumes(SoundCard& card)
{
    qor::Array<AudioDevice> endpoints;
    card.allPlaybackDevice(endpoints, DEVICE_STATE_ACTIVE);
    for (unsigned int i = 0; i < endpoints.size(); ++i)
    {
        std::cout << card.instanceId().toUtf8() << ": " << endpoints[i].deviceProperty().endpointType.toUtf8();
        if (!hasVolume(endpoints[i]))
        {
            std::cout << " has no volume\n";
            continue;
        }
        const SharedPointer<VolumeControllerInterface> volume = endpoints[i].volumeControl();
        volume->setMasterVolumeLevelPercent(25);
        std::cout << " at " << volume->masterVolumeLevelPercent() << " %, " << volume->masterVolumeLevelDecibel()
                  << " dB\n";
    }
}

int main(int count, char** words)
try
{
    qor::LogFactory::setSink([](const qor::LogRecord&) {});
    const char* const name = count > 1 ? words[1] : "desktop";
    CoInitialize(nullptr); // first: on Windows the machine is registered with this thread
    const sim::Simulation machine(sim::findMachine(name));   // without this line: the hardware of a Windows machine
    AudioDevice::setStoreAccess(StoreAccess::writeElseRead); // users need not be administrators
    qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    for (unsigned int i = 0; i < cards.size(); ++i)
        setVolumes(cards[i]);
    return 0;
}
catch (const sim::MachineFileError& error) // no such machine, or a file that is none
{
    std::cerr << error.what() << "\n";
    return 1;
}
