#include "qor/orderedhashtable.h"
#include "suites.h"
#include "texts.h"
#include "visited.h"

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace bench
{
namespace
{
/// The same built from the standard library: an index by key, and the entries in order.
class StandardTable
{
public:
    void insert(const std::u16string& key, unsigned int value)
    {
        if (m_index.emplace(key, m_entries.size()).second)
            m_entries.emplace_back(key, value);
    }

    unsigned int operator[](const std::u16string& key) const { return m_entries[m_index.find(key)->second].second; }

    const std::vector<std::pair<std::u16string, unsigned int>>& entries() const { return m_entries; }

private:
    std::unordered_map<std::u16string, std::size_t> m_index;
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

[[gnu::noinline]] unsigned int walked(const StandardTable& table)
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
    const char* const theirName = "std::unordered_map + std::vector";
    for (const unsigned int size : {8u, 64u, 1000u})
    {
        const std::string name = "table of " + std::to_string(size) + " keys: ";
        const std::vector<std::u16string> keys = devicePaths(size);
        comparisons.add(name + "insert", filling<OurTable>(ownTexts(keys)), theirName, filling<StandardTable>(keys));
        comparisons.add(name + "look up all", lookingUp<OurTable>(ownTexts(keys), ownTexts(keys)), theirName,
                        lookingUp<StandardTable>(keys, devicePaths(size)));
        comparisons.add(name + "walk", walking<OurTable>(ownTexts(keys)), theirName, walking<StandardTable>(keys));
    }
}
}
