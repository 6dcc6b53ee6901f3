/// The operations of qor::Array; included by "qor/array.h" only.
#pragma once

#include "qor/array.h"

namespace qor
{
template<class T>
class Array<T>::BlockGuard
{
public:
    explicit BlockGuard(Block* block) : m_block(block) {}
    BlockGuard(const BlockGuard&) = delete;
    BlockGuard& operator=(const BlockGuard&) = delete;

    ~BlockGuard() { destroyBlock(m_block); }

    Block* block() const { return m_block; }

    Block* release()
    {
        Block* const block = m_block;
        m_block = nullptr;
        return block;
    }

private:
    Block* m_block;
};

template<class T>
class Array<T>::ElementGuard
{
public:
    explicit ElementGuard(T* element) : m_element(element) {}
    ElementGuard(const ElementGuard&) = delete;
    ElementGuard& operator=(const ElementGuard&) = delete;

    ~ElementGuard()
    {
        if (m_element != nullptr)
            m_element->~T();
    }

    T& release()
    {
        T* const element = m_element;
        m_element = nullptr;
        return *element;
    }

private:
    T* m_element;
};

template<class T>
class Array<T>::StoringGuard
{
public:
    StoringGuard(Block*& place, BlockGuard& grown) : m_place(place), m_grown(grown) {}
    StoringGuard(const StoringGuard&) = delete;
    StoringGuard& operator=(const StoringGuard&) = delete;

    ~StoringGuard() { m_place = m_grown.release(); }

private:
    Block*& m_place;
    BlockGuard& m_grown;
};

template<class T>
class Array<T>::GapGuard
{
public:
    GapGuard(Block* block, unsigned int index) : m_block(block), m_index(index) {}
    GapGuard(const GapGuard&) = delete;
    GapGuard& operator=(const GapGuard&) = delete;

    /// Byte by byte: the elements stay the same objects, so no copy is made and no destructor runs.
    ~GapGuard()
    {
        T* const gap = places(m_block) + m_index;
        const std::size_t later = m_block->count - m_index - 1;
        std::memmove(static_cast<void*>(gap), static_cast<const void*>(gap + 1), later * sizeof(T));
        --m_block->count;
    }

private:
    Block* m_block;
    unsigned int m_index;
};

template<class T>
class Array<T>::RestGuard
{
public:
    explicit RestGuard(Block* block) : m_block(block), m_next(0) {}
    RestGuard(const RestGuard&) = delete;
    RestGuard& operator=(const RestGuard&) = delete;

    ~RestGuard()
    {
        destroyElements();
        ::operator delete(m_block);
    }

