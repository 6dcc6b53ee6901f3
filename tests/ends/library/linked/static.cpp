#include "tests/ends/library/linking.h"

bool ends::isLibraryShared()
{
    return false;
}
