/// @file
/// The EndpointVolume family: volume, mute and peak meter of an endpoint, and the callback for changes.
#pragma once

#include "platform/portable/unknown.h"

struct AUDIO_VOLUME_NOTIFICATION_DATA
{
    GUID guidEventContext;
    BOOL bMuted;
    FLOAT fMasterVolume;       ///< 0 to 1
    UINT nChannels;            ///< channels that follow
    FLOAT afChannelVolumes[1]; ///< 0 to 1; the array continues after the structure
};

using PAUDIO_VOLUME_NOTIFICATION_DATA = AUDIO_VOLUME_NOTIFICATION_DATA*;

inline constexpr DWORD ENDPOINT_HARDWARE_SUPPORT_VOLUME = 0x1;
inline constexpr DWORD ENDPOINT_HARDWARE_SUPPORT_MUTE = 0x2;
inline constexpr DWORD ENDPOINT_HARDWARE_SUPPORT_METER = 0x4;

SONAVIT_INTERFACES_BEGIN

/// Implemented by users. Calls come on a thread of the platform.
struct IAudioEndpointVolumeCallback : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE OnNotify(AUDIO_VOLUME_NOTIFICATION_DATA* data) = 0;
};

/// Levels are in decibels, scalars run from 0 to 1.
struct IAudioEndpointVolume : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE RegisterControlChangeNotify(IAudioEndpointVolumeCallback* notify) = 0;
    virtual HRESULT STDMETHODCALLTYPE UnregisterControlChangeNotify(IAudioEndpointVolumeCallback* notify) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetChannelCount(UINT* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetMasterVolumeLevel(FLOAT level, LPCGUID eventContext) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetMasterVolumeLevelScalar(FLOAT level, LPCGUID eventContext) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMasterVolumeLevel(FLOAT* level) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMasterVolumeLevelScalar(FLOAT* level) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetChannelVolumeLevel(UINT channel, FLOAT level, LPCGUID eventContext) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetChannelVolumeLevelScalar(UINT channel, FLOAT level, LPCGUID eventContext) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetChannelVolumeLevel(UINT channel, FLOAT* level) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetChannelVolumeLevelScalar(UINT channel, FLOAT* level) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetMute(BOOL mute, LPCGUID eventContext) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMute(BOOL* mute) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetVolumeStepInfo(UINT* step, UINT* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE VolumeStepUp(LPCGUID eventContext) = 0;
    virtual HRESULT STDMETHODCALLTYPE VolumeStepDown(LPCGUID eventContext) = 0;
    virtual HRESULT STDMETHODCALLTYPE QueryHardwareSupport(DWORD* mask) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetVolumeRange(FLOAT* minimum, FLOAT* maximum, FLOAT* step) = 0;
};

/// Peaks are 0 to 1.
struct IAudioMeterInformation : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetPeakValue(float* peak) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMeteringChannelCount(UINT* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetChannelsPeakValues(UINT32 count, float* peaks) = 0;
    virtual HRESULT STDMETHODCALLTYPE QueryHardwareSupport(DWORD* mask) = 0;
};

SONAVIT_INTERFACES_END

inline const IID IID_IAudioEndpointVolumeCallback = {
    0x657804FA, 0xD6AD, 0x4496, {0x8A, 0x60, 0x35, 0x27, 0x52, 0xAF, 0x4F, 0x89}};
inline const IID IID_IAudioEndpointVolume = {
    0x5CDF2C82, 0x841E, 0x4546, {0x97, 0x22, 0x0C, 0xF7, 0x40, 0x78, 0x22, 0x9A}};
inline const IID IID_IAudioMeterInformation = {
    0xC02216F6, 0x8C67, 0x4B5B, {0x9D, 0x00, 0xD0, 0x08, 0xE7, 0x3E, 0x00, 0x64}};

static_assert(sizeof(AUDIO_VOLUME_NOTIFICATION_DATA) == 32, "one channel is part of the structure");
static_assert(offsetof(AUDIO_VOLUME_NOTIFICATION_DATA, afChannelVolumes) == 28, "the channels are the last member");