    void destroyElements()
    {
        while (m_next < m_block->count)
            places(m_block)[m_next++].~T();
    }

private:
    Block* m_block;
    unsigned int m_next;
};

template<class T>
Array<T>& Array<T>::operator=(const Array& other)
{
    if (m_block == other.m_block)
        return *this;
    destroyBlock();
    if (other.m_block != nullptr)
        m_block = copyOf(other.m_block);
    return *this;
}

template<class T>
inline void Array<T>::append(const T& value)
{
    const unsigned int count = size();
    if (count == capacity())
    {
        appendGrown(value);
        return;
    }
    ::new (static_cast<void*>(places(m_block) + count)) T(value);
    m_block->count = count + 1;
}

template<class T>
template<class... Arguments>
inline T& Array<T>::emplace(Arguments&&... arguments)
{
    const unsigned int count = size();
    if (count == capacity())
        return emplaceGrown(std::forward<Arguments>(arguments)...);
    T* const added = ::new (static_cast<void*>(places(m_block) + count)) T(std::forward<Arguments>(arguments)...);
    m_block->count = count + 1;
    return *added;
}

/// append() to a full block.
template<class T>
void Array<T>::appendGrown(const T& value)
{
    const unsigned int count = size();
    const unsigned int own = ownIndex(value);
    ensureCapacity(count + 1);
    const T& source = own < count ? places(m_block)[own] : value; // the element in the new block
    ::new (static_cast<void*>(places(m_block) + count)) T(source);
    m_block->count = count + 1;
}

/// emplace() to a full block. The old block stays until the new element is built, as the arguments may refer to it.
template<class T>
template<class... Arguments>
T& Array<T>::emplaceGrown(Arguments&&... arguments)
{
    const unsigned int count = size();
    BlockGuard grown(allocate(count + 1, count + 1));
    void* const place = places(grown.block()) + count;
    ElementGuard added(::new (place) T(std::forward<Arguments>(arguments)...));
    if (m_block != nullptr)
        copyGrownElements(m_block, grown.block());
    grown.block()->count = count + 1;
    T& element = added.release();
    const StoringGuard storing(m_block, grown);
    destroyBlock(m_block);
    return element;
}

/// The index of the element that @p value is; size() or more if it is none. The addresses are compared as numbers, as
/// pointers into different blocks have no order.
template<class T>
unsigned int Array<T>::ownIndex(const T& value) const
{
    const std::uintptr_t address = reinterpret_cast<std::uintptr_t>(&reinterpret_cast<const volatile char&>(value));
    const std::uintptr_t first = reinterpret_cast<std::uintptr_t>(m_block == nullptr ? nullptr : places(m_block));
    const std::uintptr_t offset = address - first; // a large number for an address before the block
    return offset < std::uintptr_t{size()} * sizeof(T) ? static_cast<unsigned int>(offset / sizeof(T)) : size();
}

template<class T>
void Array<T>::clear()
{
    destroyBlock();
    m_block = allocate(smallestCapacity, 0);
}

template<class T>
bool Array<T>::contains(const T& value) const
{
    for (unsigned int i = 0; i < size(); ++i)
    {
        if (*element(i) == value)
            return true;
    }
    return false;
}

template<class T>
void Array<T>::ensureCapacity(unsigned int required)
{
    if (m_block != nullptr && m_block->capacity >= required)
        return;
    BlockGuard grown(allocate(required, required));
    if (m_block != nullptr)
        copyGrownElements(m_block, grown.block());
    const StoringGuard storing(m_block, grown);
    destroyBlock(m_block);
}

template<class T>
void Array<T>::remove(unsigned int index)
{
    if (index > size())
        IndexOutOfBounds::throwOfArray(size(), index);
    if (index == size())
        return;
    const GapGuard gap(m_block, index);
    element(index)->~T();
}

template<class T>
const String& Array<T>::className()
{
    // Never destroyed: other static objects may ask for it when the process ends.
    static const String& name = *new String("ArrayOfOthers");
    return name;
}

template<class T>
void Array<T>::deserializeFromElement(const XmlElement*)
{
    std::printf("Serialization isn't support for this class!!!\n");
}

template<class T>
void Array<T>::serializeToXML(const String& name, String&)
{
    throw SerializationFailed("Serialization is not supported for: " + name);
}

template<class T>
unsigned int Array<T>::capacityFor(unsigned int required)
{
    unsigned int capacity = smallestCapacity;
    while (capacity != 0 && capacity < required)
        capacity *= 2;
    return capacity == 0 ? required : capacity;
}

/// A block with room for @p required elements, still without elements. @p reported is the number in the exception.
template<class T>
typename Array<T>::Block* Array<T>::allocate(unsigned int required, unsigned int reported)
{
    return allocatePlaces(capacityFor(required), reported);
}

/// The same for a capacity that the rule gives.
template<class T>
typename Array<T>::Block* Array<T>::allocatePlaces(unsigned int capacity, unsigned int reported)
{
    static_assert(sizeof(Block) == 8, "elements follow two header words directly");
    static_assert(alignof(T) <= sizeof(Block), "elements start at offset 8 of the block");
    const unsigned long long bytes = sizeof(Block) + static_cast<unsigned long long>(capacity) * sizeof(T);
    void* memory = nullptr;
    if (bytes < (1ULL << 32)) // the limit holds on 64-bit hosts too
        memory = ::operator new(static_cast<std::size_t>(bytes), std::nothrow);
    if (memory == nullptr)
        NullPointer::throwOfArray(reported);
    return ::new (memory) Block{0, capacity};
}

/// Required behaviour: the capacity of the source decides about the size of the copy, not its count.
template<class T>
typename Array<T>::Block* Array<T>::copyOf(const Block* source)
{
    if (source == nullptr)
        return nullptr;
    BlockGuard copy(allocatePlaces(source->capacity, source->capacity));
    copyElements(source, copy.block());
    return copy.release();
}

/// Counts each element as soon as it is made, so that the guard destroys exactly those if a copy throws. Trivially
/// copyable elements are copied in one call; elements whose copying throws nothing are counted at the end.
template<class T>
void Array<T>::copyElements(const Block* source, Block* target)
{
    if constexpr (std::is_trivially_copyable_v<T>)
    {
        std::memcpy(static_cast<void*>(places(target)), static_cast<const void*>(places(source)),
                    source->count * sizeof(T));
        target->count = source->count;
    }
    else if constexpr (std::is_nothrow_copy_constructible_v<T>)
    {
        T* place = places(target);
        const T* const end = places(source) + source->count;
        for (const T* element = places(source); element != end; ++element, ++place)
            ::new (static_cast<void*>(place)) T(*element);
        target->count = source->count;
    }
    else
    {
        while (target->count < source->count)
        {
            ::new (static_cast<void*>(places(target) + target->count)) T(places(source)[target->count]);
            ++target->count;
        }
    }
}

/// As copyElements(), from a block that is destroyed next.
template<class T>
void Array<T>::copyGrownElements(Block* source, Block* target)
{
    if constexpr (GrowthCopy<T>::takes)
    {
        if (GrowthCopy<T>::isPossible(places(source), source->count))
        {
            while (target->count < source->count)
            {
                T& element = places(source)[target->count];
                ::new (static_cast<void*>(places(target) + target->count)) T(GrowthCopy<T>::of(element));
                ++target->count;
            }
            return;
        }
    }
    copyElements(source, target);
}

template<class T>
inline unsigned int Array<T>::checked(unsigned int index) const
{
    if (index >= size())
        IndexOutOfBounds::throwOfArray(size(), index);
    return index;
}

template<class T>
void Array<T>::destroyBlock()
{
    const NullOnScopeExit<Block> noBlockAfterwards(m_block);
    destroyBlock(m_block);
}

template<class T>
void Array<T>::destroyBlock(Block* block)
{
    if (block == nullptr)
        return;
    if constexpr (std::is_nothrow_destructible_v<T>)
    {
        T* const end = places(block) + block->count;
        for (T* element = places(block); element != end; ++element)
            element->~T();
        ::operator delete(block);
    }
    else
    {
        RestGuard rest(block);
        rest.destroyElements(); // outside the guard's destructor, where an exception can reach the caller
    }
}
}
