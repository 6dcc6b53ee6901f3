#include "measured.h"

// In a file of their own, so that the compiler cannot put them into their callers.
namespace bench
{
void measureLibraryDiscovery()
{
    const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
}

void measureLibraryLists()
{
    const EndpointDeviceEnumeratorCommon render(eRender);
    const EndpointDeviceEnumeratorCommon capture(eCapture);
}

void measureLibraryControls(const std::vector<LibraryEndpoint>& endpoints)
{
    for (const LibraryEndpoint& endpoint : endpoints)
    {
        qor::Array<SoundCard::VolumeController> controls;
        endpoint.card->volumeController(endpoint.device, controls);
    }
}

void measureDirectDiscovery(direct::Client& client, direct::Registration registration)
{
    const std::vector<direct::Card> cards = direct::Card::findAll(client, registration);
}

void measureDirectLists()
{
    const direct::StateLists render = direct::readStateLists(eRender);
    const direct::StateLists capture = direct::readStateLists(eCapture);
}

void measureDirectControls(const std::vector<DirectEndpoint>& endpoints)
{
    for (const DirectEndpoint& endpoint : endpoints)
    {
        const std::vector<direct::Control> controls = endpoint.card->controlsOf(endpoint.device);
    }
}
}
