/// @file
/// What IAudioClient::GetService returns: buffers, clock and volumes of a stream.
#pragma once

#include "platform/portable/unknown.h"

enum _AUDCLNT_BUFFERFLAGS
{
    AUDCLNT_BUFFERFLAGS_DATA_DISCONTINUITY = 0x1,
    AUDCLNT_BUFFERFLAGS_SILENT = 0x2,
    AUDCLNT_BUFFERFLAGS_TIMESTAMP_ERROR = 0x4
};

SONAVIT_INTERFACES_BEGIN

struct IAudioRenderClient : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetBuffer(UINT32 frames, BYTE** data) = 0;
    virtual HRESULT STDMETHODCALLTYPE ReleaseBuffer(UINT32 frames, DWORD flags) = 0;
};

struct IAudioCaptureClient : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetBuffer(BYTE** data, UINT32* frames, DWORD* flags, UINT64* devicePosition,
                                                UINT64* counterPosition) = 0;
    virtual HRESULT STDMETHODCALLTYPE ReleaseBuffer(UINT32 frames) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetNextPacketSize(UINT32* frames) = 0;
};

/// Counter positions are times of the performance counter in units of 100 nanoseconds.
struct IAudioClock : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetFrequency(UINT64* frequency) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetPosition(UINT64* position, UINT64* counterPosition) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetCharacteristics(DWORD* characteristics) = 0;
};

struct IAudioClock2 : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetDevicePosition(UINT64* position, UINT64* counterPosition) = 0;
};

/// Levels of all volumes here are 0 to 1.
struct ISimpleAudioVolume : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE SetMasterVolume(float level, LPCGUID eventContext) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMasterVolume(float* level) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetMute(BOOL mute, LPCGUID eventContext) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMute(BOOL* mute) = 0;
};

struct IAudioStreamVolume : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetChannelCount(UINT32* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetChannelVolume(UINT32 channel, float level) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetChannelVolume(UINT32 channel, float* level) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetAllVolumes(UINT32 count, const float* levels) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetAllVolumes(UINT32 count, float* levels) = 0;
};

struct IChannelAudioVolume : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetChannelCount(UINT32* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetChannelVolume(UINT32 channel, float level, LPCGUID eventContext) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetChannelVolume(UINT32 channel, float* level) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetAllVolumes(UINT32 count, const float* levels, LPCGUID eventContext) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetAllVolumes(UINT32 count, float* levels) = 0;
};

SONAVIT_INTERFACES_END

inline const IID IID_IAudioRenderClient = {
    0xF294ACFC, 0x3146, 0x4483, {0xA7, 0xBF, 0xAD, 0xDC, 0xA7, 0xC2, 0x60, 0xE2}};
inline const IID IID_IAudioCaptureClient = {
    0xC8ADBD64, 0xE71E, 0x48A0, {0xA4, 0xDE, 0x18, 0x5C, 0x39, 0x5C, 0xD3, 0x17}};
inline const IID IID_IAudioClock = {0xCD63314F, 0x3FBA, 0x4A1B, {0x81, 0x2C, 0xEF, 0x96, 0x35, 0x87, 0x28, 0xE7}};
inline const IID IID_IAudioClock2 = {0x6F49FF73, 0x6727, 0x49AC, {0xA0, 0x08, 0xD9, 0x8C, 0xF5, 0xE7, 0x00, 0x48}};
inline const IID IID_ISimpleAudioVolume = {
    0x87CE5498, 0x68D6, 0x44E5, {0x92, 0x15, 0x6D, 0xA4, 0x7E, 0xF8, 0x83, 0xD8}};
inline const IID IID_IAudioStreamVolume = {
    0x93014887, 0x242D, 0x4068, {0x8A, 0x15, 0xCF, 0x5E, 0x93, 0xB9, 0x0F, 0xE3}};
inline const IID IID_IChannelAudioVolume = {
    0x1C158861, 0xB533, 0x4B30, {0xB1, 0xCF, 0xE8, 0x53, 0xE5, 0x1C, 0x59, 0xB8}};
