#pragma once

namespace bench
{
/// A number that is read by a call, as by a function of another library. It is 4.
int threshold();
}
