#pragma once

#include <algorithm>
#include <vector>

namespace bench
{
/// The median of @p samples, the lower one of two; sorts them. They must not be empty.
inline double median(std::vector<double>& samples)
{
    std::sort(samples.begin(), samples.end());
    return samples[(samples.size() - 1) / 2];
}
}
