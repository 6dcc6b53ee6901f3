/// @file
/// What a connector's jacks look like: place, colour, kind of plug. IPart::Activate returns the interfaces.
#pragma once

#include "platform/portable/unknown.h"

enum EPcxConnectionType : int
{
    eConnTypeUnknown = 0,
    eConnType3Point5mm = 1,
    eConnTypeQuarter = 2,
    eConnTypeAtapiInternal = 3,
    eConnTypeRCA = 4,
    eConnTypeOptical = 5,
    eConnTypeOtherDigital = 6,
    eConnTypeOtherAnalog = 7,
    eConnTypeMultichannelAnalogDIN = 8,
    eConnTypeXlrProfessional = 9,
    eConnTypeRJ11Modem = 10,
    eConnTypeCombination = 11
};

enum EPcxGeoLocation : int
{
    eGeoLocRear = 1,
    eGeoLocFront = 2,
    eGeoLocLeft = 3,
    eGeoLocRight = 4,
    eGeoLocTop = 5,
    eGeoLocBottom = 6,
    eGeoLocRearPanel = 7,
    eGeoLocRiser = 8,
    eGeoLocInsideMobileLid = 9,
    eGeoLocDrivebay = 10,
    eGeoLocHDMI = 11,
    eGeoLocOutsideMobileLid = 12,
    eGeoLocATAPI = 13
};

enum EPcxGenLocation : int
{
    eGenLocPrimaryBox = 0,
    eGenLocInternal = 1,
    eGenLocSeparate = 2,
    eGenLocOther = 3
};

enum EPxcPortConnection : int
{
    ePortConnJack = 0,
    ePortConnIntegratedDevice = 1,
    ePortConnBothIntegratedAndJack = 2,
    ePortConnUnknown = 3
};

/// A colour as 0x00RRGGBB in the descriptions of jacks.
using COLORREF = DWORD;

struct KSJACK_DESCRIPTION
{
    DWORD ChannelMapping;
    COLORREF Color;
    EPcxConnectionType ConnectionType;
    EPcxGeoLocation GeoLocation;
    EPcxGenLocation GenLocation;
    EPxcPortConnection PortConnection;
    BOOL IsConnected;
};

struct KSJACK_DESCRIPTION2
{
    DWORD DeviceStateInfo;
    DWORD JackCapabilities;
};

SONAVIT_INTERFACES_BEGIN

struct IKsJackDescription : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetJackCount(UINT* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetJackDescription(UINT jack, KSJACK_DESCRIPTION* description) = 0;
};

struct IKsJackDescription2 : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetJackCount(UINT* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetJackDescription2(UINT jack, KSJACK_DESCRIPTION2* description) = 0;
};

SONAVIT_INTERFACES_END

inline const IID IID_IKsJackDescription = {
    0x4509F757, 0x2D46, 0x4637, {0x8E, 0x62, 0xCE, 0x7D, 0xB9, 0x44, 0xF5, 0x7B}};
inline const IID IID_IKsJackDescription2 = {
    0x478F3A9B, 0xE0C9, 0x4827, {0x92, 0x28, 0x6F, 0x55, 0x05, 0xFF, 0xE7, 0x6A}};

static_assert(sizeof(KSJACK_DESCRIPTION) == 28 && sizeof(KSJACK_DESCRIPTION2) == 8, "32-bit members alone");
