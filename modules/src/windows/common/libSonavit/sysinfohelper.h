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
/// An answer says what the card has, not what is usable now: endpoints in all states count. An unknown id, a failed
/// discovery and a card without such endpoints all answer false. Ids are compared ignoring case; of several cards with
/// the same id the last one answers. Use and destroy the object on the thread that creates it. For a process that does
/// not run as administrator see AudioDevice::setStoreAccess().
///
/// COM: the constructor calls CoInitializeEx for a multithreaded apartment and ignores the result; the destructor
/// always calls CoUninitialize. On a thread in a single-threaded apartment CoInitializeEx fails, so the destructor
/// takes away one of the caller's own initialisations: call CoInitialize once more beforehand, or use another thread.
class SONAVIT_API SysInfoHelper
{
public:
    /// Initialises COM, see above, and takes the snapshot (SoundCard::enumerateSystemSoundDevices()).
    /// @exception qor::NullPointer or std::bad_alloc if memory is exhausted
    SysInfoHelper();

    /// Shares the cards. A copy does not initialise COM; its destructor uninitialises it nevertheless.
    SysInfoHelper(const SysInfoHelper& other);
    SysInfoHelper& operator=(const SysInfoHelper& other);

    /// Releases the cards, then uninitialises COM.
    ~SysInfoHelper();

    /// Whether the card has speakers or headphones, a digital output, a line input, a microphone.
    /// @param id device instance id in the form of SoundCard::instanceId()
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
