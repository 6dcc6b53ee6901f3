/// @file
/// Globally unique identifiers, and the names under which interfaces, classes and formats use them.
#pragma once

#include "platform/portable/basetypes.h"

struct GUID
{
    std::uint32_t Data1;
    unsigned short Data2;
    unsigned short Data3;
    unsigned char Data4[8];
};

using IID = GUID;
using CLSID = GUID;
using FMTID = GUID;
using LPGUID = GUID*;
using LPCGUID = const GUID*;
using LPIID = IID*;
using LPCLSID = CLSID*;
using REFGUID = const GUID&;
using REFIID = const IID&;
using REFCLSID = const CLSID&;
using REFFMTID = const FMTID&;

/// Two identifiers are equal when all 128 bits are.
inline bool operator==(REFGUID left, REFGUID right)
{
    if (left.Data1 != right.Data1 || left.Data2 != right.Data2 || left.Data3 != right.Data3)
        return false;
    for (std::size_t index = 0; index < sizeof(left.Data4); ++index)
    {
        if (left.Data4[index] != right.Data4[index])
            return false;
    }
    return true;
}

inline bool operator!=(REFGUID left, REFGUID right)
{
    return !(left == right);
}

/// Nonzero when both identifiers are equal.
inline int IsEqualGUID(REFGUID left, REFGUID right)
{
    return left == right;
}

inline int IsEqualIID(REFIID left, REFIID right)
{
    return left == right;
}

inline const GUID GUID_NULL = {0x00000000, 0x0000, 0x0000, {0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00}};

static_assert(sizeof(GUID) == 16, "identifiers have 16 bytes");
static_assert(offsetof(GUID, Data4) == 8, "identifiers have no padding");
