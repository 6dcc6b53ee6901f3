#include "qor/array.h"

namespace qor
{
// cutClassName() removes the first two units and the last one when these names become part of a table's name.

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
}
