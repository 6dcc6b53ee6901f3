/// Searches in the lists of a card; included by this module's source files only.
#pragma once

#include "libSonavit/audiodeviceendpoint.h"
#include "qor/array.h"

namespace listsearch
{
/// The result of a search that finds nothing; negative as a signed number.
inline constexpr unsigned int notFound = 0xFFFFFFFF;

/// Whether a search found something. The sign decides, so a list of more than 0x7FFFFFFF elements cannot be searched.
inline bool isHit(unsigned int index)
{
    return static_cast<int>(index) >= 0;
}

/// Index of the first element that @p matches, or notFound.
template<class T, class Condition>
unsigned int indexWhere(const qor::Array<T>& list, const Condition& matches)
{
    unsigned int index = 0;
    for (const T& element : list)
    {
        if (matches(element))
            return index;
        ++index;
    }
    return notFound;
}

/// Index of the first device that has the endpoint id of @p device, without regard to case, or notFound.
inline unsigned int indexOf(const qor::Array<AudioDevice>& devices, const AudioDevice& device)
{
    return indexWhere(devices, [&device](const AudioDevice& element) { return element == device; });
}
}
