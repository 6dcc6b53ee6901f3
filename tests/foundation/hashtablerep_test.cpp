#include "qor/hashtable.h"

#include "tests/foundation/supportvirtualslot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
/// A bucket that counts its living objects.
class NumberBucket : public qor::_BucketBase
{
public:
    explicit NumberBucket(int key, int value = 0) : m_key(key), m_value(value) { ++alive; }
    ~NumberBucket() override { --alive; }

    bool matches(const void* key) const override { return *static_cast<const int*>(key) == m_key; }
    qor::_BucketBase* clone() const override { return clonesFail ? nullptr : new NumberBucket(m_key, m_value); }

    int value() const { return m_value; }

    static inline int alive = 0;
    static inline bool clonesFail = false;

private:
    int m_key;
    int m_value;
};

class HashTableRep : public testing::Test
{
protected:
    void SetUp() override
    {
        NumberBucket::alive = 0;
        NumberBucket::clonesFail = false;
    }

    /// Values in the order of the chains.
    static std::vector<int> walk(qor::_HashTableRep& table)
    {
        std::vector<int> found;
        for (qor::_HashTableIteratorBase i(table.heads(), table.heads() + table.length()); i.current() != nullptr; ++i)
            found.push_back(static_cast<NumberBucket*>(i.current())->value());
        return found;
    }

    static int valueOf(qor::_BucketBase* bucket)
    {
        return bucket == nullptr ? -1 : static_cast<NumberBucket*>(bucket)->value();
    }

    static void add(qor::_HashTableRep& table, unsigned int hash, int key, int value)
    {
        table.insertWithoutCheck(hash, new NumberBucket(key, value), &key);
    }
};

TEST_F(HashTableRep, StartsEmptyWithTheBucketsAskedFor)
{
    qor::_HashTableRep table(32);

    EXPECT_EQ(32u, table.length());
    EXPECT_THAT(walk(table), IsEmpty());
}

TEST_F(HashTableRep, CountsZeroBucketsAsOne)
{
    qor::_HashTableRep table(0);
    add(table, 99, 1, 10);

    const int key = 1;
    EXPECT_EQ(10, valueOf(table.lookup(99, &key)));
}

TEST_F(HashTableRep, FindsTheBucketWhoseKeyMatchesInTheChainOfTheHash)
{
    qor::_HashTableRep table(4);
    add(table, 1, 100, 10);
    add(table, 1, 200, 20);
    add(table, 5, 300, 30);

    const int second = 200;
    const int third = 300;
    const int absent = 400;
    EXPECT_EQ(20, valueOf(table.lookup(1, &second)));
    EXPECT_EQ(30, valueOf(table.lookup(5, &third)));
    EXPECT_EQ(nullptr, table.lookup(1, &absent));
    EXPECT_EQ(nullptr, table.lookup(2, &second));
}

TEST_F(HashTableRep, AnswersAConstantTableTheSame)
{
    qor::_HashTableRep table(4);
    add(table, 1, 100, 10);
    const qor::_HashTableRep& constant = table;

    const int key = 100;
    const int absent = 200;
    EXPECT_EQ(table.lookup(1, &key), constant.lookup(1, &key));
    EXPECT_EQ(nullptr, constant.lookup(1, &absent));
}

TEST_F(HashTableRep, StoresABucketWhoseKeyIsNew)
{
    qor::_HashTableRep table(4);
    const int key = 100;

    EXPECT_TRUE(table.insert(1, new NumberBucket(100, 10), &key));

    EXPECT_EQ(10, valueOf(table.lookup(1, &key)));
}

TEST_F(HashTableRep, RefusesABucketWhoseKeyIsThereAndLeavesItWithTheCaller)
{
    qor::_HashTableRep table(4);
    add(table, 1, 100, 10);
    const int key = 100;
    NumberBucket again(100, 20);

    EXPECT_FALSE(table.insert(1, &again, &key));

    EXPECT_THAT(walk(table), ElementsAre(10));
}

TEST_F(HashTableRep, StoresARepeatedKeyWithoutCheckAndFindsTheFirst)
{
    qor::_HashTableRep table(4);
    add(table, 1, 100, 10);
    add(table, 1, 100, 20);

    const int key = 100;
    EXPECT_THAT(walk(table), ElementsAre(10, 20));
    EXPECT_EQ(10, valueOf(table.lookup(1, &key)));
}

TEST_F(HashTableRep, PassesOverANullBucket)
{
    qor::_HashTableRep table(4);
    const int key = 100;

    EXPECT_FALSE(table.insert(1, nullptr, &key));
    table.insertWithoutCheck(1, nullptr, &key);

    EXPECT_THAT(walk(table), IsEmpty());
}

