/// @file
/// IBaseFilter and its bases. This library hands it out and calls none of its operations.
#pragma once

#include "platform/portable/unknown.h"

enum FILTER_STATE : int
{
    State_Stopped = 0,
    State_Paused = 1,
    State_Running = 2
};

SONAVIT_INTERFACES_BEGIN

struct IReferenceClock;
struct IEnumPins;
struct IPin;
struct IFilterGraph;

struct FILTER_INFO
{
    WCHAR achName[128];
    IFilterGraph* pGraph;
};

struct IPersist : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetClassID(CLSID* clsid) = 0;
};

struct IMediaFilter : public IPersist
{
    virtual HRESULT STDMETHODCALLTYPE Stop() = 0;
    virtual HRESULT STDMETHODCALLTYPE Pause() = 0;
    virtual HRESULT STDMETHODCALLTYPE Run(REFERENCE_TIME start) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetState(DWORD timeout, FILTER_STATE* state) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetSyncSource(IReferenceClock* clock) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSyncSource(IReferenceClock** clock) = 0;
};

struct IBaseFilter : public IMediaFilter
{
    virtual HRESULT STDMETHODCALLTYPE EnumPins(IEnumPins** pins) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindPin(LPCWSTR id, IPin** pin) = 0;
    virtual HRESULT STDMETHODCALLTYPE QueryFilterInfo(FILTER_INFO* info) = 0;
    virtual HRESULT STDMETHODCALLTYPE JoinFilterGraph(IFilterGraph* graph, LPCWSTR name) = 0;
    virtual HRESULT STDMETHODCALLTYPE QueryVendorInfo(LPWSTR* info) = 0;
};

SONAVIT_INTERFACES_END

inline const IID IID_IPersist = {0x0000010C, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
inline const IID IID_IMediaFilter = {0x56A86899, 0x0AD4, 0x11CE, {0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70}};
inline const IID IID_IBaseFilter = {0x56A86895, 0x0AD4, 0x11CE, {0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70}};
