/// @file
/// Comparisons without making values of what is compared.
#pragma once

#include "sonavit/card.h"
#include "sonavit/endpoint.h"

namespace sonavit::reading
{
/// Whether endpoints with these contents are equal.
bool isSame(const Endpoint::Content& left, const Endpoint::Content& right);
/// The same of cards, but for their endpoints.
bool isSameDescription(const Card::Content& left, const Card::Content& right);
}
