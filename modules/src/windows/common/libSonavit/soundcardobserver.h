#pragma once

/// Hears of changes among the playback or the record endpoints of a card: that something changed, not what.
///
/// Implemented by the library's users. Calls come on a thread of the platform. There is no way to take an observer off
/// a card: it must live until the last event, in practice as long as the process.
class SoundCardObserver
{
public:
    virtual void onDeviceStateChanged() = 0;
    virtual void onDeviceAdded() = 0;
    virtual void onDeviceRemoved() = 0;

protected:
    ~SoundCardObserver() = default; // the library never deletes an observer
};
