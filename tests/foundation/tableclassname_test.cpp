#include "qor/orderedhashtable.h"

#include "tests/foundation/supportallocations.h"
#include "tests/support/printers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <new>
#include <string>
#include <thread>
#include <utility>

using qor::String;

namespace
{
/// Each number gives another table type, with another string for its class name.
template<int number>
struct NumberedHash
{
    static unsigned int hash(const String&) { return number; }
};

template<int number>
using Plain = qor::HashTable<String, unsigned int, qor::EqualFunc<String>, NumberedHash<number>>;

template<int number>
using Ordered = qor::OrderedHashTable<String, unsigned int, qor::EqualFunc<String>, NumberedHash<number>>;

/// Asks for the name while the first allocation fails, then while the second one does, until the name is made.
/// @return number of failures
template<class Table>
unsigned int askUntilMemorySuffices(Table& table)
{
    unsigned int failures = 0;
    for (;;)
    {
        support::AllocationProbe probe;
        probe.failOnce(failures);
        try
        {
            table.objectClassName();
            return failures;
        }
        catch (const std::bad_alloc&)
        {
            ++failures;
        }
    }
}

/// Two threads ask at nearly the same time for a name that does not exist yet.
/// @return whether both got the same object, equal to @p expected
template<class Table>
bool namesAreWholeBetweenThreads(const std::string& expected)
{
    Table tables[2];
    const String* names[2] = {};
    std::atomic<int> waiting{2};
    const auto ask = [&](int index)
    {
        --waiting;
        while (waiting != 0)
            std::this_thread::yield();
        names[index] = &tables[index].objectClassName();
    };
    std::thread other(ask, 1);
    ask(0);
    other.join();
    return names[0] == names[1] && names[0]->toUtf8() == expected;
}

template<int... number>
int wholePlainNames(std::integer_sequence<int, number...>)
{
    return (0 + ... + (namesAreWholeBetweenThreads<Plain<100 + number>>("H(String,Uint32)") ? 1 : 0));
}

template<int... number>
int wholeOrderedNames(std::integer_sequence<int, number...>)
{
    return (0 + ... + (namesAreWholeBetweenThreads<Ordered<100 + number>>("OH(String,Uint32)") ? 1 : 0));
}

constexpr int raceCount = 64;

TEST(ClassNameWithoutMemory, IsWholeWhenMemoryIsBack)
{
    Plain<0> plain;
    Ordered<0> ordered;

    const unsigned int plainFailures = askUntilMemorySuffices(plain);
    const unsigned int orderedFailures = askUntilMemorySuffices(ordered);

    EXPECT_EQ(String("H(String,Uint32)"), plain.objectClassName());
    EXPECT_EQ(String("OH(String,Uint32)"), ordered.objectClassName());
    EXPECT_LT(0u, plainFailures);
    EXPECT_LT(0u, orderedFailures);
}

TEST(ClassNameBetweenThreads, IsWholeAndTheSameObject)
{
    const auto races = std::make_integer_sequence<int, raceCount>();

    EXPECT_EQ(raceCount, wholePlainNames(races));
    EXPECT_EQ(raceCount, wholeOrderedNames(races));
}

TEST(ClassNameRebuilding, HappensOnlyWhileTheNameIsEmpty)
{
    Plain<1> table;
    String& name = const_cast<String&>(table.objectClassName());

    name = "changed";
    EXPECT_EQ(String("changed"), table.objectClassName());

    name.clear();
    EXPECT_EQ(String("H(String,Uint32)"), table.objectClassName());
    EXPECT_EQ(&name, &table.objectClassName());
}
}
