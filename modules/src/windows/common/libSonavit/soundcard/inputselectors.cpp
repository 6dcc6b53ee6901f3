#include "libSonavit/soundcard.h"

#include "COM/identifiers.h"
#include "COM/resultcode.h"
#include "libSonavit/soundcard/log.h"

namespace
{
/// The input selector of a subunit, or nil. There is no part to ask where the platform has given no subunit, or one
/// that is no part.
COMPtr<IAudioInputSelector>::pointer selectorOf(const COMPtr<IPart>::pointer& part)
{
    void* selector = nullptr;
    if (part.get() != nullptr)
        part->Activate(CLSCTX_ALL, IID_IAudioInputSelector, &selector); // the pointer decides
    return static_cast<IAudioInputSelector*>(selector);
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
            const COMPtr<IAudioInputSelector>::pointer selector = selectorOf(subunits[j].part().part());
            if (selector.get() == nullptr)
                continue;
            SONAVIT_LOG(soundcardlog, LOG_INFO, out.append("Found an input selector from device ").append(devices[i].deviceProperty().friendlyName));
            result.append(selector);
        }
    }
    return result.size();
}
