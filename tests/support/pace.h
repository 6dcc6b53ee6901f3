/// @file
/// How many cases a test has time for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace support
{
/// Whether a sanitizer watches this build, which makes everything many times slower.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isInstrumented = true;
#elif defined(__has_feature)
constexpr bool isInstrumented = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
constexpr bool isInstrumented = false;
#endif

/// Whether there is time for few cases only: under a sanitizer, and under Wine. There the tests judge what differs
/// there, memory and the platform; a build without either has all cases.
#ifdef _WIN32
constexpr bool isSlow = true;
#else
constexpr bool isSlow = isInstrumented;
#endif

/// @p few where there is time for few cases only, otherwise @p many.
constexpr std::uint32_t cases(std::uint32_t many, std::uint32_t few)
{
    return isSlow ? few : many;
}

/// All of them, or where there is time for few cases only the first one and then every @p step-th.
template<class T>
std::vector<T> share(const std::vector<T>& all, std::size_t step)
{
    std::vector<T> some;
    for (std::size_t index = 0; index < all.size(); index += isSlow ? step : 1)
        some.push_back(all[index]);
    return some;
}
}