TEST_F(HashTableRep, DeletesItsBucketsThroughTheirVirtualDestructor)
{
    {
        qor::_HashTableRep table(4);
        for (int key = 0; key < 10; ++key)
            add(table, static_cast<unsigned int>(key), key, key);
        EXPECT_EQ(10, NumberBucket::alive);
    }

    EXPECT_EQ(0, NumberBucket::alive);
}

TEST_F(HashTableRep, IsEmptyAndUsableOnceCleared)
{
    qor::_HashTableRep table(4);
    add(table, 1, 100, 10);

    table.clear();

    EXPECT_EQ(0, NumberBucket::alive);
    EXPECT_THAT(walk(table), IsEmpty());
    add(table, 1, 100, 20);
    EXPECT_THAT(walk(table), ElementsAre(20));
}

TEST_F(HashTableRep, FindsEveryBucketEvenIfThereAreManyMoreThanHeadsAtTheStart)
{
    qor::_HashTableRep table(1);
    for (int key = 0; key < 1000; ++key)
        add(table, static_cast<unsigned int>(key) * 7919u, key, key);

    for (int key = 0; key < 1000; ++key)
        ASSERT_EQ(key, valueOf(table.lookup(static_cast<unsigned int>(key) * 7919u, &key)));
    EXPECT_EQ(1000u, walk(table).size());
    EXPECT_LE(1000u, table.length());
}

TEST_F(HashTableRep, KeepsRepeatedKeysInTheirOrderWhenItGrows)
{
    qor::_HashTableRep table(1);
    add(table, 3, 100, 1);
    add(table, 3, 100, 2);
    add(table, 3, 100, 3);

    const int key = 100;
    EXPECT_THAT(walk(table), ElementsAre(1, 2, 3));
    EXPECT_EQ(1, valueOf(table.lookup(3, &key)));
}

TEST_F(HashTableRep, IsCopiedWithClonesOfItsBuckets)
{
    qor::_HashTableRep table(2);
    add(table, 0, 100, 10);
    add(table, 1, 200, 20);

    qor::_HashTableRep copy(table);
    table.clear();

    EXPECT_EQ(2, NumberBucket::alive);
    EXPECT_THAT(walk(copy), ElementsAre(10, 20));
}

TEST_F(HashTableRep, IsAssignedClonesOfTheOtherBuckets)
{
    qor::_HashTableRep table(2);
    add(table, 0, 100, 10);
    qor::_HashTableRep target(8);
    add(target, 0, 300, 30);
    const qor::_HashTableRep& same = target;

    target = table;
    target = same;

    EXPECT_EQ(2, NumberBucket::alive);
    EXPECT_THAT(walk(target), ElementsAre(10));
    EXPECT_THAT(walk(table), ElementsAre(10));
}

TEST_F(HashTableRep, IsCopiedWithoutTheBucketsThatHaveNoClone)
{
    qor::_HashTableRep table(2);
    add(table, 0, 100, 10);
    NumberBucket::clonesFail = true;

    qor::_HashTableRep copy(table);

    EXPECT_THAT(walk(copy), IsEmpty());
}

TEST_F(HashTableRep, IsWalkedAlongEachChainAndFromHeadToHead)
{
    qor::_HashTableRep table(8);
    add(table, 6, 100, 60);
    add(table, 2, 200, 20);
    add(table, 2, 300, 21);
    add(table, 10, 400, 22); // the same chain as 2

    EXPECT_THAT(walk(table), ElementsAre(20, 21, 22, 60));
}

TEST_F(HashTableRep, CanBeWalkedInPart)
{
    qor::_HashTableRep table(8);
    add(table, 2, 200, 20);
    add(table, 6, 600, 60);

    const qor::_HashTableIteratorBase i(table.heads() + 3, table.heads() + 6);

    EXPECT_EQ(nullptr, i.current()); // the head after the last one is not read
}

TEST(BucketBase, StartsWithoutAFollower)
{
    const NumberBucket bucket(1);

    EXPECT_EQ(nullptr, bucket.next);
}

#if defined(SUPPORT_HAS_VIRTUAL_SLOTS)
TEST(BucketBase, HasItsVirtualOperationsInTheirFixedOrder)
{
    EXPECT_EQ(2u, support::virtualSlot(&qor::_BucketBase::matches)); // after the two slots of the destructor
    EXPECT_EQ(3u, support::virtualSlot(&qor::_BucketBase::clone));
}
#endif
}
