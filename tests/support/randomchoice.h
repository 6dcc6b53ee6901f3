#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <random>
#include <utility>
#include <vector>

namespace support
{
/// Draws numbers that depend on the seed alone: the standard's distributions differ between systems, its engine does
/// not. Draw one number in each statement: compilers differ in the order in which they evaluate arguments.
class RandomChoice
{
public:
    /// @param first what is drawn first, as a fuzzer chooses it: a byte for each number
    explicit RandomChoice(std::uint32_t seed, std::vector<std::uint8_t> first = {})
        : m_engine(seed),
          m_first(std::move(first))
    {
    }

    /// 0 to @p limit - 1.
    std::uint32_t below(std::size_t limit) { return number() % static_cast<std::uint32_t>(limit); }

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
    std::uint32_t number() { return m_next < m_first.size() ? m_first[m_next++] : std::uint32_t(m_engine()); }

    std::mt19937 m_engine;
    std::vector<std::uint8_t> m_first;
    std::size_t m_next = 0;
};
}
