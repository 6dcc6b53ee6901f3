#include "qor/hashtable.h"

#include "tests/foundation/supportallocations.h"
#include "tests/foundation/supportkeys.h"
#include "tests/support/printers.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <new>
#include <set>
#include <string>

using qor::Array;
using qor::HashTable;
using qor::String;
using support::AllocationProbe;
using support::ExactText;
using support::FirstUnitHash;

using Table = HashTable<String, unsigned int>;

namespace
{
struct Coin
{
    unsigned int value;
};

bool operator==(const Coin& left, const Coin& right)
{
    return left.value == right.value;
}

struct CoinHash
{
    static unsigned int hash(const Coin& coin) { return coin.value; }
};
}

namespace qor
{
/// Too short to be cut: that takes four units.
template<>
const String& Array<Coin>::className()
{
    static const String& name = *new String("AC");
    return name;
}
}

namespace
{
String numbered(unsigned int number)
{
    return "key " + qor::QORValue(number).toString(qor::QORValue::nilValue);
}

// Tables are written in the order of these numbers.
TEST(HashFuncOfString, GivesTheSameNumbersAsEver)
{
    const std::uint16_t firstByte = 1;
    if (*reinterpret_cast<const unsigned char*>(&firstByte) != 1)
        GTEST_SKIP() << "other numbers on a machine of the other byte order";

    EXPECT_EQ(0u, qor::HashFunc<qor::String>::hash(""));
    EXPECT_EQ(668021783u, qor::HashFunc<qor::String>::hash("a"));
    EXPECT_EQ(1718878549u, qor::HashFunc<qor::String>::hash("ab"));
    EXPECT_EQ(2234754833u, qor::HashFunc<qor::String>::hash("abc"));
    EXPECT_EQ(574275523u, qor::HashFunc<qor::String>::hash("abcd"));
    EXPECT_EQ(4259088855u, qor::HashFunc<qor::String>::hash("abcdef"));
}

TEST(HashTableLookup, FindsTheStoredValueOfAKey)
{
    Table table;
    table.insert("a", 1);

    *table.lookup("a") = 7;

    const Table& constant = table;
    EXPECT_EQ(7u, *constant.lookup("a"));
    EXPECT_TRUE(constant.contains("a"));
}

TEST(HashTableLookup, GivesNullForAKeyThatWasNeverInserted)
{
    Table table;
    const Table& constant = table;

    EXPECT_EQ(nullptr, table.lookup("a"));
    EXPECT_EQ(nullptr, constant.lookup("a"));
    EXPECT_FALSE(table.contains("a"));
}

TEST(HashTableLookup, TakesKeysThatDifferOnlyInCaseForTwo)
{
    Table table;

    EXPECT_TRUE(table.insert("card", 1));
    EXPECT_TRUE(table.insert("Card", 2));

    EXPECT_EQ(1u, *table.lookup("card"));
    EXPECT_EQ(2u, *table.lookup("Card"));
    EXPECT_FALSE(table.contains("CARD"));
}

TEST(HashTableInsert, OfAKeyThatIsThereChangesNothing)
{
    Table table;
    table.insert("a", 1);

    EXPECT_FALSE(table.insert("a", 2));

    EXPECT_EQ(1u, *table.lookup("a"));
}

TEST(HashTableInsert, KeepsEveryKeyOfMany)
{
    Table table(32);
    for (unsigned int i = 0; i < 2000; ++i)
        ASSERT_TRUE(table.insert(numbered(i), i));

    for (unsigned int i = 0; i < 2000; ++i)
        ASSERT_EQ(i, *table.lookup(numbered(i)));
}

TEST(HashTableInsert, WithoutMemoryForABucketHandsOnNull)
{
    Table table;
    AllocationProbe probe;
    probe.failNothrow();

    EXPECT_FALSE(table.insert("a", 1));
    table.insertWithoutCheck("b", 2);

    EXPECT_FALSE(table.contains("a"));
    EXPECT_FALSE(table.contains("b"));
}

TEST(HashTableInsert, ThatRunsOutOfMemoryAnywhereLeavesAUsableTable)
{
    for (unsigned int successes = 0; successes < 20; ++successes)
    {
        AllocationProbe probe;
        {
            Table table(1);
            const String key("a key");
            table.insert("first", 1);
            probe.failOnce(successes);
            bool inserted = false;
            try
            {
                inserted = table.insert(key, 2);
            }
            catch (const std::bad_alloc&)
            {
            }
            probe.succeed();

            EXPECT_EQ(inserted, table.contains(key)) << successes;
            EXPECT_EQ(1u, *table.lookup("first"));
            EXPECT_EQ(!inserted, table.insert(key, 2));
        }
        EXPECT_EQ(0, probe.balance()) << successes;
    }
}

TEST(HashTableClear, LeavesAnEmptyUsableTable)
{
    Table table;
    table.insert("a", 1);

    table.clear();

    EXPECT_FALSE(table.contains("a"));
    EXPECT_TRUE(table.insert("a", 2));
}

TEST(HashTableCopy, IsIndependent)
{
    Table table;
    table.insert("a", 1);

    Table copy(table);
    copy.insert("b", 2);
    *copy.lookup("a") = 7;
    Table assigned;
    assigned.insert("c", 3);
    assigned = table;

    EXPECT_EQ(1u, *table.lookup("a"));
    EXPECT_FALSE(table.contains("b"));
    EXPECT_EQ(1u, *assigned.lookup("a"));
    EXPECT_FALSE(assigned.contains("c"));
}

TEST(HashTableToText, WritesKeysAndValuesUnderTheirNames)
{
    Table table;
    table.insert("a<b", 4294967295u);
    String out;

    table.serializeToXML("table", out);

    EXPECT_EQ(String("<table><m_arrKey><item>a&#60;b</item></m_arrKey>"
                     "<m_arrValue><item>4294967295</item></m_arrValue></table>"),
              out);
}

TEST(HashTableToText, GoesByTheOrderOfTheChainsAndNotOfInsertion)
{
    HashTable<String, unsigned int, ExactText, FirstUnitHash> table(128);
    table.insert("c", 3);
    table.insert("a", 1);
    table.insert("b", 2);
    String out;

    table.serializeToXML("t", out);

    EXPECT_EQ(String("<t><m_arrKey><item>a</item><item>b</item><item>c</item></m_arrKey>"
                     "<m_arrValue><item>1</item><item>2</item><item>3</item></m_arrValue></t>"),
              out);
}

TEST(HashTableFromText, ReplacesTheContentByWhatWasWritten)
{
    Table written;
    written.insert("a", 1);
    written.insert("b", 2);
    String text;
    written.doSerialization("table", text);
    Table read;
    read.insert("old", 9);

    read.deserialize(text);

    EXPECT_EQ(1u, *read.lookup("a"));
    EXPECT_EQ(2u, *read.lookup("b"));
    EXPECT_FALSE(read.contains("old"));
}

TEST(HashTableFromText, KeepsBothEntriesOfARepeatedKeyAndFindsOneOfThem)
{
    Table table;

    table.deserialize("<t><m_arrKey><item>a</item><item>a</item></m_arrKey>"
                      "<m_arrValue><item>1</item><item>2</item></m_arrValue></t>");

    String out;
    table.serializeToXML("t", out);
    EXPECT_EQ(String("<t><m_arrKey><item>a</item><item>a</item></m_arrKey>"
                     "<m_arrValue><item>1</item><item>2</item></m_arrValue></t>"),
              out);
    ASSERT_NE(nullptr, table.lookup("a"));
    EXPECT_EQ(1u, *table.lookup("a"));
}

TEST(HashTableFromText, KeepsTheContentWhenTheArraysCannotBeRead)
{
    Table table;
    table.insert("a", 1);

    EXPECT_THROW(table.deserialize("<t><m_arrKey></m_arrKey></t>"), qor::SerializationFailed);

    EXPECT_TRUE(table.contains("a"));
}

TEST(HashTableFromText, KeepsTheContentWhenThereIsTextInPlaceOfItems)
{
    Table table;
    table.insert("a", 1);

    EXPECT_THROW(table.deserialize("<t><m_arrKey>b</m_arrKey><m_arrValue/></t>"), qor::SerializationFailed);
    EXPECT_THROW(table.deserialize("<t><m_arrKey/><m_arrValue>2</m_arrValue></t>"), qor::SerializationFailed);

    EXPECT_EQ(1u, *table.lookup("a"));
}

TEST(HashTableFromText, IgnoresSurplusValues)
{
    Table table;

    table.deserialize("<t><m_arrKey><item>a</item></m_arrKey>"
                      "<m_arrValue><item>1</item><item>2</item></m_arrValue></t>");

    String out;
    table.serializeToXML("t", out);
    EXPECT_EQ(String("<t><m_arrKey><item>a</item></m_arrKey><m_arrValue><item>1</item></m_arrValue></t>"), out);
}

TEST(HashTableFromText, WithFewerValuesThanKeysThrowsIndexOutOfBounds)
{
    Table table;

    EXPECT_THROW(table.deserialize("<t><m_arrKey><item>a</item></m_arrKey><m_arrValue/></t>"), qor::IndexOutOfBounds);
}

TEST(HashTableClassName, HoldsTheCutNamesOfItsTwoArrays)
{
    Table table;

    EXPECT_EQ(String("H(String,Uint32)"), table.objectClassName());
    EXPECT_EQ(&table.objectClassName(), &Table().objectClassName());
}

TEST(HashTableClassName, HoldsNamesShorterThanFourUnitsWhole)
{
    HashTable<Coin, Coin, qor::EqualFunc<Coin>, CoinHash> table;

    EXPECT_EQ(String("H(AC,AC)"), table.objectClassName());
}

TEST(HashTableClassName, DropsTheFirstTwoUnitsAndTheLastOneOfNamesOfFourUnitsOrMore)
{
    EXPECT_EQ(String(""), qor::cutClassName(""));
    EXPECT_EQ(String("A()"), qor::cutClassName("A()"));
    EXPECT_EQ(String("x"), qor::cutClassName("A(x)"));
    EXPECT_EQ(String("rayOfOther"), qor::cutClassName("ArrayOfOthers"));
}

TEST(HashFuncOfTexts, GivesEqualTextsEqualNumbers)
{
    const String text("{1}.HDAUDIO\\FUNC_01&VEN_10EC");
    String built("{1}.HDAUDIO");
    built.append("\\FUNC_01&VEN_10EC");

    EXPECT_EQ(qor::HashFunc<String>::hash(text), qor::HashFunc<String>::hash(built));
    EXPECT_EQ(qor::HashFunc<String>::hash(String()), qor::HashFunc<String>::hash(String("")));
}

TEST(HashFuncOfTexts, SpreadsTextsThatDifferInOneUnitAnywhere)
{
    const std::string plain = "{1}.USB\\VID_0000&PID_0000";
    std::set<unsigned int> hashes;
    std::set<unsigned int> chains;
    for (std::size_t place = 0; place < plain.size(); ++place)
    {
        for (char unit = 'a'; unit <= 'z'; ++unit)
        {
            std::string text = plain;
            text[place] = unit;
            const unsigned int hash = qor::HashFunc<String>::hash(text.c_str());
            hashes.insert(hash);
            chains.insert(hash % 1024);
        }
    }

    EXPECT_EQ(plain.size() * 26, hashes.size());
    EXPECT_LE(400u, chains.size()); // of 650 throws into 1024 chains, about 481 different ones are hit
}
}
