#include "tests/ends/machine/lastwords.h"

#include "tests/unloading/comspy.h"

namespace ends
{
void sayAtTheVeryEnd(void (*words)())
{
    unloading::watchCom(words);
}
}
