#pragma once

#include <string>

namespace bench
{
/// Lines to print before the measured numbers: processor, its load, compiler and options.
std::string hostAndBuild();
}
