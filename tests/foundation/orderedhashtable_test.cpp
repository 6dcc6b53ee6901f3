#include "qor/orderedhashtable.h"

#include "tests/foundation/supportallocations.h"
#include "tests/foundation/supportkeys.h"
#include "tests/foundation/supporttracked.h"
#include "tests/support/printers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using qor::OrderedHashTable;
using qor::String;
using support::ConstantHash;
using support::ExactText;
using support::FirstUnitHash;
using support::Tracked;
using testing::ElementsAre;

using Table = OrderedHashTable<String, unsigned int>;

namespace
{
template<class AnyTable>
std::vector<unsigned int> valuesOf(const AnyTable& table)
{
    std::vector<unsigned int> found;
    for (unsigned int i = 0; i < table.values().size(); ++i)
        found.push_back(table.values()[i]);
    return found;
}

template<class AnyTable>
void insertAbc(AnyTable& table)
{
    table.insert("a", 1);
    table.insert("b", 2);
    table.insert("c", 3);
}

/// A key that records its destruction, as Tracked does.
struct RecordedKey
{
    ~RecordedKey() { Tracked::events.push_back("destroy key"); }
    bool operator==(const RecordedKey&) const { return true; }
};

struct RecordedKeyHash
{
    static unsigned int hash(const RecordedKey&) { return 0; }
};

TEST(OrderedHashTableInsert, KeepsTheOrderOfInsertionWhateverTheHashes)
{
    Table usual;
    OrderedHashTable<String, unsigned int, ExactText, FirstUnitHash> forward(2);
    OrderedHashTable<String, unsigned int, ExactText, ConstantHash> oneChain;

    insertAbc(usual);
    insertAbc(forward);
    insertAbc(oneChain);

    EXPECT_THAT(valuesOf(usual), ElementsAre(1, 2, 3));
    EXPECT_THAT(valuesOf(forward), ElementsAre(1, 2, 3));
    EXPECT_THAT(valuesOf(oneChain), ElementsAre(1, 2, 3));
}

TEST(OrderedHashTableInsert, KeepsKeysAndValuesParallel)
{
    Table table;

    table.insert("c", 3);
    table.insert("a", 1);

    ASSERT_EQ(2u, table.size());
    ASSERT_EQ(2u, table.keys().size());
    EXPECT_EQ(String("c"), table.keys()[0]);
    EXPECT_EQ(String("a"), table.keys()[1]);
    EXPECT_THAT(valuesOf(table), ElementsAre(3, 1));
    EXPECT_EQ(3u, table["c"]);
    EXPECT_EQ(1u, table["a"]);
}

TEST(OrderedHashTableInsert, TakesKeysThatDifferOnlyInCaseForTwo)
{
    Table table;

    table.insert("card", 1);
    table.insert("Card", 2);

    EXPECT_EQ(2u, table.size());
    EXPECT_EQ(1u, table["card"]);
    EXPECT_EQ(2u, table["Card"]);
    EXPECT_FALSE(table.contains("CARD"));
}

TEST(OrderedHashTableInsert, KeepsEveryKeyOfMany)
{
    Table table(32);
    for (unsigned int i = 0; i < 500; ++i)
        table.insert("key " + qor::QORValue(i).toString(qor::QORValue::nilValue), i);

    for (unsigned int i = 0; i < 500; ++i)
    {
        ASSERT_EQ(i, table.values()[i]);
        ASSERT_EQ(i, table["key " + qor::QORValue(i).toString(qor::QORValue::nilValue)]);
    }
}

/// Message of the NullPointer that an insertion throws if the array of keys (0) or of values (1) cannot grow.
std::string failedGrowth(Table& table, const String& key, unsigned int which)
{
    support::AllocationProbe probe;
    probe.failNothrow(1 + which); // the first one is for the bucket
    try
    {
        table.insert(key, 9);
    }
    catch (const qor::NullPointer& error)
    {
        probe.succeed();
        return error.what();
    }
    return "nothing was thrown";
}

/// A table whose arrays are full.
Table fullTable()
{
    Table table;
    for (unsigned int i = 0; i < 8; ++i)
        table.insert("key " + qor::QORValue(i).toString(qor::QORValue::nilValue), i);
    return table;
}

TEST(OrderedHashTableInsert, ThatCannotAppendTheKeyLeavesItInTheIndexOnly)
{
    Table table = fullTable();

    EXPECT_EQ("Asked for array of size: 9", failedGrowth(table, "ninth", 0));

    EXPECT_EQ(8u, table.size());
    EXPECT_EQ(8u, table.values().size());
    EXPECT_TRUE(table.contains("ninth"));
    EXPECT_THROW(table["ninth"], qor::IndexOutOfBounds);
    EXPECT_EQ(7u, table["key 7"]);
}

TEST(OrderedHashTableInsert, ThatCannotAppendTheValueLeavesAKeyWithoutOne)
{
    Table table = fullTable();

    EXPECT_EQ("Asked for array of size: 9", failedGrowth(table, "ninth", 1));

    EXPECT_EQ(9u, table.keys().size());
    EXPECT_EQ(8u, table.values().size());
    EXPECT_EQ(String("ninth"), table.keys()[8]);
    EXPECT_THROW(table["ninth"], qor::IndexOutOfBounds);
    EXPECT_EQ(7u, table["key 7"]);
}

TEST(OrderedHashTableInsert, WithoutMemoryForTheIndexStoresAKeyThatTheTableDoesNotContain)
{
    Table table;
    insertAbc(table);
    const String key("d");
    {
        support::AllocationProbe probe;
        probe.failOnce(); // the first one is for the bucket

        table.insert(key, 4);
    }

    EXPECT_FALSE(table.contains("d"));
    EXPECT_THROW(table["d"], qor::HashKeyMissing);
    EXPECT_EQ(4u, table.size());
    EXPECT_EQ(String("d"), table.keys()[3]);
    EXPECT_EQ(4u, table.values()[3]);
    EXPECT_EQ(3u, table["c"]);
}

TEST(OrderedHashTableAccess, ChangesTheValueThatValuesShows)
{
    Table table;
    insertAbc(table);

    table["b"] = 77;

    EXPECT_THAT(valuesOf(table), ElementsAre(1, 77, 3));
}

TEST(OrderedHashTableAccess, ByAKeyThatWasNeverInsertedThrowsHashKeyMissingWithThatKey)
{
    Table table;
    insertAbc(table);
    const Table& constant = table;

    try
    {
        table["{1}.HDAUDIO"] = 1;
        FAIL() << "nothing was thrown";
    }
    catch (const qor::HashKeyMissing& error)
    {
        EXPECT_EQ(String("{1}.HDAUDIO"), error.key());
    }
    EXPECT_THROW(constant["B"], qor::HashKeyMissing);
    EXPECT_EQ(3u, table.size());
}

TEST(OrderedHashTableAccess, OfAKeyWithoutAValueThrowsIndexOutOfBounds)
{
    OrderedHashTable<String, Tracked> table;
    testing::internal::CaptureStdout();
    table.deserialize("<t><m_arrayKeys><item>a</item></m_arrayKeys><m_arrayValues/></t>");
    testing::internal::GetCapturedStdout();

    ASSERT_TRUE(table.contains("a"));
    EXPECT_THROW(table["a"], qor::IndexOutOfBounds);
}

TEST(OrderedHashTableToText, WritesKeysAndValuesUnderTheirNamesInTheOrderOfInsertion)
{
    Table table;
    table.insert("b", 2);
    table.insert("a", 1);
    String out;

    table.serializeToXML("t", out);

    EXPECT_EQ(String("<t><m_arrayKeys><item>b</item><item>a</item></m_arrayKeys>"
                     "<m_arrayValues><item>2</item><item>1</item></m_arrayValues></t>"),
              out);
}

TEST(OrderedHashTableToText, IsRefusedByOtherValuesThanTextsAndNumbers)
{
    OrderedHashTable<String, Tracked> table;
    table.insert("a", Tracked(1));
    String out("untouched");

    for (int attempt = 0; attempt < 2; ++attempt)
    {
        try
        {
            table.serializeToXML("t", out);
            FAIL() << "nothing was thrown";
        }
        catch (const qor::SerializationFailed& error)
        {
            EXPECT_STREQ("Serialization is not supported for: m_arrayValues", error.what());
        }
    }

    EXPECT_EQ(String("untouched"), out);
}

TEST(OrderedHashTableFromText, ReplacesTheContentByWhatWasWritten)
{
    Table written;
    insertAbc(written);
    String text;
    written.doSerialization("t", text);
    Table read;
    read.insert("old", 9);

    read.deserialize(text);

    EXPECT_THAT(valuesOf(read), ElementsAre(1, 2, 3));
    EXPECT_EQ(2u, read["b"]);
    EXPECT_FALSE(read.contains("old"));
}

TEST(OrderedHashTableFromText, KeepsARepeatedKeyAndFindsTheFirst)
{
    Table table;

    table.deserialize("<t><m_arrayKeys><item>a</item><item>a</item></m_arrayKeys>"
                      "<m_arrayValues><item>1</item><item>2</item></m_arrayValues></t>");

    EXPECT_EQ(2u, table.size());
    EXPECT_EQ(1u, table["a"]);
}

TEST(OrderedHashTableFromText, ForgetsTheContentBeforeItReads)
{
    Table table;
    insertAbc(table);

    EXPECT_THROW(table.deserialize("<t/>"), qor::SerializationFailed);

    EXPECT_EQ(0u, table.size());
    EXPECT_EQ(0u, table.values().size());
    EXPECT_FALSE(table.contains("a"));
}

TEST(OrderedHashTableFromText, DestroysIndexThenKeysThenValuesBeforeItReads)
{
    Tracked::reset();
    OrderedHashTable<RecordedKey, Tracked, qor::EqualFunc<RecordedKey>, RecordedKeyHash> table;
    table.insert(RecordedKey(), Tracked(1));
    Tracked::events.clear();

    EXPECT_THROW(table.deserialize("<t/>"), qor::SerializationFailed);

    EXPECT_THAT(Tracked::events, ElementsAre("destroy key", "destroy key", "destroy 1"));
}

TEST(OrderedHashTableFromText, HasTheBlocksOfNewArraysBeforeItReads)
{
    Table table;
    for (const char* const key : {"a", "b", "c", "d", "e", "f", "g", "h", "i"})
        table.insert(key, 1);

    EXPECT_THROW(table.deserialize("<t/>"), qor::SerializationFailed);

    EXPECT_EQ(qor::Array<String>().capacity(), table.keys().capacity());
    EXPECT_EQ(qor::Array<unsigned int>().capacity(), table.values().capacity());
}

TEST(OrderedHashTableFromText, IsEmptyWhenMemoryRunsOutBeforeItReads)
{
    const qor::XmlElement element("t");
    for (unsigned int more = 0;; ++more)
    {
        Table table;
        insertAbc(table);
        support::AllocationProbe probe;
        probe.failOnce(more);
        try
        {
            table.deserializeFromElement(&element);
        }
        catch (const qor::NullPointer&) // of an array that is empty now, and has no new block
        {
            probe.succeed();
            EXPECT_EQ(0u, table.size()) << more;
            EXPECT_FALSE(table.contains("a")) << more;
            table.insert("z", 26);
            EXPECT_EQ(26, table["z"]) << more;
            EXPECT_EQ(1u, table.values().size()) << more;
        }
        catch (const qor::SerializationFailed&)
        {
            return; // no allocation has failed
        }
        catch (const std::bad_alloc&)
        {
            probe.succeed();
            EXPECT_EQ(0u, table.size()) << more;
            EXPECT_FALSE(table.contains("a")) << more;
        }
    }
}

TEST(OrderedHashTableFromText, IsEmptyWhenThereIsTextInPlaceOfItems)
{
    Table table;
    insertAbc(table);

    EXPECT_THROW(table.deserialize("<t><m_arrayKeys>d</m_arrayKeys><m_arrayValues/></t>"), qor::SerializationFailed);

    EXPECT_EQ(0u, table.size());
    EXPECT_FALSE(table.contains("a"));
}

TEST(OrderedHashTableClassName, HoldsTheMangledNameOfOtherArrays)
{
    OrderedHashTable<String, Tracked> table;

    EXPECT_EQ(String("OH(String,rayOfOther)"), table.objectClassName());
    EXPECT_EQ(&table.objectClassName(), &table.objectClassName());
}

TEST(OrderedHashTableDestruction, DestroysTheValuesFirst)
{
    Tracked::reset();
    {
        OrderedHashTable<RecordedKey, Tracked, qor::EqualFunc<RecordedKey>, RecordedKeyHash> table;
        table.insert(RecordedKey(), Tracked(1));
        Tracked::events.clear();
    }

    EXPECT_THAT(Tracked::events, ElementsAre("destroy 1", "destroy key", "destroy key"));
}

TEST(OrderedHashTableDestruction, HasItsFieldsInTheOrderIndexKeysValues)
{
    Table table;

    EXPECT_LT(static_cast<void*>(&table.m_index), static_cast<void*>(&table.m_arrayKeys));
    EXPECT_LT(static_cast<void*>(&table.m_arrayKeys), static_cast<void*>(&table.m_arrayValues));
}

TEST(OrderedHashTableCopy, IsIndependent)
{
    Table table;
    insertAbc(table);

    Table copy(table);
    copy["a"] = 7;
    copy.insert("d", 4);

    EXPECT_THAT(valuesOf(table), ElementsAre(1, 2, 3));
    EXPECT_THAT(valuesOf(copy), ElementsAre(7, 2, 3, 4));
    EXPECT_FALSE(table.contains("d"));
}
}
