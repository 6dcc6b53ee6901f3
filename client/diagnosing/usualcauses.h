/// @file
/// What usually makes a platform call fail.
#pragma once

#include <cstdint>
#include <string>

namespace sonavit::diagnosing
{
/// One sentence or two.
/// @param operation "IMMDevice::Activate"
/// @param argument the first one; may be empty
/// @param isPresent whether the device is there, as far as its state says
std::string usualCause(std::uint32_t code, const std::string& operation, const std::string& argument, bool isPresent);
}
