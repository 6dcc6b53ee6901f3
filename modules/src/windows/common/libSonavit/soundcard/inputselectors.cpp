#include "libSonavit/soundcard.h"

#include "COM/identifiers.h"
#include "COM/resultcode.h"
#include "libSonavit/soundcard/log.h"
#include "libSonavit/soundcard/pendingreference.h"

namespace
{
/// The input selector of a subunit, or nil. A subunit that the platform reported and did not hand out has no part to
/// ask, nor has one that does not implement IPart.
COMPtr<IAudioInputSelector>::pointer activateSelector(const AudioComponent<ISubunit>& subunit)
{
    PendingReference<IAudioInputSelector> selector;
    {
        const AudioPart audioPart = subunit.part();
        const COMPtr<IPart>::pointer part = audioPart.part();
        void* object = nullptr;
        if (part.get() != nullptr)
            part->Activate(CLSCTX_ALL, IID_IAudioInputSelector, &object); // HRESULT ignored on purpose: null means none
        selector.adopt(static_cast<IAudioInputSelector*>(object));
    }
    return selector.take();
}
}

unsigned int SoundCard::recordingMux(qor::Array<COMPtr<IAudioInputSelector>::pointer>& result)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::recordingMux");
    const qor::Array<AudioDevice>& devices = *m_internalDevices;
    SONAVIT_LOG(soundcardlog, LOG_DEBUG, out.append("Number of internal devices = ").append(decimalText(devices.size())));
    for (unsigned int i = 0; i < devices.size(); ++i)
    {
        AudioDeviceTopology topology;
        devices[i].deviceTopology(topology);
        const qor::Array<AudioComponent<ISubunit>> subunits = topology.subunit();
        for (unsigned int j = 0; j < subunits.size(); ++j)
        {
            const COMPtr<IAudioInputSelector>::pointer selector = activateSelector(subunits[j]);
            if (selector.get() == nullptr)
                continue;
            SONAVIT_LOG(soundcardlog, LOG_INFO, out.append("Found an input selector from device ").append(devices[i].deviceProperty().friendlyName));
            result.append(selector);
        }
    }
    return result.size();
}
