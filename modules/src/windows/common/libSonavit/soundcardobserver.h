#pragma once

/// Receives change notifications for the playback or the record endpoints of a card: that something changed, not what.
///
/// The library's users implement it. It is called on a thread of the platform, after the card's list has changed. An
/// observer cannot be unregistered: it must live until the last event, in practice as long as the process. It must not
/// make or register cards in its notification: that registers clients, which the platform forbids in a callback.
class SoundCardObserver
{
public:
    /// An endpoint of that side has changed its state.
    virtual void onDeviceStateChanged() = 0;

    /// An endpoint has been added to that side.
    virtual void onDeviceAdded() = 0;

    /// An endpoint has been removed from that side.
    virtual void onDeviceRemoved() = 0;

protected:
    ~SoundCardObserver() = default; // the library never deletes an observer
};
