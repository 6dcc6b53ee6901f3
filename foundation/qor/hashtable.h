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
/// One entry of a table, linked into the chain of its hash number.
class QOR_API _BucketBase
{
public:
    _BucketBase() noexcept : next(nullptr) {}
    virtual ~_BucketBase() noexcept(false); // destructors of keys and values may throw, see qor/resource.h
    _BucketBase(const _BucketBase&) = delete;
    _BucketBase& operator=(const _BucketBase&) = delete;

    /// Whether the entry's key equals the one at @p key, which has the entry's key type.
    virtual bool matches(const void* key) const = 0;

    /// A new entry with copies of key and value, owned by the caller; null without memory.
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

/// Chains of buckets and an array of their heads. Owns the buckets that it stores; a null bucket is not stored.
///
/// The number of heads grows with the number of buckets to keep the chains short; this changes the order of the chains.
/// Without memory an operation throws std::bad_alloc: the table is unchanged then and the caller still owns the bucket.
/// An exception from a bucket's destructor reaches the caller; the remaining buckets are leaked then.
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

    /// Stores @p bucket unless one with that key exists; the caller still owns @p bucket then. @return whether it is
    /// stored
    bool insert(unsigned int hash, _BucketBase* bucket, const void* key);

    /// Stores @p bucket at the end of its chain, even if there is one with that key.
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
    std::vector<Entry> m_entries; // in the order of insertion, to fill a larger array of heads
};

/// Iterates over all buckets, chain by chain in the order of the heads.
class QOR_API _HashTableIteratorBase
{
public:
    _HashTableIteratorBase(_BucketBase** first, _BucketBase** last);

    /// The current bucket, null after the last one.
    _BucketBase* current() const noexcept { return m_current; }

    _HashTableIteratorBase& operator++();

private:
    void skipEmptyHeads();

    _BucketBase** m_head;
    _BucketBase** m_last;
    _BucketBase* m_current;
};

/// Equality of keys by the exact `operator==`: strings that differ in case are two keys.
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
    /// Equal strings give equal numbers.
    QOR_API static unsigned int hash(const String& text);
};

/// A class name of at least 4 units without its first two and its last one, which mark where a name starts and ends; a
/// shorter name unchanged.
QOR_API String cutClassName(const String& name);

/// The class name of a table: @p start, the cut names of its arrays of keys and of values with a comma between, ")".
QOR_API String tableClassName(const char* start, const String& keys, const String& values);

/// Table of values by key, in no useful order. No operation locks. Operations that allocate throw std::bad_alloc.
template<class K, class V, class Eq = EqualFunc<K>, class Hash = HashFunc<K>>
class HashTable : public Serializable
{
public:
    explicit HashTable(unsigned int bucketCount = 32) : m_table(bucketCount) {}

    bool contains(const K& key) const { return lookup(key) != nullptr; }

    /// The stored value of @p key, or null; valid until the table changes.
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

    /// Stores copies of key and value. @return false, with the table unchanged, if it contains the key or if there is
    /// no memory for the entry
    bool insert(const K& key, const V& value)
    {
        const unsigned int hash = Hash::hash(key);
        std::unique_ptr<Bucket> bucket(new (std::nothrow) Bucket(key, value));
        const bool stored = m_table.insert(hash, bucket.get(), &key);
        if (stored)
            static_cast<void>(bucket.release()); // the table's from here on
        return stored;
    }

    /// Stores copies of key and value, even if the table contains the key. Without memory for the entry it stores
    /// nothing.
    void insertWithoutCheck(const K& key, const V& value)
    {
        const unsigned int hash = Hash::hash(key);
        std::unique_ptr<Bucket> bucket(new (std::nothrow) Bucket(key, value));
        m_table.insertWithoutCheck(hash, bucket.get(), &key);
        static_cast<void>(bucket.release()); // the table's from here on
    }

    void clear() { m_table.clear(); }

    /// Writes keys and values as two arrays in the order of the chains, under the names "m_arrKey" and "m_arrValue".
    /// @exception SerializationFailed if keys or values are neither strings nor unsigned numbers
    void serializeToXML(const String& name, String& out) override;

    /// Replaces the content; a repeated key stays repeated, and values without a key are ignored.
    /// @exception SerializationFailed if the arrays cannot be read; the content is unchanged then
    /// @exception IndexOutOfBounds if there are more keys than values; the entries before are stored then
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
    if (name.size() == 0) // Required behaviour: an empty name is made again.
        name = tableClassName("H(", Array<K>::className(), Array<V>::className());
    return name;
}
}
