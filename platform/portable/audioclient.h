/// @file
/// IAudioClient and its extensions: one stream of an endpoint. This library hands IAudioClient out and calls none of
/// its operations.
#pragma once

#include "platform/portable/unknown.h"
#include "platform/portable/waveformat.h"

enum AUDCLNT_SHAREMODE : int
{
    AUDCLNT_SHAREMODE_SHARED = 0,
    AUDCLNT_SHAREMODE_EXCLUSIVE = 1
};

enum AUDIO_STREAM_CATEGORY : int
{
    AudioCategory_Other = 0,
    AudioCategory_ForegroundOnlyMedia = 1,
    AudioCategory_BackgroundCapableMedia = 2,
    AudioCategory_Communications = 3,
    AudioCategory_Alerts = 4,
    AudioCategory_SoundEffects = 5,
    AudioCategory_GameEffects = 6,
    AudioCategory_GameMedia = 7,
    AudioCategory_GameChat = 8,
    AudioCategory_Speech = 9,
    AudioCategory_Movie = 10,
    AudioCategory_Media = 11
};

enum AUDCLNT_STREAMOPTIONS : int
{
    AUDCLNT_STREAMOPTIONS_NONE = 0,
    AUDCLNT_STREAMOPTIONS_RAW = 0x1,
    AUDCLNT_STREAMOPTIONS_MATCH_FORMAT = 0x2,
    AUDCLNT_STREAMOPTIONS_AMBISONICS = 0x4
};

struct AudioClientProperties
{
    UINT32 cbSize; ///< bytes of this structure
    BOOL bIsOffload;
    AUDIO_STREAM_CATEGORY eCategory;
    AUDCLNT_STREAMOPTIONS Options;
};

inline constexpr DWORD AUDCLNT_STREAMFLAGS_CROSSPROCESS = 0x00010000;
inline constexpr DWORD AUDCLNT_STREAMFLAGS_LOOPBACK = 0x00020000;
inline constexpr DWORD AUDCLNT_STREAMFLAGS_EVENTCALLBACK = 0x00040000;
inline constexpr DWORD AUDCLNT_STREAMFLAGS_NOPERSIST = 0x00080000;
inline constexpr DWORD AUDCLNT_STREAMFLAGS_RATEADJUST = 0x00100000;
inline constexpr DWORD AUDCLNT_STREAMFLAGS_SRC_DEFAULT_QUALITY = 0x08000000;
inline constexpr DWORD AUDCLNT_STREAMFLAGS_AUTOCONVERTPCM = 0x80000000;
inline constexpr DWORD AUDCLNT_SESSIONFLAGS_EXPIREWHENUNOWNED = 0x10000000;
inline constexpr DWORD AUDCLNT_SESSIONFLAGS_DISPLAY_HIDE = 0x20000000;
inline constexpr DWORD AUDCLNT_SESSIONFLAGS_DISPLAY_HIDEWHENEXPIRED = 0x40000000;

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

struct IAudioClient2 : public IAudioClient
{
    virtual HRESULT STDMETHODCALLTYPE IsOffloadCapable(AUDIO_STREAM_CATEGORY category, BOOL* capable) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetClientProperties(const AudioClientProperties* properties) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetBufferSizeLimits(const WAVEFORMATEX* format, BOOL eventDriven,
                                                          REFERENCE_TIME* minimum, REFERENCE_TIME* maximum) = 0;
};

/// Periods are counted in frames.
struct IAudioClient3 : public IAudioClient2
{
    virtual HRESULT STDMETHODCALLTYPE GetSharedModeEnginePeriod(const WAVEFORMATEX* format, UINT32* usual,
                                                                UINT32* fundamental, UINT32* minimum,
                                                                UINT32* maximum) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetCurrentSharedModeEnginePeriod(WAVEFORMATEX** format, UINT32* period) = 0;
    virtual HRESULT STDMETHODCALLTYPE InitializeSharedAudioStream(DWORD flags, UINT32 period,
                                                                  const WAVEFORMATEX* format, LPCGUID session) = 0;
};

SONAVIT_INTERFACES_END

inline const IID IID_IAudioClient = {0x1CB9AD4C, 0xDBFA, 0x4C32, {0xB1, 0x78, 0xC2, 0xF5, 0x68, 0xA7, 0x03, 0xB2}};
inline const IID IID_IAudioClient2 = {0x726778CD, 0xF60A, 0x4EDA, {0x82, 0xDE, 0xE4, 0x76, 0x10, 0xCD, 0x78, 0xAA}};
inline const IID IID_IAudioClient3 = {0x7ED4EE07, 0x8E67, 0x4CD4, {0x8C, 0x1A, 0x2B, 0x7A, 0x59, 0x87, 0xAD, 0x42}};

static_assert(sizeof(AudioClientProperties) == 16, "four members of 32 bits");
