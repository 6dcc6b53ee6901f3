/// A stream of operations on tables, each of which is done to a plain list of entries as well: afterwards both find the
/// same values, in memory and after a table was written as XML and read again.
#include "qor/exception.h"
#include "qor/hashtable.h"
#include "qor/orderedhashtable.h"
#include "tests/fuzz/support/check.h"
#include "tests/fuzz/support/textmodel.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace
{
using fuzz::check;

using Table = qor::HashTable<qor::String, unsigned int>;
using OrderedTable = qor::OrderedHashTable<qor::String, unsigned int>;

/// Entries in the order of insertion. Of a repeated key the first one counts.
class Model
{
public:
    const unsigned int* find(const std::string& key) const
    {
        for (const auto& entry : m_entries)
        {
            if (entry.first == key)
                return &entry.second;
        }
        return nullptr;
    }
    unsigned int* find(const std::string& key)
    {
        return const_cast<unsigned int*>(static_cast<const Model*>(this)->find(key));
    }

    void add(const std::string& key, unsigned int value) { m_entries.emplace_back(key, value); }
    void clear() { m_entries.clear(); }
    const std::vector<std::pair<std::string, unsigned int>>& entries() const { return m_entries; }

private:
    std::vector<std::pair<std::string, unsigned int>> m_entries;
};

enum class Operation
{
    insert,
    insertWithoutCheck,
    change,
    find,
    clear,
    copy,
    writeAndRead,
    kMaxValue = writeAndRead
};

/// Few keys, so that they meet again; case matters. Some are of characters that XML escapes.
std::string keyOf(FuzzedDataProvider& input)
{
    const auto number = input.ConsumeIntegral<std::uint8_t>();
    if (number == 255)
    {
        const std::string text = input.ConsumeRandomLengthString(16);
        return fuzz::utf8Of(fuzz::unitsOfUtf8(text.substr(0, text.find('\0'))));
    }
    return (number % 2 == 0 ? "key " : "KEY ") + std::to_string(number / 2);
}

qor::String stringOf(const std::string& utf8)
{
    return qor::String::fromUtf8(utf8);
}

void checkFind(const Table& table, const Model& model, const std::string& key)
{
    const unsigned int* const found = table.lookup(stringOf(key));
    const unsigned int* const expected = model.find(key);
    check((found == nullptr) == (expected == nullptr), "the table finds the keys that it has");
    check(found == nullptr || *found == *expected, "the table finds the first value of a key");
    check(table.contains(stringOf(key)) == (expected != nullptr), "contains()");
}

void checkFind(const OrderedTable& table, const Model& model, const std::string& key)
{
    const unsigned int* const expected = model.find(key);
    check(table.contains(stringOf(key)) == (expected != nullptr), "contains() of an ordered table");
    try
    {
        const unsigned int found = table[stringOf(key)];
        check(expected != nullptr && found == *expected, "an ordered table finds what it has");
    }
    catch (const qor::HashKeyMissing& missing)
    {
        check(expected == nullptr, "an ordered table misses nothing else");
        check(missing.key() == stringOf(key), "the exception has the key");
    }
}

template<class AnyTable>
AnyTable readAgain(AnyTable& table)
{
    qor::String text;
    table.doSerialization("table", text);
    AnyTable again(1);
    again.deserialize(text);
    return again;
}

// --- The plain table ------------------------------------------------------------------------------------------------

void change(Operation operation, Table& table, Model& model, const std::string& key, unsigned int value)
{
    switch (operation)
    {
    case Operation::insert:
        check(table.insert(stringOf(key), value) == (model.find(key) == nullptr), "insert() adds new keys alone");
        if (model.find(key) == nullptr)
            model.add(key, value);
        break;
    case Operation::insertWithoutCheck:
        table.insertWithoutCheck(stringOf(key), value);
        model.add(key, value);
        break;
    case Operation::change:
        if (unsigned int* const found = table.lookup(stringOf(key)))
            *found = *model.find(key) = value;
        break;
    case Operation::find:
        break; // which is checked after each operation
    case Operation::clear:
        table.clear();
        model.clear();
        break;
    case Operation::copy:
    {
        const Table copy(table);
        table.clear();
        table = copy;
        break;
    }
    case Operation::writeAndRead:
        table = readAgain(table);
        break;
    }
}

void useTable(FuzzedDataProvider& input)
{
    Table table(input.ConsumeIntegralInRange<unsigned int>(0, 64));
    Model model;
    while (input.remaining_bytes() > 0)
    {
        const auto operation = input.ConsumeEnum<Operation>();
        const std::string key = keyOf(input);
        change(operation, table, model, key, input.ConsumeIntegral<std::uint8_t>());
        checkFind(table, model, key);
    }
    for (const auto& entry : model.entries())
        checkFind(table, model, entry.first);
}

// --- The ordered table ----------------------------------------------------------------------------------------------

void change(Operation operation, OrderedTable& table, Model& model, const std::string& key, unsigned int value)
{
    switch (operation)
    {
    case Operation::insert:
    case Operation::insertWithoutCheck:
        if (table.contains(stringOf(key)))
            break;
        table.insert(stringOf(key), value);
        model.add(key, value);
        break;
    case Operation::change:
        if (table.contains(stringOf(key)))
            table[stringOf(key)] = *model.find(key) = value;
        break;
    case Operation::find:
        break;
    case Operation::clear:
        table = OrderedTable();
        model.clear();
        break;
    case Operation::copy:
        table = OrderedTable(table);
        break;
    case Operation::writeAndRead:
        table = readAgain(table);
        break;
    }
}

void checkOrder(const OrderedTable& table, const Model& model)
{
    check(table.size() == model.entries().size(), "an ordered table has as many entries");
    for (unsigned int i = 0; i < table.size(); ++i)
    {
        check(table.keys()[i] == stringOf(model.entries()[i].first), "keys in the order of insertion");
        check(table.values()[i] == model.entries()[i].second, "values in the order of insertion");
    }
}

void useOrderedTable(FuzzedDataProvider& input)
{
    OrderedTable table(input.ConsumeIntegralInRange<unsigned int>(0, 64));
    Model model;
    while (input.remaining_bytes() > 0)
    {
        const auto operation = input.ConsumeEnum<Operation>();
        const std::string key = keyOf(input);
        change(operation, table, model, key, input.ConsumeIntegral<std::uint8_t>());
        checkFind(table, model, key);
        checkOrder(table, model);
    }
}
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    if (input.ConsumeBool())
        useOrderedTable(input);
    else
        useTable(input);
    return 0;
}
