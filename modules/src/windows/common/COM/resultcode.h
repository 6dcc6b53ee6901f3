/// The text forms of result codes and counts in log messages.
#pragma once

#include "platform/coreaudio.h"
#include "qor/integers.h"
#include "qor/qorvalue.h"
#include "qor/string.h"

/// A result code in hexadecimal, the usual form: "0x80070005".
inline qor::String hexText(HRESULT result)
{
    return qor::QORValue(static_cast<int>(result)).toHexString(true);
}

/// A result code for the few messages that show it as a 64-bit number: a failure prints as a very large one.
inline unsigned __int64 signExtended(HRESULT result)
{
    return static_cast<unsigned __int64>(static_cast<__int64>(result));
}

/// A count or an index in decimal.
inline qor::String decimalText(unsigned int value)
{
    return qor::QORValue(value).toString(qor::QORValue::nilValue);
}
