#pragma once

#include "libModuleCommon/export.h"
#include "libSonavit/soundcard.h"
#include "qor/array.h"
#include "qor/resource.h"
#include "qor/string.h"

namespace libSonavit
{
/// Answers four questions about a sound card named by its device instance id, from a snapshot of all cards taken at
/// construction.
///
/// An answer is about what the card has, not what is usable now: endpoints in every state count. An unknown id, a
/// failed discovery and a card without such endpoints all answer false. Ids are compared without regard to case; of
/// several cards with the same id the last one answers. The object initialises COM on its thread and belongs to that
/// thread.
class SONAVIT_API SysInfoHelper
{
public:
    /// Enters a multithreaded apartment, whatever the platform answers, and takes the snapshot.
    SysInfoHelper();

    /// Shares the cards. A copy does not initialise COM, and uninitialises it at its end all the same.
    SysInfoHelper(const SysInfoHelper& other);
    SysInfoHelper& operator=(const SysInfoHelper& other);

    /// Lets go of the cards and uninitialises COM.
    ~SysInfoHelper();

    /// Whether the card has speakers or headphones, a digital output, a line input, a microphone.
    /// @param id device instance id, as SoundCard::instanceId() gives it
    bool hasAnalogOut(const qor::String& id);
    bool hasDigitalOut(const qor::String& id);
    bool hasLineIn(const qor::String& id);
    bool hasMicIn(const qor::String& id);

private:
    typedef unsigned int (SoundCard::*EndpointQuery)(qor::Array<AudioDevice>& result) const;

    bool hasEndpoint(const qor::String& id, EndpointQuery query);
    BorrowedPointer<SoundCard> soundCard(const qor::String& id);
    bool isInitialized();

    qor::Array<SharedPointer<SoundCard>> m_soundCards;
};
}
