#include "libSonavit/soundcard.h"

#include "COM/identifiers.h"
#include "COM/resultcode.h"
#include "libModuleCommon/guid.h"
#include "libSonavit/soundcard/log.h"

namespace
{
qor::String guidText(GUID guid)
{
    return guidToString(&guid);
}

bool isInOneOf(unsigned int filter, const AudioDeviceInterface::Properties& properties)
{
    return (properties.deviceState & filter) != 0;
}
}

unsigned int SoundCard::microphoneEndpointDevice(qor::Array<AudioDevice>& result) const
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::microphoneEndpointDevice");
    return microphoneEndpointDevice(result, DEVICE_STATEMASK_ALL);
}

unsigned int SoundCard::lineInEndpointDevice(qor::Array<AudioDevice>& result) const
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::lineInEndpointDevice");
    return lineInEndpointDevice(result, DEVICE_STATEMASK_ALL);
}

unsigned int SoundCard::spdifInEndpointDevice(qor::Array<AudioDevice>& result) const
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::spdifInEndpointDevice");
    return spdifInEndpointDevice(result, DEVICE_STATEMASK_ALL);
}

unsigned int SoundCard::spdifOutEndpointDevice(qor::Array<AudioDevice>& result) const
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::spdifOutEndpointDevice");
    return spdifOutEndpointDevice(result, DEVICE_STATEMASK_ALL);
}

unsigned int SoundCard::waveOutEndpointDevice(qor::Array<AudioDevice>& result) const
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::waveOutEndpointDevice");
    return waveOutEndpointDevice(result, DEVICE_STATEMASK_ALL);
}

unsigned int SoundCard::microphoneEndpointDevice(qor::Array<AudioDevice>& result, unsigned int filter) const
{
    return findEndpoint(*m_recordDevices, KSNODETYPE_MICROPHONE, result, filter);
}

unsigned int SoundCard::lineInEndpointDevice(qor::Array<AudioDevice>& result, unsigned int filter) const
{
    return findEndpoint(*m_recordDevices, KSNODETYPE_LINE_CONNECTOR, result, filter);
}

unsigned int SoundCard::spdifInEndpointDevice(qor::Array<AudioDevice>& result, unsigned int filter) const
{
    return findEndpoint(*m_recordDevices, KSNODETYPE_SPDIF_INTERFACE, result, filter);
}

unsigned int SoundCard::spdifOutEndpointDevice(qor::Array<AudioDevice>& result, unsigned int filter) const
{
    return findEndpoint(*m_playbackDevices, KSNODETYPE_SPDIF_INTERFACE, result, filter);
}

unsigned int SoundCard::waveOutEndpointDevice(qor::Array<AudioDevice>& result, unsigned int filter) const
{
    const unsigned int headphones = findEndpoint(*m_playbackDevices, KSNODETYPE_HEADPHONES, result, filter);
    return headphones + findEndpoint(*m_playbackDevices, KSNODETYPE_SPEAKER, result, filter);
}

// Required behaviour: the only one of the five without a trace scope of its own.
unsigned int SoundCard::microphoneEndpointDevice(qor::Array<AudioInterfacePtr>& result)
{
    return findEndpoint(*m_recordDevices, KSNODETYPE_MICROPHONE, result);
}

unsigned int SoundCard::waveOutEndpointDevice(qor::Array<AudioInterfacePtr>& result)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::waveOutEndpointDevice");
    const unsigned int headphones = findEndpoint(*m_playbackDevices, KSNODETYPE_HEADPHONES, result);
    return headphones + findEndpoint(*m_playbackDevices, KSNODETYPE_SPEAKER, result);
}

unsigned int SoundCard::lineInEndpointDevice(qor::Array<AudioInterfacePtr>& result)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::lineInEndpointDevice");
    return findEndpoint(*m_recordDevices, KSNODETYPE_LINE_CONNECTOR, result);
}

unsigned int SoundCard::spdifInEndpointDevice(qor::Array<AudioInterfacePtr>& result)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::spdifInEndpointDevice");
    return findEndpoint(*m_recordDevices, KSNODETYPE_SPDIF_INTERFACE, result);
}

