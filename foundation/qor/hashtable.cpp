#include "qor/hashtable.h"

#include "qor/unitword.h"

namespace qor
{
namespace
{
/// hash % count, without a division for a power of two: tables of 32 heads, as most are, stay at such numbers.
std::size_t placeOf(unsigned int hash, std::size_t count)
{
    return (count & (count - 1)) == 0 ? hash & (count - 1) : hash % count;
}
}

_BucketBase::~_BucketBase() noexcept(false) = default;

_HashTableRep::_HashTableRep(unsigned int bucketCount) : m_heads(bucketCount == 0 ? 1 : bucketCount, nullptr) {}

// Built as an empty table first, so that the destructor cleans up if a copy throws.
_HashTableRep::_HashTableRep(const _HashTableRep& other) : _HashTableRep(other.length())
{
    for (const Entry& entry : other.m_entries)
    {
        std::unique_ptr<_BucketBase> copy(entry.bucket->clone());
        insertWithoutCheck(entry.hash, copy.get(), nullptr);
        static_cast<void>(copy.release());
    }
}

_HashTableRep& _HashTableRep::operator=(const _HashTableRep& other)
{
    if (this == &other)
        return *this;
    _HashTableRep copy(other);
    m_heads.swap(copy.m_heads);
    m_entries.swap(copy.m_entries);
    return *this;
}

_HashTableRep::~_HashTableRep() noexcept(false)
{
    clear();
}

void _HashTableRep::clear()
{
    std::vector<Entry> entries;
    entries.swap(m_entries);
    m_heads.assign(m_heads.size(), nullptr);
    for (const Entry& entry : entries)
        delete entry.bucket;
}

_BucketBase* _HashTableRep::lookup(unsigned int hash, const void* key)
{
    _BucketBase* bucket = m_heads[placeOf(hash, m_heads.size())];
    while (bucket != nullptr && !bucket->matches(key))
        bucket = bucket->next;
    return bucket;
}

const _BucketBase* _HashTableRep::lookup(unsigned int hash, const void* key) const
{
    return const_cast<_HashTableRep*>(this)->lookup(hash, key); // the search changes nothing
}

bool _HashTableRep::insert(unsigned int hash, _BucketBase* bucket, const void* key)
{
    if (bucket == nullptr || lookup(hash, key) != nullptr)
        return false;
    insertWithoutCheck(hash, bucket, key);
    return true;
}

void _HashTableRep::insertWithoutCheck(unsigned int hash, _BucketBase* bucket, const void*)
{
    if (bucket == nullptr)
        return;
    if (m_entries.size() == m_heads.size())
        grow();
    m_entries.push_back({hash, bucket}); // the last step that can throw: a bucket is both linked and listed, or neither
    link(m_entries.back());
}

/// Adds to the end of the chain, so that lookup() finds the first of two equal keys.
void _HashTableRep::link(const Entry& entry)
{
    _BucketBase** place = &m_heads[placeOf(entry.hash, m_heads.size())];
    while (*place != nullptr)
        place = &(*place)->next;
    *place = entry.bucket;
}

void _HashTableRep::grow()
{
    std::vector<_BucketBase*> heads(2 * m_heads.size(), nullptr);
    m_heads.swap(heads);
    for (const Entry& entry : m_entries)
        entry.bucket->next = nullptr;
    for (const Entry& entry : m_entries)
        link(entry);
}

_HashTableIteratorBase::_HashTableIteratorBase(_BucketBase** first, _BucketBase** last)
    : m_head(first),
      m_last(last),
      m_current(nullptr)
{
    skipEmptyHeads();
}

_HashTableIteratorBase& _HashTableIteratorBase::operator++()
{
    m_current = m_current->next;
    if (m_current == nullptr)
    {
        ++m_head;
        skipEmptyHeads();
    }
    return *this;
}

void _HashTableIteratorBase::skipEmptyHeads()
{
    while (m_head != m_last && *m_head == nullptr)
        ++m_head;
    m_current = m_head == m_last ? nullptr : *m_head;
}

unsigned int HashFunc<String>::hash(const String& text)
{
    return hashOfUnits(text.getUCS2Buffer(), text.size(), 0);
}

String cutClassName(const String& name)
{
    return name.size() < 4 ? name : name.subString(2, name.size() - 3);
}

String tableClassName(const char* start, const String& keys, const String& values)
{
    String name(start);
    return name.append(cutClassName(keys)).append(",").append(cutClassName(values)).append(")");
}
}
