#include "qor/array.h"

namespace qor
{
// Two characters in front and one behind are cut off where these names go into those of the tables.

template<>
const String& Array<String>::className()
{
    static const String& name = *new String("A(String)");
    return name;
}

template<>
const String& Array<unsigned int>::className()
{
    static const String& name = *new String("A(Uint32)");
    return name;
}
} // namespace qor
