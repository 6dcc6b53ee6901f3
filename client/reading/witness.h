#pragma once

#include "platform/coreaudio.h"

#include <string>
#include <string_view>

namespace sonavit::reading
{
/// Sees each platform call that a reading makes and that fails. The reading goes on.
///
/// @p operation is the call, "IMMDevice::GetState"; @p object is the id of what it was called on, empty for a function;
/// a call that succeeds and stores null where it promises an object has the code E_POINTER.
class Witness
{
public:
    virtual void failed(std::string_view operation, std::string_view object, HRESULT code) = 0;

protected:
    ~Witness() = default;
};
}
