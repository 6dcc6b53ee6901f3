// The portable side of the comparison: the portable headers in a namespace of their own, beside a Windows runtime but
// without the SDK's headers.

#include "tests/windows/seam_table.h"

// The standard headers that the portable ones include, so that they are not read again inside the namespace.
#include <cstddef>
#include <cstdint>

namespace portable
{
#include "platform/portable/coreaudio.h"

namespace
{

seam::Table readTable()
{
    seam::Table table;
#include "tests/windows/seam_contents.inc"
    return table;
}

}
}

seam::Table seam::portableTable()
{
    return portable::readTable();
}
