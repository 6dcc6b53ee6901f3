/// @file
/// Whether the client without the layer reads the same values.
#pragma once

#include "plainclient.h"
#include "sonavit/snapshot.h"

#include <string>
#include <vector>

namespace bench
{
/// What differs, one line each: "{0.0.0…}: format". Empty if both have the same cards, endpoints and values.
std::vector<std::string> differences(const plain::Client& client, const sonavit::Snapshot& snapshot);
}
