#pragma once

#include "qor/exception.h"
#include "qor/export.h"
#include "qor/nullonscopeexit.h"
#include "qor/qorvalue.h"
#include "qor/serializable.h"
#include "qor/string.h"

#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <type_traits>

namespace qor
{
/// Growable sequence with value semantics: a copy holds copies of all elements, and keeps the capacity of its source.
///
/// Count, capacity and elements share one block; a new array has a block of 8 places, and growth doubles. Elements are
/// copied at growth and destroyed from the first to the last. An element type must bear being moved in memory byte by
/// byte (remove() does that) and need no more than 8-byte alignment. No operation locks.
///
/// An exception out of an element's destructor passes through once the elements behind it are destroyed and their
/// block is freed; a second one meanwhile ends the process, as it does for an array of the language.
template<class T>
class Array : public Serializable
{
public:
    /// An empty array of capacity 8. @exception NullPointer if its block cannot be had
    Array() : m_block(allocate(smallestCapacity, 0)) {}

    /// Copies each element in order; the capacity is that of @p other.
    Array(const Array& other) : Serializable(other), m_block(copyOf(other.m_block)) {}

    ~Array() noexcept(false) override { destroyBlock(); }

    /// Arrays that hold the same block are left alone. Otherwise the own elements go before the others are copied.
    Array& operator=(const Array& other);

    /// Number of elements.
    unsigned int size() const { return m_block == nullptr ? 0 : m_block->count; }

    /// Number of places in the block.
    unsigned int capacity() const { return m_block == nullptr ? 0 : m_block->capacity; }

    /// @exception IndexOutOfBounds (0, size - 1, index) where the array has no such element
    T& operator[](unsigned int index) { return *element(checked(index)); }
    const T& operator[](unsigned int index) const { return *element(checked(index)); }

    /// Adds a copy of @p value at the end; @p value may be an element of this array.
    /// @exception NullPointer if the array has to grow and cannot; it is unchanged then
    void append(const T& value);
    void append(T& value) { append(static_cast<const T&>(value)); }

    /// Destroys all elements and starts again with a block of capacity 8.
    void clear();

    /// Whether an element equals @p value by its `operator==`.
    bool contains(const T& value) const;

    /// Makes room for @p required elements. @exception NullPointer if that is impossible; the array keeps its block
    /// then
    void ensureCapacity(unsigned int required);

    /// Destroys the element at @p index and moves the later ones down by one place.
    ///
    /// An index equal to the size changes nothing. That bound is one wider than that of operator[], and callers rely on
    /// it. An exception out of the element's destructor passes through when the later ones have moved.
    /// @exception IndexOutOfBounds for any larger index
    void remove(unsigned int index);

    /// Name of this kind of array in serialized class names. Lives to the end of the process.
    static const String& className();

    /// Says on standard output that there is nothing to read, and returns: reading is refused more gently than writing.
    void deserializeFromElement(const XmlElement* element) override;

    /// Refuses. @exception SerializationFailed always, naming @p name; @p out is left alone
    void serializeToXML(const String& name, String& out) override;

    const String& objectClassName() override { return className(); }

protected:
    void insertValueToContainer(int, const XmlElement*, String&) override {}

private:
    struct Block
    {
        unsigned int count;
        unsigned int capacity;
        // the element places follow without a gap
    };

    static constexpr unsigned int smallestCapacity = 8;

    /// Frees a block under construction, with what it holds, when the copy of an element throws.
    class BlockGuard;

    /// Puts a grown block in its place when the old one is gone, also when an element of that threw.
    class StoringGuard;

    /// Closes the gap of a removed element, also when the element's destructor throws.
    class GapGuard;

    /// Destroys what is left of the elements and frees their block, also when a destructor throws.
    class RestGuard;

    static unsigned int capacityFor(unsigned int required);
    static Block* allocate(unsigned int required, unsigned int reported);
    static Block* copyOf(const Block* source);
    static void copyElements(const Block* source, Block* target);
    static void destroyBlock(Block* block);

    static T* places(Block* block) { return reinterpret_cast<T*>(block + 1); }
    static const T* places(const Block* block) { return reinterpret_cast<const T*>(block + 1); }

    T* element(unsigned int index) { return places(m_block) + index; }
    const T* element(unsigned int index) const { return places(m_block) + index; }

    void appendGrown(const T& value);
    IndexOutOfBounds outOfBounds(unsigned int index) const;
    unsigned int checked(unsigned int index) const;
    void destroyBlock();

    Block* m_block; // null only between losing an old block and having a new one
};

template<>
QOR_API const String& Array<String>::className();
template<>
QOR_API const String& Array<unsigned int>::className();
} // namespace qor

#include "qor/arrayimplementation.h"
