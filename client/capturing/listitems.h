/// @file
/// How the items of the platform's lists are read.
#pragma once

#include "platform/coreaudio.h"

#include <optional>

namespace sonavit::capturing
{
/// No list of the platform has more items.
inline constexpr UINT mostItems = 4096;

/// Reads as many items as a list has. One that cannot be counted ends before the first item that is not there. After 16
/// failures in a row the rest of a list is taken as lost.
/// @param read bool(UINT index): whether the item is there
/// @param lose void(): one item more is lost
template<class Read, class Lose>
void readItems(std::optional<UINT> count, const Read& read, const Lose& lose)
{
    constexpr unsigned mostFailures = 16;
    unsigned failures = 0;
    const UINT last = count && *count < mostItems ? *count : mostItems;
    for (UINT index = 0; index < last; ++index)
    {
        const bool isGivenUp = failures == mostFailures;
        const bool isThere = !isGivenUp && read(index);
        if (!isThere && !count)
            return;
        if (isGivenUp)
            lose();
        else
            failures = isThere ? 0 : failures + 1;
    }
}
}
