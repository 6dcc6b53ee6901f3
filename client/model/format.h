/// @file
/// Device formats of the object model.
#pragma once

#include "platform/coreaudio.h"
#include "sonavit/format.h"

#include <optional>

namespace sonavit::model
{
/// The device format in the object model's block, which has the size of the long form whatever it holds; no value for a
/// block without a rate, such as that of zeroes where the object model could read no format.
std::optional<Format> formatOf(const WAVEFORMATEXTENSIBLE& format);
}
