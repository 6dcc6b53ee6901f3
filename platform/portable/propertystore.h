/// @file
/// Properties of devices: keys, values with a type tag, and the store that holds them.
#pragma once

#include "platform/portable/unknown.h"

struct PROPERTYKEY
{
    GUID fmtid;
    DWORD pid;
};

using REFPROPERTYKEY = const PROPERTYKEY&;

inline bool operator==(REFPROPERTYKEY left, REFPROPERTYKEY right)
{
    return left.pid == right.pid && left.fmtid == right.fmtid;
}

inline bool operator!=(REFPROPERTYKEY left, REFPROPERTYKEY right)
{
    return !(left == right);
}

using VARTYPE = unsigned short;
using VARIANT_BOOL = short;

enum VARENUM
{
    VT_EMPTY = 0,
    VT_NULL = 1,
    VT_I2 = 2,
    VT_I4 = 3,
    VT_R4 = 4,
    VT_R8 = 5,
    VT_BOOL = 11,
    VT_UNKNOWN = 13,
    VT_I1 = 16,
    VT_UI1 = 17,
    VT_UI2 = 18,
    VT_UI4 = 19,
    VT_I8 = 20,
    VT_UI8 = 21,
    VT_INT = 22,
    VT_UINT = 23,
    VT_LPSTR = 30,
    VT_LPWSTR = 31,
    VT_FILETIME = 64,
    VT_BLOB = 65,
    VT_CLSID = 72,
    VT_VECTOR = 0x1000
};

struct BLOB
{
    ULONG cbSize;
    BYTE* pBlobData;
};

/// A value and the tag that says which member holds it. Of the SDK's members those that audio properties use.
struct PROPVARIANT
{
    VARTYPE vt;
    WORD wReserved1;
    WORD wReserved2;
    WORD wReserved3;
    union
    {
        CHAR cVal;
        UCHAR bVal;
        SHORT iVal;
        USHORT uiVal;
        LONG lVal;
        ULONG ulVal;
        INT intVal;
        UINT uintVal;
        LARGE_INTEGER hVal;
        ULARGE_INTEGER uhVal;
        FLOAT fltVal;
        DOUBLE dblVal;
        VARIANT_BOOL boolVal;
        HRESULT scode;
        FILETIME filetime;
        CLSID* puuid;
        BLOB blob;
        LPSTR pszVal;
        LPWSTR pwszVal;
        IUnknown* punkVal;
    };
};

using REFPROPVARIANT = const PROPVARIANT&;

/// Makes an empty value; what it held before is forgotten, not freed.
inline void PropVariantInit(PROPVARIANT* value)
{
    *value = PROPVARIANT{};
}

/// Frees what the value holds (texts and blobs are task memory) and leaves VT_EMPTY. The provider defines it.
SONAVIT_PLATFORM_FUNCTION HRESULT WINAPI PropVariantClear(PROPVARIANT* value);

inline constexpr DWORD STGM_READ = 0x0;
inline constexpr DWORD STGM_WRITE = 0x1;
inline constexpr DWORD STGM_READWRITE = 0x2;

SONAVIT_INTERFACES_BEGIN

struct IPropertyStore : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetCount(DWORD* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetAt(DWORD index, PROPERTYKEY* key) = 0;
    /// A key that the store does not know gives S_OK and VT_EMPTY. What the value holds is the caller's to free.
    virtual HRESULT STDMETHODCALLTYPE GetValue(REFPROPERTYKEY key, PROPVARIANT* value) = 0;
    /// Takes a copy of the value.
    virtual HRESULT STDMETHODCALLTYPE SetValue(REFPROPERTYKEY key, REFPROPVARIANT value) = 0;
    virtual HRESULT STDMETHODCALLTYPE Commit() = 0;
};

SONAVIT_INTERFACES_END

inline const IID IID_IPropertyStore = {0x886D8EEB, 0x8CF2, 0x4446, {0x8D, 0x02, 0xCD, 0xBA, 0x1D, 0xBD, 0xCF, 0x99}};

static_assert(sizeof(PROPERTYKEY) == 20, "an identifier and a number");
static_assert(offsetof(PROPVARIANT, vt) == 0 && offsetof(PROPVARIANT, ulVal) == 8, "the value follows four words");
static_assert(offsetof(BLOB, pBlobData) == sizeof(void*), "the size is padded up to the pointer");
static_assert(sizeof(PROPVARIANT) == 8 + 2 * sizeof(void*), "24 bytes on hosts with 64 bits");