unsigned int SoundCard::spdifOutEndpointDevice(qor::Array<AudioInterfacePtr>& result)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::spdifOutEndpointDevice");
    return findEndpoint(*m_playbackDevices, KSNODETYPE_SPDIF_INTERFACE, result);
}

// Required behaviour: the label names no operation of the class; readers of the log match it.
unsigned int SoundCard::allPlaybackDevice(qor::Array<AudioDevice>& result, unsigned int filter) const
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::allActiveEndpointDevice");
    return findEndpoint(*m_playbackDevices, result, filter);
}

unsigned int SoundCard::loopbackMixEndpointDevice(qor::Array<AudioDevice>&) const
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::loopbackMixEndpointDevice");
    return 0;
}

unsigned int SoundCard::findEndpoint(const qor::Array<AudioDevice>& searchFrom, qor::Array<AudioDevice>& result,
                                     unsigned int filter) const
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::findEndpoint(const Array<AudioDevice>& searchFrom, Array<AudioDevice>& result, Uint32 filter)");
    SONAVIT_LOG(soundcardlog, LOG_DEBUG, out.append("searchFrom.size() = ").append(decimalText(searchFrom.size())).append(" device filter = ").append(decimalText(filter)));
    const unsigned int sizeBefore = result.size();
    for (unsigned int i = 0; i < searchFrom.size(); ++i)
    {
        const AudioDeviceInterface::Properties& properties = searchFrom[i].deviceProperty();
        if (!isInOneOf(filter, properties))
            continue;
        result.append(searchFrom[i]);
        SONAVIT_LOG(soundcardlog, LOG_DEBUG, out.append("Appending device ").append(properties.endpointType));
    }
    SONAVIT_LOG(soundcardlog, LOG_DEBUG, out.append("Number of found device = ").append(decimalText(result.size() - sizeBefore)));
    return result.size() - sizeBefore;
}

/// Repeats the search above on purpose: the line number of a log record tells the two operations apart.
unsigned int SoundCard::findEndpoint(const qor::Array<AudioDevice>& searchFrom, const GUID& deviceType,
                                     qor::Array<AudioDevice>& result, unsigned int filter) const
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::findEndpoint(const Array<AudioDevice>& searchFrom, const GUID& deviceType, Array<AudioDevice>& result, Uint32 filter)");
    SONAVIT_LOG(soundcardlog, LOG_DEBUG, out.append("searchFrom.size() = ").append(decimalText(searchFrom.size())).append(" device filter = ").append(decimalText(filter)).append(" DeviceGUID ").append(guidText(deviceType)));
    const unsigned int sizeBefore = result.size();
    for (unsigned int i = 0; i < searchFrom.size(); ++i)
    {
        const AudioDeviceInterface::Properties& properties = searchFrom[i].deviceProperty();
        if (properties.subType != deviceType || !isInOneOf(filter, properties))
            continue;
        result.append(searchFrom[i]);
        SONAVIT_LOG(soundcardlog, LOG_DEBUG, out.append("Appending device ").append(properties.endpointType));
    }
    SONAVIT_LOG(soundcardlog, LOG_DEBUG, out.append("Number of found device = ").append(decimalText(result.size() - sizeBefore)));
    return result.size() - sizeBefore;
}

/// Required behaviour: the label calls the list const. It is not, because the result keeps pointers into it.
unsigned int SoundCard::findEndpoint(qor::Array<AudioDevice>& searchFrom, const GUID& deviceType,
                                     qor::Array<AudioInterfacePtr>& result)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::findEndpoint(const Array<AudioDevice>& searchFrom, const GUID& deviceType, Array<AudioInterfacePtr>& result)");
    const unsigned int sizeBefore = result.size();
    for (unsigned int i = 0; i < searchFrom.size(); ++i)
    {
        if (searchFrom[i].deviceProperty().subType == deviceType)
            result.append(AudioInterfacePtr(&searchFrom[i]));
    }
    return result.size() - sizeBefore;
}
