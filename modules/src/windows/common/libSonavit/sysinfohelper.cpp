#include "libSonavit/sysinfohelper.h"

#include "COM/endofcom.h"

namespace libSonavit
{
/// The result of CoInitializeEx counts for an exception only: no destructor runs then.
SysInfoHelper::SysInfoHelper()
{
    EndOfCOM end(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)));
    qor::Array<SharedPointer<SoundCard>> soundCards; // not m_soundCards, which would survive the end of COM
    {
        const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
        for (unsigned int i = 0; i < cards.size(); ++i)
            soundCards.append(qor::sharedOwner(new SoundCard(cards[i])));
    }
    m_soundCards.swap(soundCards);
    end.forget();
}

SysInfoHelper::SysInfoHelper(const SysInfoHelper& other) = default;
SysInfoHelper& SysInfoHelper::operator=(const SysInfoHelper& other) = default;

/// Releases the cards while COM is still initialised. Required behaviour: CoUninitialize is always called, even by a
/// copy, which has not initialised COM.
SysInfoHelper::~SysInfoHelper()
{
    const EndOfCOM end;
    m_soundCards.release();
}

bool SysInfoHelper::hasAnalogOut(const qor::String& id)
{
    return hasEndpoint(id, &SoundCard::waveOutEndpointDevice);
}

bool SysInfoHelper::hasDigitalOut(const qor::String& id)
{
    return hasEndpoint(id, &SoundCard::spdifOutEndpointDevice);
}

bool SysInfoHelper::hasLineIn(const qor::String& id)
{
    return hasEndpoint(id, &SoundCard::lineInEndpointDevice);
}

bool SysInfoHelper::hasMicIn(const qor::String& id)
{
    return hasEndpoint(id, &SoundCard::microphoneEndpointDevice);
}

bool SysInfoHelper::hasEndpoint(const qor::String& id, EndpointQuery query)
{
    const BorrowedPointer<SoundCard> card = soundCard(id);
    if (card.get() == nullptr)
        return false;
    qor::Array<AudioDevice> endpoints;
    return ((*card).*query)(endpoints) != 0;
}

/// No early exit: of several cards with this id the last one is the result, unlike in SoundCard::createSoundCard().
BorrowedPointer<SoundCard> SysInfoHelper::soundCard(const qor::String& id)
{
    BorrowedPointer<SoundCard> result;
    for (unsigned int i = 0; i < m_soundCards.size(); ++i)
    {
        if (qor::String::compareNoCase(m_soundCards[i]->instanceId(), id) == 0)
            result = m_soundCards[i].get();
    }
    return result;
}

bool SysInfoHelper::isInitialized()
{
    return m_soundCards.size() > 0;
}
}
