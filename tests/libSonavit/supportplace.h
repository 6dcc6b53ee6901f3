/// The address of an object, for the tests of the order of fields.
#pragma once

#include <cstdint>

namespace support
{
template<class Object>
std::uintptr_t placeOf(const Object& object)
{
    return reinterpret_cast<std::uintptr_t>(&object);
}
}
