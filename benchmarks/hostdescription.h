#pragma once

#include <string>

namespace bench
{
/// Lines that belong ahead of measured numbers: processor, how busy it is, compiler and its options.
std::string hostAndBuild();
}
