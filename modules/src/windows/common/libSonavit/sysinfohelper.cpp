#include "libSonavit/sysinfohelper.h"

#include "qor/exception.h"

namespace libSonavit
{
namespace
{
typedef qor::Array<SharedPointer<SoundCard>> Cards;

/// Releases the cards. The list would have a new block then, which a list that ends does not need.
void releaseAll(Cards& cards)
{
    try
    {
        cards.clear();
    }
    catch (const qor::NullPointer&)
    {
        return;
    }
}

/// Takes COM back from the thread, after the cards, if the constructor ends with an exception. Where it was not
/// initialised, there is nothing to take back.
class InitializationOfCOM
{
public:
    explicit InitializationOfCOM(Cards& cards)
        : m_cards(cards),
          m_isOwed(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)))
    {
    }
    InitializationOfCOM(const InitializationOfCOM&) = delete;
    InitializationOfCOM& operator=(const InitializationOfCOM&) = delete;
    ~InitializationOfCOM()
    {
        if (!m_isOwed)
            return;
        releaseAll(m_cards);
        CoUninitialize();
    }

    void stay() { m_isOwed = false; }

private:
    Cards& m_cards;
    bool m_isOwed;
};
}

SysInfoHelper::SysInfoHelper()
{
    InitializationOfCOM initialization(m_soundCards);
    const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    for (unsigned int i = 0; i < cards.size(); ++i)
        m_soundCards.append(qor::sharedOwner(new SoundCard(cards[i])));
    initialization.stay();
}

SysInfoHelper::SysInfoHelper(const SysInfoHelper& other) = default;
SysInfoHelper& SysInfoHelper::operator=(const SysInfoHelper& other) = default;

/// Releases the cards while COM is still initialised. Required behaviour: CoUninitialize is always called, even by a
/// copy, which has not initialised COM.
SysInfoHelper::~SysInfoHelper()
{
    releaseAll(m_soundCards);
    CoUninitialize();
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
