/// @file
/// Formats of sampled sound: the two structures, their tags, subtypes and speaker masks.
#pragma once

#include "platform/portable/guid.h"

#pragma pack(push, 1)

struct WAVEFORMATEX
{
    WORD wFormatTag;
    WORD nChannels;
    DWORD nSamplesPerSec;
    DWORD nAvgBytesPerSec;
    WORD nBlockAlign;
    WORD wBitsPerSample;
    WORD cbSize; ///< bytes that follow this structure
};

struct WAVEFORMATEXTENSIBLE
{
    WAVEFORMATEX Format;
    union
    {
        WORD wValidBitsPerSample;
        WORD wSamplesPerBlock;
        WORD wReserved;
    } Samples;
    DWORD dwChannelMask; ///< SPEAKER_ bits
    GUID SubFormat;
};

#pragma pack(pop)

using PWAVEFORMATEX = WAVEFORMATEX*;
using LPWAVEFORMATEX = WAVEFORMATEX*;
using LPCWAVEFORMATEX = const WAVEFORMATEX*;
using PWAVEFORMATEXTENSIBLE = WAVEFORMATEXTENSIBLE*;

static_assert(sizeof(WAVEFORMATEX) == 18, "packed without padding");
static_assert(sizeof(WAVEFORMATEXTENSIBLE) == 40, "packed without padding");
static_assert(offsetof(WAVEFORMATEX, cbSize) == 16, "packed without padding");
static_assert(offsetof(WAVEFORMATEXTENSIBLE, dwChannelMask) == 20, "packed without padding");
static_assert(offsetof(WAVEFORMATEXTENSIBLE, SubFormat) == 24, "packed without padding");

inline constexpr WORD WAVE_FORMAT_UNKNOWN = 0x0000;
inline constexpr WORD WAVE_FORMAT_PCM = 0x0001;
inline constexpr WORD WAVE_FORMAT_IEEE_FLOAT = 0x0003;
inline constexpr WORD WAVE_FORMAT_ALAW = 0x0006;
inline constexpr WORD WAVE_FORMAT_MULAW = 0x0007;
inline constexpr WORD WAVE_FORMAT_EXTENSIBLE = 0xFFFE;

inline const GUID KSDATAFORMAT_SUBTYPE_PCM = {
    0x00000001, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
inline const GUID KSDATAFORMAT_SUBTYPE_IEEE_FLOAT = {
    0x00000003, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
inline const GUID KSDATAFORMAT_SUBTYPE_ALAW = {
    0x00000006, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
inline const GUID KSDATAFORMAT_SUBTYPE_MULAW = {
    0x00000007, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};

inline constexpr DWORD SPEAKER_FRONT_LEFT = 0x1;
inline constexpr DWORD SPEAKER_FRONT_RIGHT = 0x2;
inline constexpr DWORD SPEAKER_FRONT_CENTER = 0x4;
inline constexpr DWORD SPEAKER_LOW_FREQUENCY = 0x8;
inline constexpr DWORD SPEAKER_BACK_LEFT = 0x10;
inline constexpr DWORD SPEAKER_BACK_RIGHT = 0x20;
inline constexpr DWORD SPEAKER_FRONT_LEFT_OF_CENTER = 0x40;
inline constexpr DWORD SPEAKER_FRONT_RIGHT_OF_CENTER = 0x80;
inline constexpr DWORD SPEAKER_BACK_CENTER = 0x100;
inline constexpr DWORD SPEAKER_SIDE_LEFT = 0x200;
inline constexpr DWORD SPEAKER_SIDE_RIGHT = 0x400;
inline constexpr DWORD SPEAKER_TOP_CENTER = 0x800;
inline constexpr DWORD SPEAKER_TOP_FRONT_LEFT = 0x1000;
inline constexpr DWORD SPEAKER_TOP_FRONT_CENTER = 0x2000;
inline constexpr DWORD SPEAKER_TOP_FRONT_RIGHT = 0x4000;
inline constexpr DWORD SPEAKER_TOP_BACK_LEFT = 0x8000;
inline constexpr DWORD SPEAKER_TOP_BACK_CENTER = 0x10000;
inline constexpr DWORD SPEAKER_TOP_BACK_RIGHT = 0x20000;
inline constexpr DWORD SPEAKER_ALL = 0x80000000;

inline constexpr DWORD KSAUDIO_SPEAKER_DIRECTOUT = 0;
inline constexpr DWORD KSAUDIO_SPEAKER_MONO = SPEAKER_FRONT_CENTER;
inline constexpr DWORD KSAUDIO_SPEAKER_STEREO = SPEAKER_FRONT_LEFT | SPEAKER_FRONT_RIGHT;
inline constexpr DWORD KSAUDIO_SPEAKER_QUAD = KSAUDIO_SPEAKER_STEREO | SPEAKER_BACK_LEFT | SPEAKER_BACK_RIGHT;
inline constexpr DWORD KSAUDIO_SPEAKER_SURROUND = KSAUDIO_SPEAKER_STEREO | SPEAKER_FRONT_CENTER | SPEAKER_BACK_CENTER;
inline constexpr DWORD KSAUDIO_SPEAKER_5POINT1 = KSAUDIO_SPEAKER_QUAD | SPEAKER_FRONT_CENTER | SPEAKER_LOW_FREQUENCY;
inline constexpr DWORD KSAUDIO_SPEAKER_7POINT1 =
    KSAUDIO_SPEAKER_5POINT1 | SPEAKER_FRONT_LEFT_OF_CENTER | SPEAKER_FRONT_RIGHT_OF_CENTER;
inline constexpr DWORD KSAUDIO_SPEAKER_5POINT1_SURROUND =
    KSAUDIO_SPEAKER_STEREO | SPEAKER_FRONT_CENTER | SPEAKER_LOW_FREQUENCY | SPEAKER_SIDE_LEFT | SPEAKER_SIDE_RIGHT;
inline constexpr DWORD KSAUDIO_SPEAKER_7POINT1_SURROUND =
    KSAUDIO_SPEAKER_5POINT1 | SPEAKER_SIDE_LEFT | SPEAKER_SIDE_RIGHT;
