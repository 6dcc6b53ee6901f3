/// @file
/// Names that some SDKs do not have. Included by platform/windows/coreaudio.h, after everything else.
#pragma once

#ifndef E_NOTFOUND
#define E_NOTFOUND HRESULT_FROM_WIN32(ERROR_NOT_FOUND)
#endif

// mmddk.h, which has these two, belongs to the driver kit.
#ifndef DRV_QUERYFUNCTIONINSTANCEID
#define DRV_QUERYFUNCTIONINSTANCEID 0x811
#endif
#ifndef DRV_QUERYFUNCTIONINSTANCEIDSIZE
#define DRV_QUERYFUNCTIONINSTANCEIDSIZE 0x812
#endif

// mingw-w64 10 names the peak meter and does not describe it.
#if defined(__MINGW32__) && !defined(__IAudioMeterInformation_INTERFACE_DEFINED__)
#define __IAudioMeterInformation_INTERFACE_DEFINED__
DEFINE_GUID(IID_IAudioMeterInformation, 0xC02216F6, 0x8C67, 0x4B5B, 0x9D, 0x00, 0xD0, 0x08, 0xE7, 0x3E, 0x00, 0x64);
MIDL_INTERFACE("C02216F6-8C67-4B5B-9D00-D008E73E0064")
IAudioMeterInformation : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetPeakValue(float* peak) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMeteringChannelCount(UINT * count) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetChannelsPeakValues(UINT32 count, float* peaks) = 0;
    virtual HRESULT STDMETHODCALLTYPE QueryHardwareSupport(DWORD * mask) = 0;
};
__CRT_UUID_DECL(IAudioMeterInformation, 0xC02216F6, 0x8C67, 0x4B5B, 0x9D, 0x00, 0xD0, 0x08, 0xE7, 0x3E, 0x00, 0x64)
#endif

#ifndef KSNODETYPE_HDMI_INTERFACE
inline const GUID KSNODETYPE_HDMI_INTERFACE = {
    0xD1B9CC2A, 0xF519, 0x417F, {0x91, 0xC9, 0x55, 0xFA, 0x65, 0x48, 0x10, 0x01}};
#define KSNODETYPE_HDMI_INTERFACE KSNODETYPE_HDMI_INTERFACE
#endif
#ifndef KSNODETYPE_DISPLAYPORT_INTERFACE
inline const GUID KSNODETYPE_DISPLAYPORT_INTERFACE = {
    0xE47E4031, 0x3EA6, 0x418D, {0x8F, 0x9B, 0xB7, 0x38, 0x43, 0xCC, 0xBA, 0x97}};
#define KSNODETYPE_DISPLAYPORT_INTERFACE KSNODETYPE_DISPLAYPORT_INTERFACE
#endif
