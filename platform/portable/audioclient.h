/// @file
/// IAudioClient, a stream of an endpoint. This library hands it out and calls none of its operations.
#pragma once

#include "platform/portable/unknown.h"
#include "platform/portable/waveformat.h"

enum AUDCLNT_SHAREMODE
{
    AUDCLNT_SHAREMODE_SHARED = 0,
    AUDCLNT_SHAREMODE_EXCLUSIVE = 1
};

SONAVIT_INTERFACES_BEGIN

struct IAudioClient : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE Initialize(AUDCLNT_SHAREMODE mode, DWORD flags, REFERENCE_TIME bufferDuration,
                                                 REFERENCE_TIME periodicity, const WAVEFORMATEX* format,
                                                 LPCGUID session) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetBufferSize(UINT32* frames) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetStreamLatency(REFERENCE_TIME* latency) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetCurrentPadding(UINT32* frames) = 0;
    virtual HRESULT STDMETHODCALLTYPE IsFormatSupported(AUDCLNT_SHAREMODE mode, const WAVEFORMATEX* format,
                                                        WAVEFORMATEX** closestMatch) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMixFormat(WAVEFORMATEX** format) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDevicePeriod(REFERENCE_TIME* usual, REFERENCE_TIME* minimum) = 0;
    virtual HRESULT STDMETHODCALLTYPE Start() = 0;
    virtual HRESULT STDMETHODCALLTYPE Stop() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reset() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetEventHandle(HANDLE event) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetService(REFIID iid, void** object) = 0;
};

SONAVIT_INTERFACES_END

inline const IID IID_IAudioClient = {0x1CB9AD4C, 0xDBFA, 0x4C32, {0xB1, 0x78, 0xC2, 0xF5, 0x68, 0xA7, 0x03, 0xB2}};
