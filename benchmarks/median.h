#pragma once

#include <algorithm>
#include <vector>

namespace bench
{
/// The middle of @p samples, which are put in order and are not empty; the lower one of two.
inline double median(std::vector<double>& samples)
{
    std::sort(samples.begin(), samples.end());
    return samples[(samples.size() - 1) / 2];
}
}
