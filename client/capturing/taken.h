/// @file
/// What a call has stored, before anything else happens.
#pragma once

#include "client/reading/handle.h"
#include "platform/coreaudio.h"

namespace sonavit::capturing
{
/// Adopts @p object if the call has succeeded; what is stored along with a failure is ignored. A survey names its calls
/// in strings, and there may be no memory for them: the object must have an owner by then.
template<class I>
reading::Handle<I> taken(HRESULT result, I* object) noexcept
{
    return reading::Handle<I>(SUCCEEDED(result) ? object : nullptr);
}
}
