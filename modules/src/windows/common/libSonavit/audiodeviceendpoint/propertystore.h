#pragma once

#include "platform/coreaudio.h"

/// How an endpoint device opens its property store.
namespace propertystore
{
/// Opens the property store of @p device as AudioDevice::storeAccess() says (IMMDevice::OpenPropertyStore). @p store is
/// what the last call stored, even along with a failure code.
/// @return the result of that call
HRESULT open(IMMDevice& device, IPropertyStore*& store);
}
