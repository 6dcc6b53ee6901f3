#include "qor/orderedhashtable.h"
#include "suites.h"
#include "texts.h"
#include "visited.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace bench
{
namespace
{
/// A hash as one writes it where it counts: whole registers, two at a time.
struct WordHash
{
    std::size_t operator()(const std::u16string& text) const noexcept
    {
        const char* bytes = reinterpret_cast<const char*>(text.data());
        std::size_t left = text.size() * sizeof(char16_t);
        std::uint64_t first = left;
        std::uint64_t second = 0;
        for (; left >= 16; bytes += 16, left -= 16)
        {
            first = mixed(first, bytes, 8);
            second = mixed(second, bytes + 8, 8);
        }
        if (left > 8)
            second = mixed(second, bytes + 8, left - 8);
        first = mixed(first, bytes, std::min<std::size_t>(left, 8));
        return static_cast<std::size_t>(first ^ (second >> 29) ^ second);
    }

private:
    static std::uint64_t mixed(std::uint64_t hash, const char* bytes, std::size_t count) noexcept
    {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes, count);
        hash = (hash ^ word) * 0x9E3779B97F4A7C15u;
        return hash ^ (hash >> 32);
    }
};

/// Compares whole registers, too; the operator of std::u16string compares units.
struct ByteEqual
{
    bool operator()(const std::u16string& left, const std::u16string& right) const noexcept
    {
        return left.size() == right.size() &&
               std::memcmp(left.data(), right.data(), left.size() * sizeof(char16_t)) == 0;
    }
};

/// The same built from the standard library: values by key, and the entries in order, which stay where they are.
class StandardTable
{
public:
    void insert(const std::u16string& key, unsigned int value)
    {
        const auto inserted = m_values.emplace(key, value);
        if (inserted.second)
            m_order.push_back(&*inserted.first);
    }

    unsigned int operator[](const std::u16string& key) const { return m_values.find(key)->second; }

private:
    using Values = std::unordered_map<std::u16string, unsigned int, WordHash, ByteEqual>;

    Values m_values;
    std::vector<const Values::value_type*> m_order;
};

/// The fastest to walk: nothing but the entries.
class Pairs
{
public:
    void insert(const std::u16string& key, unsigned int value) { m_entries.emplace_back(key, value); }

    const std::vector<std::pair<std::u16string, unsigned int>>& entries() const { return m_entries; }

private:
    std::vector<std::pair<std::u16string, unsigned int>> m_entries;
};

using OurTable = qor::OrderedHashTable<qor::String, unsigned int>;

/// Visits all keys and values in order.
[[gnu::noinline]] unsigned int walked(const OurTable& table)
{
    unsigned int sum = 0;
    for (unsigned int i = 0; i < table.size(); ++i)
        sum += visited(table.keys()[i]) + table.values()[i];
    return sum;
}

[[gnu::noinline]] unsigned int walked(const Pairs& table)
{
    unsigned int sum = 0;
    for (const auto& [key, value] : table.entries())
        sum += visited(key) + value;
    return sum;
}

template<class Table, class Key>
void fill(Table& table, const std::vector<Key>& keys)
{
    for (unsigned int i = 0; i < keys.size(); ++i)
        table.insert(keys[i], i);
}

template<class Table, class Key>
unsigned int lookedUp(const Table& table, const std::vector<Key>& keys)
{
    unsigned int sum = 0;
    for (const Key& key : keys)
        sum += table[key];
    return sum;
}

/// Fills an empty table, and destroys it.
template<class Table, class Key>
Comparisons::Work filling(const std::vector<Key>& keys)
{
    return [keys](benchmark::State& state)
    {
        for (auto _ : state)
        {
            Table table;
            fill(table, keys);
            benchmark::DoNotOptimize(&table);
            benchmark::ClobberMemory();
        }
    };
}

/// Finds every key by strings that share no buffer with those in the table.
template<class Table, class Key>
Comparisons::Work lookingUp(const std::vector<Key>& keys, const std::vector<Key>& questions)
{
    return [keys, questions](benchmark::State& state)
    {
        Table table;
        fill(table, keys);
        if (lookedUp(table, questions) != keys.size() * (keys.size() - 1) / 2)
            state.SkipWithError("wrong values");
        for (auto _ : state)
        {
            benchmark::ClobberMemory();
            benchmark::DoNotOptimize(lookedUp(table, questions));
        }
    };
}

template<class Table, class Key>
Comparisons::Work walking(const std::vector<Key>& keys)
{
    return [keys](benchmark::State& state)
    {
        Table table;
        fill(table, keys);
        const Table* source = &table;
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(source);
            benchmark::DoNotOptimize(walked(*source));
        }
    };
}
}

void addTables(Comparisons& comparisons)
{
    const char* const theirName = "std::unordered_map, word hash";
    for (const unsigned int size : {8u, 64u, 1000u})
    {
        const std::string name = "table of " + std::to_string(size) + " keys: ";
        const std::vector<std::u16string> keys = devicePaths(size);
        comparisons.add(name + "insert", filling<OurTable>(ownTexts(keys)), theirName, filling<StandardTable>(keys));
        comparisons.add(name + "look up all", lookingUp<OurTable>(ownTexts(keys), ownTexts(keys)), theirName,
                        lookingUp<StandardTable>(keys, devicePaths(size)));
        comparisons.add(name + "walk", walking<OurTable>(ownTexts(keys)), "std::vector of pairs", walking<Pairs>(keys));
    }
}
}
