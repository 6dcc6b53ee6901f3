// What is kept by the enumerators.
#include "libSonavit/endpointdeviceenumerator.h"
#include "libSonavit/soundcard.h"
#include "libSonavit/soundcardupdater.h"
#include "tests/faults/kept/row.h"

namespace faults::kept
{
using libSonavit::AudioDeviceEnumeratorFactory;

namespace
{
std::function<void()> listStates(sim::Simulation&)
{
    return []
    {
        EndpointDeviceEnumeratorCommon lists(eRender);
        lists.refresh(eCapture);
        const EndpointDeviceEnumeratorCommon copy(lists);
        lists.enumerate(eAll);
        lists.enumerator();
    };
}

std::function<void()> listAll(sim::Simulation&)
{
    return []
    {
        const libSonavit::EndpointDeviceEnumerator enumerator;
        const libSonavit::EndpointDeviceEnumerator copy(enumerator);
        qor::Array<AudioDevice> devices;
        copy.audioDevices(eAll, devices);
    };
}

std::function<void()> listAllShared(sim::Simulation&)
{
    AudioDeviceEnumeratorFactory::enumerator()->deviceEnumerator();
    return []
    {
        qor::Array<AudioDevice> devices;
        AudioDeviceEnumeratorFactory::enumerator()->audioDevices(eAll, devices);
    };
}

std::function<void()> createShared(sim::Simulation&)
{
    return [] { AudioDeviceEnumeratorFactory::enumerator()->deviceEnumerator(); };
}

std::function<void()> addClient(sim::Simulation&)
{
    AudioDeviceEnumeratorFactory::enumerator()->deviceEnumerator();
    return []
    {
        const COMPtr<SoundCard::SoundCardDeviceUpdater>::pointer updater =
            SoundCard::SoundCardDeviceUpdater::createUpdater();
        updater->AddRef();
        AudioDeviceEnumeratorFactory::enumerator()->addNotificationClient(
            COMPtr<IMMNotificationClient>::pointer(updater.get()));
    };
}
}

std::vector<Row> enumeratorRows()
{
    return {{"EndpointDeviceEnumeratorCommon", {Kind::directSoundTexts}, listStates},
            {"EndpointDeviceEnumerator::audioDevices", {Kind::directSoundTexts}, listAll},
            {"AudioDeviceEnumerator::audioDevices", {Kind::directSoundTexts}, listAllShared},
            {"AudioDeviceEnumerator::deviceEnumerator", {Kind::enumerator}, createShared},
            {"AudioDeviceEnumerator::addNotificationClient", {Kind::clients}, addClient}};
}
}
