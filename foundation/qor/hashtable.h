#pragma once

#include "qor/array.h"
#include "qor/export.h"
#include "qor/serializable.h"

#include <cstddef>
#include <memory>
#include <new>
#include <vector>

namespace qor
{
/// One entry of a table, linked into the chain of its hash.
class QOR_API _BucketBase
{
public:
    _BucketBase() noexcept : next(nullptr) {}
    virtual ~_BucketBase() noexcept(false); // keys and values may let an exception pass, see qor/resource.h
    _BucketBase(const _BucketBase&) = delete;
    _BucketBase& operator=(const _BucketBase&) = delete;

    /// Whether the entry's key equals the one at @p key, which has the entry's key type.
    virtual bool matches(const void* key) const = 0;

    /// A new entry with copies of key and value, owned by the caller; null if memory is exhausted.
    virtual _BucketBase* clone() const = 0;

    _BucketBase* next;
};

template<class K, class V, class Eq>
class _Bucket final : public _BucketBase
{
public:
    _Bucket(const K& entryKey, const V& entryValue) : key(entryKey), value(entryValue) {}

    bool matches(const void* other) const override { return Eq::equal(key, *static_cast<const K*>(other)); }
    _BucketBase* clone() const override { return new (std::nothrow) _Bucket(key, value); }

    K key;
    V value;
};

/// Chains of buckets behind an array of heads. Owns the buckets given to it; a null bucket is not stored.
///
/// The number of heads grows with the number of buckets, so that chains stay short; with it the order of the chains
/// changes. Exhausted memory raises std::bad_alloc, with the bucket still the caller's and the table as it was. An
/// exception out of a bucket's destructor passes through; the buckets behind it are then lost.
class QOR_API _HashTableRep
{
public:
    /// An empty table; @p bucketCount 0 counts as 1.
    explicit _HashTableRep(unsigned int bucketCount);
    _HashTableRep(const _HashTableRep& other);
    _HashTableRep& operator=(const _HashTableRep& other);
    ~_HashTableRep() noexcept(false);

    /// Deletes all buckets.
    void clear();

    /// The first bucket of the chain of @p hash that matches @p key, or null.
    _BucketBase* lookup(unsigned int hash, const void* key);
    const _BucketBase* lookup(unsigned int hash, const void* key) const;

    /// Stores @p bucket unless one with that key exists, which leaves @p bucket with the caller. @return whether it is
    /// stored
    bool insert(unsigned int hash, _BucketBase* bucket, const void* key);

    /// Stores @p bucket at the end of its chain without looking for its key.
    void insertWithoutCheck(unsigned int hash, _BucketBase* bucket, const void* key);

    /// The chain heads, from heads() up to, not including, heads() + length().
    _BucketBase** heads() noexcept { return m_heads.data(); }
    unsigned int length() const noexcept { return static_cast<unsigned int>(m_heads.size()); }

private:
    struct Entry
    {
        unsigned int hash;
        _BucketBase* bucket;
    };

    void link(const Entry& entry);
    void grow();

    std::vector<_BucketBase*> m_heads;
    std::vector<Entry> m_entries; // in order of arrival, for a larger array of heads
};

/// Walks all buckets, along each chain and from head to head.
class QOR_API _HashTableIteratorBase
{
public:
    _HashTableIteratorBase(_BucketBase** first, _BucketBase** last);

    /// The bucket it stands at, null behind the last one.
    _BucketBase* current() const noexcept { return m_current; }

    _HashTableIteratorBase& operator++();

private:
    void skipEmptyHeads();

    _BucketBase** m_head;
    _BucketBase** m_last;
    _BucketBase* m_current;
};

/// Equality of keys: the exact `operator==`, so that texts differing in case are two keys.
template<class T>
struct EqualFunc
{
    static bool equal(const T& left, const T& right) { return left == right; }
};

template<class T>
struct HashFunc;

template<>
struct HashFunc<String>
{
    /// Equal texts give equal numbers.
    QOR_API static unsigned int hash(const String& text);
};

/// A class name of at least 4 units without its first two and its last one, which mark where a name starts and ends; a
/// shorter name unchanged.
QOR_API String cutClassName(const String& name);

/// The class name of a table: @p start, the cut names of its arrays of keys and of values with a comma between, ")".
QOR_API String tableClassName(const char* start, const String& keys, const String& values);

/// Values found by key, in no useful order. No operation locks.
template<class K, class V, class Eq = EqualFunc<K>, class Hash = HashFunc<K>>
class HashTable : public Serializable
{
public:
    explicit HashTable(unsigned int bucketCount = 32) : m_table(bucketCount) {}

