/// @file
/// The DeviceTopology family: connectors and subunits of a device, their parts, paths and hardware controls.
#pragma once

#include "platform/portable/unknown.h"

/// The direction of a connector, as seen from its device.
enum DataFlow : int
{
    In = 0,
    Out = 1
};

enum PartType : int
{
    Connector = 0,
    Subunit = 1
};

enum ConnectorType : int
{
    Unknown_Connector = 0,
    Physical_Internal = 1,
    Physical_External = 2,
    Software_IO = 3,
    Software_Fixed = 4,
    Network = 5
};

SONAVIT_INTERFACES_BEGIN

struct IPart;
struct IDeviceTopology;

struct IPartsList : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetCount(UINT* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetPart(UINT index, IPart** part) = 0;
};

struct IControlInterface : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetName(LPWSTR* name) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetIID(GUID* iid) = 0;
};

/// Implemented by users who register with a part.
struct IControlChangeNotify : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE OnNotify(DWORD senderProcessId, LPCGUID eventContext) = 0;
};

/// What a connector and a subunit have in common; reached from either by QueryInterface.
struct IPart : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetName(LPWSTR* name) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetLocalId(UINT* id) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetGlobalId(LPWSTR* globalId) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetPartType(PartType* type) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSubType(GUID* subType) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetControlInterfaceCount(UINT* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetControlInterface(UINT index, IControlInterface** description) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumPartsIncoming(IPartsList** parts) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumPartsOutgoing(IPartsList** parts) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetTopologyObject(IDeviceTopology** topology) = 0;
    virtual HRESULT STDMETHODCALLTYPE Activate(DWORD context, REFIID iid, void** object) = 0;
    virtual HRESULT STDMETHODCALLTYPE RegisterControlChangeCallback(REFGUID iid, IControlChangeNotify* notify) = 0;
    virtual HRESULT STDMETHODCALLTYPE UnregisterControlChangeCallback(IControlChangeNotify* notify) = 0;
};

struct IConnector : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetType(ConnectorType* type) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDataFlow(DataFlow* flow) = 0;
    virtual HRESULT STDMETHODCALLTYPE ConnectTo(IConnector* connector) = 0;
    virtual HRESULT STDMETHODCALLTYPE Disconnect() = 0;
    virtual HRESULT STDMETHODCALLTYPE IsConnected(BOOL* connected) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetConnectedTo(IConnector** connector) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetConnectorIdConnectedTo(LPWSTR* connectorId) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDeviceIdConnectedTo(LPWSTR* deviceId) = 0;
};

/// Marks a part that is not a connector; it has no operations of its own.
struct ISubunit : public IUnknown
{
};

struct IDeviceTopology : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetConnectorCount(UINT* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetConnector(UINT index, IConnector** connector) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSubunitCount(UINT* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSubunit(UINT index, ISubunit** subunit) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetPartById(UINT id, IPart** part) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDeviceId(LPWSTR* deviceId) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSignalPath(IPart* from, IPart* to, BOOL rejectMixedPaths,
                                                    IPartsList** parts) = 0;
};

SONAVIT_INTERFACES_END

inline const IID IID_IPartsList = {0x6DAA848C, 0x5EB0, 0x45CC, {0xAE, 0xA5, 0x99, 0x8A, 0x2C, 0xDA, 0x1F, 0xFB}};
inline const IID IID_IControlInterface = {0x45D37C3F, 0x5140, 0x444A, {0xAE, 0x24, 0x40, 0x07, 0x89, 0xF3, 0xCB, 0xF3}};
inline const IID IID_IControlChangeNotify = {
    0xA09513ED, 0xC709, 0x4D21, {0xBD, 0x7B, 0x5F, 0x34, 0xC4, 0x7F, 0x39, 0x47}};
inline const IID IID_IPart = {0xAE2DE0E4, 0x5BCA, 0x4F2D, {0xAA, 0x46, 0x5D, 0x13, 0xF8, 0xFD, 0xB3, 0xA9}};
inline const IID IID_IConnector = {0x9C2C4058, 0x23F5, 0x41DE, {0x87, 0x7A, 0xDF, 0x3A, 0xF2, 0x36, 0xA0, 0x9E}};
inline const IID IID_ISubunit = {0x82149A85, 0xDBA6, 0x4487, {0x86, 0xBB, 0xEA, 0x8F, 0x7F, 0xEF, 0xCC, 0x71}};
inline const IID IID_IDeviceTopology = {0x2A07407E, 0x6497, 0x4A18, {0x97, 0x87, 0x32, 0xF7, 0x9B, 0xD0, 0xD9, 0x8F}};
