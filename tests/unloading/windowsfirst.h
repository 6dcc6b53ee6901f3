/// @file
/// windows.h as programs include that take all of it, with the macros that Microsoft's SDK defines then: mingw-w64's
/// leaves out two of them in C++. The standard headers come before these, as this compiler's do not expect them.
#pragma once

#undef NOMINMAX
#undef WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <chrono>
#include <exception>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <variant>
#include <vector>

#undef min
#undef max
#define min(a, b) (((a) < (b)) ? (a) : (b))
#define max(a, b) (((a) > (b)) ? (a) : (b))
