/// @file
/// How well an endpoint fits a reference, and in what words.
#pragma once

#include "client/references/traits.h"
#include "sonavit/reference.h"

#include <optional>
#include <string>
#include <tuple>

namespace sonavit::references
{
/// What an endpoint has in common with the one that a reference was made of.
struct Recognition
{
    Candidate::Evidence evidence = Candidate::Evidence::name;
    /// What else is equal, for endpoints that are recognised by the same evidence: container, instance id, function,
    /// description, place of the jack, name of the device.
    std::tuple<bool, bool, bool, bool, bool, bool> agreement;
    std::string reason; ///< as Candidate::reason
};

/// No value if nothing recognises it. The flow is always equal, and what is not known is equal to nothing. Two serial
/// numbers of one vendor and product that differ are two devices: then only the endpoint id counts.
std::optional<Recognition> recognise(const Traits& kept, const Traits& found);
}
