#include "libSonavit/soundcard.h"

#include "libSonavit/soundcard/log.h"

bool SoundCard::registerPlaybackObserver(const BorrowedPointer<SoundCardObserver>& observer)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::registerPlaybackObserver");
    if (observer.get() == nullptr || m_playbackObservers.get() == nullptr)
    {
        SONAVIT_LOG(soundcardlog, LOG_WARNING, out.append("Unable to register playback observer"));
        return false;
    }
    m_playbackObservers->append(observer);
    return true;
}

bool SoundCard::registerRecordObserver(const BorrowedPointer<SoundCardObserver>& observer)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::registerRecordObserver");
    if (observer.get() == nullptr || m_recordObservers.get() == nullptr)
    {
        SONAVIT_LOG(soundcardlog, LOG_WARNING, out.append("Unable to register record observer"));
        return false;
    }
    m_recordObservers->append(observer);
    return true;
}
