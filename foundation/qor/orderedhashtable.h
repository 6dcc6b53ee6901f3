#pragma once

#include "qor/array.h"
#include "qor/exception.h"
#include "qor/hashtable.h"
#include "qor/serializable.h"

namespace qor
{
/// Table of values by key that keeps the order in which the keys were inserted. No operation locks.
///
/// Entry i of keys() belongs to entry i of values(), and the index maps a key to its position.
template<class K, class V, class Eq = EqualFunc<K>, class Hash = HashFunc<K>>
class OrderedHashTable : public Serializable
{
public:
    explicit OrderedHashTable(unsigned int bucketCount = 32) : m_index(bucketCount) {}

    bool contains(const K& key) const { return m_index.contains(key); }

    /// The stored value of @p key, which the caller may change; valid until the table changes.
    /// @exception HashKeyMissing with the key, if the table does not contain it
    /// @exception IndexOutOfBounds if index and values disagree
    V& operator[](const K& key) { return m_arrayValues[position(key)]; }
    const V& operator[](const K& key) const { return m_arrayValues[position(key)]; }

    /// Stores copies of @p key and @p value at the end. The caller has checked that the key is not in the table.
    /// Without memory for the entry of the index, key and value are stored nevertheless, but the table does not contain
    /// the key: only keys() and values() show them.
    /// @exception NullPointer if an array cannot grow. The key is in the index then, without a value: access by it
    /// throws IndexOutOfBounds, and the table is of no further use
    void insert(const K& key, const V& value)
    {
        m_index.insert(key, m_arrayKeys.size());
        m_arrayKeys.append(key);
        m_arrayValues.append(value);
    }

    /// Keys and values in the order of insertion.
    const Array<K>& keys() const { return m_arrayKeys; }
    Array<V>& values() { return m_arrayValues; }
    const Array<V>& values() const { return m_arrayValues; }

    unsigned int size() const { return m_arrayKeys.size(); }

    /// Writes keys and values as two arrays, under the names "m_arrayKeys" and "m_arrayValues".
    /// @exception SerializationFailed if keys or values are neither strings nor unsigned numbers
    void serializeToXML(const String& name, String& out) override
    {
        serializeBegin(name);
        serialize("m_arrayKeys", m_arrayKeys);
        serialize("m_arrayValues", m_arrayValues);
        serializeEnd();
        getSerializedXML(out);
    }

    /// Replaces the content. Required behaviour: the old content is cleared first, even if reading fails. What needs no
    /// memory comes first, so that the table is empty, and can be used, when an array gets no new block.
    void deserializeFromElement(const XmlElement* element) override
    {
        m_index.clear();
        m_arrayKeys.release();
        m_arrayValues.release();
        m_arrayKeys.clear();
        m_arrayValues.clear();
        deserializeBegin(element);
        Serializable::deserialize("m_arrayKeys", m_arrayKeys);
        Serializable::deserialize("m_arrayValues", m_arrayValues);
        for (unsigned int i = 0; i < m_arrayKeys.size(); ++i)
            m_index.insertWithoutCheck(m_arrayKeys[i], i);
        deserializeEnd();
    }

    /// tableClassName() with "OH(". Made in the first call, by one thread; required behaviour: made again if the string
    /// is empty. The cut shortens "ArrayOfOthers" as well: the names of most tables contain "rayOfOther", and code that
    /// reads the names relies on it.
    /// @exception std::bad_alloc without memory for the name; the next call tries again
    const String& objectClassName() override
    {
        static String& name = *new String(tableClassName("OH(", Array<K>::className(), Array<V>::className()));
        if (name.size() == 0) // Required behaviour: an empty name is made again.
            name = tableClassName("OH(", Array<K>::className(), Array<V>::className());
        return name;
    }

private:
    unsigned int position(const K& key) const
    {
        const unsigned int* const found = m_index.lookup(key);
        if (found == nullptr)
            throw HashKeyMissing(key);
        return *found;
    }

    HashTable<K, unsigned int, Eq, Hash> m_index;
    Array<K> m_arrayKeys;
    Array<V> m_arrayValues;
};
}
