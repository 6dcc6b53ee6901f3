/// What a transcript notes of the library's objects. The fields are read as they are: nothing is logged or called.
#pragma once

#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/soundcard.h"
#include "tests/libSonavit/portable/supporttranscript.h"

#include <string>

namespace support
{
/// Calls @p action. What it throws is noted as text and ends there.
template<class Action>
void noteThrown(Transcript& transcript, const Action& action)
{
    try
    {
        action();
    }
    catch (const qor::Exception& exception)
    {
        transcript.note(std::string("thrown: ") + exception.what());
    }
}

void noteDevice(Transcript& transcript, const std::string& what, const AudioDevice& device);
/// Size, capacity, and each device.
void noteDevices(Transcript& transcript, const std::string& what, const qor::Array<AudioDevice>& devices);

void notePart(Transcript& transcript, const std::string& what, const AudioPart& part);
void noteParts(Transcript& transcript, const std::string& what, const qor::Array<AudioPart>& parts);
/// Its part, and those that it remembers of walks.
template<class Interface>
void noteComponent(Transcript& transcript, const std::string& what, const AudioComponent<Interface>& component)
{
    notePart(transcript, what + (component.m_component.get() == nullptr ? " without interface" : ""), component.m_part);
}

/// Device, connectors and subunits with their capacities.
void noteTopology(Transcript& transcript, const AudioDeviceTopology& topology);

/// Id, lists, and the map of the connectors with its links.
void noteCard(Transcript& transcript, const SoundCard& card);
void noteCards(Transcript& transcript, const qor::Array<SoundCard>& cards);

void noteControls(Transcript& transcript, const qor::Array<SoundCard::VolumeController>& controls);
}
