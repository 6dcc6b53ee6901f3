#pragma once

namespace bench
{
/// Returns 4 by a call that the compiler cannot inline, as a function of another library does.
int threshold();
}
