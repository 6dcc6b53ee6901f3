/// @file
/// Results of platform calls, their judges SUCCEEDED and FAILED, and the codes that a provider may have to return.
#pragma once

#include "platform/portable/basetypes.h"

/// True for success codes, S_FALSE and its like included.
constexpr bool SUCCEEDED(HRESULT result)
{
    return result >= 0;
}

/// True for failure codes: those with the sign bit set.
constexpr bool FAILED(HRESULT result)
{
    return result < 0;
}

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;

inline constexpr HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80004001u);
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002u);
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003u);
inline constexpr HRESULT E_ABORT = static_cast<HRESULT>(0x80004004u);
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005u);
inline constexpr HRESULT E_UNEXPECTED = static_cast<HRESULT>(0x8000FFFFu);
inline constexpr HRESULT E_ACCESSDENIED = static_cast<HRESULT>(0x80070005u);
inline constexpr HRESULT E_HANDLE = static_cast<HRESULT>(0x80070006u);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000Eu);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057u);
inline constexpr HRESULT E_NOTFOUND = static_cast<HRESULT>(0x80070490u);

inline constexpr HRESULT STG_E_ACCESSDENIED = static_cast<HRESULT>(0x80030005u);
inline constexpr HRESULT RPC_E_CHANGED_MODE = static_cast<HRESULT>(0x80010106u);
inline constexpr HRESULT CLASS_E_NOAGGREGATION = static_cast<HRESULT>(0x80040110u);
inline constexpr HRESULT REGDB_E_CLASSNOTREG = static_cast<HRESULT>(0x80040154u);
inline constexpr HRESULT CO_E_NOTINITIALIZED = static_cast<HRESULT>(0x800401F0u);
inline constexpr HRESULT CO_E_CLASSSTRING = static_cast<HRESULT>(0x800401F3u);

inline constexpr HRESULT AUDCLNT_E_NOT_INITIALIZED = static_cast<HRESULT>(0x88890001u);
inline constexpr HRESULT AUDCLNT_E_ALREADY_INITIALIZED = static_cast<HRESULT>(0x88890002u);
inline constexpr HRESULT AUDCLNT_E_WRONG_ENDPOINT_TYPE = static_cast<HRESULT>(0x88890003u);
inline constexpr HRESULT AUDCLNT_E_DEVICE_INVALIDATED = static_cast<HRESULT>(0x88890004u);
inline constexpr HRESULT AUDCLNT_E_NOT_STOPPED = static_cast<HRESULT>(0x88890005u);
inline constexpr HRESULT AUDCLNT_E_BUFFER_TOO_LARGE = static_cast<HRESULT>(0x88890006u);
inline constexpr HRESULT AUDCLNT_E_OUT_OF_ORDER = static_cast<HRESULT>(0x88890007u);
inline constexpr HRESULT AUDCLNT_E_UNSUPPORTED_FORMAT = static_cast<HRESULT>(0x88890008u);
inline constexpr HRESULT AUDCLNT_E_INVALID_SIZE = static_cast<HRESULT>(0x88890009u);
inline constexpr HRESULT AUDCLNT_E_DEVICE_IN_USE = static_cast<HRESULT>(0x8889000Au);
inline constexpr HRESULT AUDCLNT_E_BUFFER_OPERATION_PENDING = static_cast<HRESULT>(0x8889000Bu);
inline constexpr HRESULT AUDCLNT_E_EXCLUSIVE_MODE_NOT_ALLOWED = static_cast<HRESULT>(0x8889000Eu);
inline constexpr HRESULT AUDCLNT_E_ENDPOINT_CREATE_FAILED = static_cast<HRESULT>(0x8889000Fu);
inline constexpr HRESULT AUDCLNT_E_SERVICE_NOT_RUNNING = static_cast<HRESULT>(0x88890010u);
inline constexpr HRESULT AUDCLNT_E_EVENTHANDLE_NOT_EXPECTED = static_cast<HRESULT>(0x88890011u);
inline constexpr HRESULT AUDCLNT_E_BUFDURATION_PERIOD_NOT_EQUAL = static_cast<HRESULT>(0x88890013u);
inline constexpr HRESULT AUDCLNT_E_EVENTHANDLE_NOT_SET = static_cast<HRESULT>(0x88890014u);
inline constexpr HRESULT AUDCLNT_E_INCORRECT_BUFFER_SIZE = static_cast<HRESULT>(0x88890015u);
inline constexpr HRESULT AUDCLNT_E_BUFFER_SIZE_ERROR = static_cast<HRESULT>(0x88890016u);
inline constexpr HRESULT AUDCLNT_E_BUFFER_ERROR = static_cast<HRESULT>(0x88890018u);
inline constexpr HRESULT AUDCLNT_E_BUFFER_SIZE_NOT_ALIGNED = static_cast<HRESULT>(0x88890019u);
inline constexpr HRESULT AUDCLNT_E_INVALID_DEVICE_PERIOD = static_cast<HRESULT>(0x88890020u);
inline constexpr HRESULT AUDCLNT_E_INVALID_STREAM_FLAG = static_cast<HRESULT>(0x88890021u);
inline constexpr HRESULT AUDCLNT_E_ENDPOINT_OFFLOAD_NOT_CAPABLE = static_cast<HRESULT>(0x88890022u);
inline constexpr HRESULT AUDCLNT_E_OFFLOAD_MODE_ONLY = static_cast<HRESULT>(0x88890024u);
inline constexpr HRESULT AUDCLNT_E_RAW_MODE_UNSUPPORTED = static_cast<HRESULT>(0x88890027u);
inline constexpr HRESULT AUDCLNT_S_BUFFER_EMPTY = 0x08890001;
