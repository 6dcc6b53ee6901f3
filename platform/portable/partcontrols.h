/// @file
/// Hardware controls of a part: levels, mute and input selection. IPart::Activate hands them out.
#pragma once

#include "platform/portable/unknown.h"

SONAVIT_INTERFACES_BEGIN

/// Levels in decibels, channel by channel.
struct IPerChannelDbLevel : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetChannelCount(UINT* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetLevelRange(UINT channel, float* minimum, float* maximum, float* step) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetLevel(UINT channel, float* level) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetLevel(UINT channel, float level, LPCGUID eventContext) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetLevelUniform(float level, LPCGUID eventContext) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetLevelAllChannels(float* levels, ULONG count, LPCGUID eventContext) = 0;
};

struct IAudioVolumeLevel : public IPerChannelDbLevel
{
};

struct IAudioMute : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE SetMute(BOOL mute, LPCGUID eventContext) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMute(BOOL* mute) = 0;
};

/// The selection is the local id of the part whose signal goes through.
struct IAudioInputSelector : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetSelection(UINT* id) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetSelection(UINT id, LPCGUID eventContext) = 0;
};

SONAVIT_INTERFACES_END

inline const IID IID_IPerChannelDbLevel = {
    0xC2F8E001, 0xF205, 0x4BC9, {0x99, 0xBC, 0xC1, 0x3B, 0x1E, 0x04, 0x8C, 0xCB}};
inline const IID IID_IAudioVolumeLevel = {0x7FB7B48F, 0x531D, 0x44A2, {0xBC, 0xB3, 0x5A, 0xD5, 0xA1, 0x34, 0xB3, 0xDC}};
inline const IID IID_IAudioMute = {0xDF45AEEA, 0xB74A, 0x4B6B, {0xAF, 0xAD, 0x23, 0x66, 0xB6, 0xAA, 0x01, 0x2E}};
inline const IID IID_IAudioInputSelector = {
    0x4F03DC02, 0x5E6E, 0x4653, {0x8F, 0x72, 0xA0, 0x30, 0xC1, 0x23, 0xD5, 0x98}};