    bool contains(const K& key) const { return lookup(key) != nullptr; }

    /// The value of @p key in its place, or null; valid until the table changes.
    V* lookup(const K& key)
    {
        Bucket* const bucket = static_cast<Bucket*>(m_table.lookup(Hash::hash(key), &key));
        return bucket == nullptr ? nullptr : &bucket->value;
    }

    const V* lookup(const K& key) const
    {
        const Bucket* const bucket = static_cast<const Bucket*>(m_table.lookup(Hash::hash(key), &key));
        return bucket == nullptr ? nullptr : &bucket->value;
    }

    /// Stores copies of key and value. @return false, with nothing changed, if the key is there already
    bool insert(const K& key, const V& value)
    {
        const unsigned int hash = Hash::hash(key);
        std::unique_ptr<Bucket> bucket(new (std::nothrow) Bucket(key, value));
        const bool stored = m_table.insert(hash, bucket.get(), &key);
        if (stored)
            static_cast<void>(bucket.release()); // the table's from here on
        return stored;
    }

    /// Stores copies of key and value, whether the key is there already or not.
    void insertWithoutCheck(const K& key, const V& value)
    {
        const unsigned int hash = Hash::hash(key);
        std::unique_ptr<Bucket> bucket(new (std::nothrow) Bucket(key, value));
        m_table.insertWithoutCheck(hash, bucket.get(), &key);
        static_cast<void>(bucket.release()); // the table's from here on
    }

    void clear() { m_table.clear(); }

    /// Writes keys and values as two arrays in the order of the chains.
    void serializeToXML(const String& name, String& out) override;

    /// Replaces the content; a key that is repeated in the text stays repeated.
    void deserializeFromElement(const XmlElement* element) override;

    /// tableClassName() with "H(". Made in the first call, by one thread; required behaviour: made again if the string
    /// is empty. If memory fails, nothing stays behind and the next call tries again.
    /// @exception std::bad_alloc without memory for the name
    const String& objectClassName() override;

private:
    using Bucket = _Bucket<K, V, Eq>;

    _HashTableRep m_table;
};

template<class K, class V, class Eq, class Hash>
void HashTable<K, V, Eq, Hash>::serializeToXML(const String& name, String& out)
{
    Array<K> keys;
    Array<V> values;
    for (_HashTableIteratorBase i(m_table.heads(), m_table.heads() + m_table.length()); i.current() != nullptr; ++i)
    {
        const Bucket* const bucket = static_cast<const Bucket*>(i.current());
        keys.append(bucket->key);
        values.append(bucket->value);
    }
    serializeBegin(name);
    serialize("m_arrKey", keys);
    serialize("m_arrValue", values);
    serializeEnd();
    getSerializedXML(out);
}

template<class K, class V, class Eq, class Hash>
void HashTable<K, V, Eq, Hash>::deserializeFromElement(const XmlElement* element)
{
    Array<K> keys;
    Array<V> values;
    deserializeBegin(element);
    Serializable::deserialize("m_arrKey", keys);
    Serializable::deserialize("m_arrValue", values);
    m_table.clear();
    for (unsigned int i = 0; i < keys.size(); ++i)
        insertWithoutCheck(keys[i], values[i]);
    deserializeEnd();
}

template<class K, class V, class Eq, class Hash>
const String& HashTable<K, V, Eq, Hash>::objectClassName()
{
    static String& name = *new String(tableClassName("H(", Array<K>::className(), Array<V>::className()));
    if (name.size() == 0)
        name = tableClassName("H(", Array<K>::className(), Array<V>::className());
    return name;
}
} // namespace qor
