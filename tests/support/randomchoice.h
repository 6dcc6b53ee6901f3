#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <random>
#include <vector>

namespace support
{
/// Draws numbers that depend on the seed alone: the standard's distributions differ between systems, its engine does
/// not. Draw one number in each statement: compilers differ in the order in which they evaluate arguments.
class RandomChoice
{
public:
    explicit RandomChoice(std::uint32_t seed) : m_engine(seed) {}

    /// 0 to @p limit - 1.
    std::uint32_t below(std::size_t limit)
    {
        return static_cast<std::uint32_t>(m_engine() % static_cast<std::uint32_t>(limit));
    }

    bool chance(std::uint32_t percent) { return below(100) < percent; }

    template<class T>
    T oneOf(std::initializer_list<T> values)
    {
        return values.begin()[below(values.size())];
    }

    /// An element of a list that is not empty.
    template<class T>
    T& from(std::vector<T>& list)
    {
        return list[below(list.size())];
    }

private:
    std::mt19937 m_engine;
};
}
