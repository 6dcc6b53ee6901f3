#pragma once

#include "platform/coreaudio.h"

#include <string>
#include <string_view>

namespace sonavit::reading
{
/// Sees each platform call that a reading makes and that fails. The reading goes on.
///
/// @p operation is the call, with an argument where several calls differ by it alone: "IMMDevice::GetState",
/// "IMMDevice::Activate(IDeviceTopology)", "IPropertyStore::GetValue(friendlyName)"; @p object is the id of what it was
/// called on, empty for a function. A call that succeeds and stores null where it promises an object has the code
/// E_POINTER, and one that stores what cannot be used has typeMismatch or invalidData, see judge.h.
class Witness
{
public:
    virtual void failed(std::string_view operation, std::string_view object, HRESULT code) = 0;

protected:
    ~Witness() = default;
};

/// Tells the witness of this thread, if there is one.
void reportFailure(std::string_view operation, std::string_view object, HRESULT code);

/// Whether this thread has a witness.
bool hasWitness() noexcept;
}
