#pragma once

#include "qor/exception.h"
#include "qor/export.h"
#include "qor/nullonscopeexit.h"
#include "qor/qorvalue.h"
#include "qor/serializable.h"
#include "qor/string.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

namespace qor
{
/// How an array that grows copies its elements, which it destroys next. A class whose copies are expensive may
/// specialize this, so that a copy takes over what the element would only destroy:
///
///     static constexpr bool takes = true;
///     static bool isPossible(const T* elements, unsigned int count) noexcept; // else all elements are copied as usual
///     static Taker of(T& element) noexcept; // from which T is built; must not throw: a half taken array is lost
template<class T>
struct GrowthCopy
{
    static constexpr bool takes = false;
};

/// Growable sequence with value semantics: a copy holds copies of all elements, and keeps the capacity of its source.
///
/// Count, capacity and elements share one block; a new array has a block for 8 elements, and growth doubles it.
/// Elements are copied when the array grows, and destroyed from the first to the last. An element type must be
/// trivially relocatable, as remove() moves elements byte by byte, and need no more than 8-byte alignment. No operation
/// locks.
///
/// An exception from an element's destructor reaches the caller after the remaining elements are destroyed and their
/// block is freed; a second exception meanwhile ends the process, as for a built-in array.
template<class T>
class QOR_SHARED_TYPE Array : public Serializable
{
public:
    /// An empty array of capacity 8. @exception NullPointer without memory for its block
    Array() : m_block(allocate(smallestCapacity, 0)) {}

    /// Copies each element in order; the capacity is that of @p other. @exception NullPointer without memory
    Array(const Array& other) : Serializable(other), m_block(copyOf(other.m_block)) {}

    /// Says that an array is taken from another one, see below.
    struct Taken
    {
    };

    /// Takes the block of @p other, whose elements stay where they are. Afterwards @p other is empty, without a block:
    /// its capacity is 0. There is no move constructor: a copy that is made without such a word is a copy.
    Array(Array& other, Taken) noexcept : m_block(other.m_block) { other.m_block = nullptr; }

    ~Array() noexcept(false) override { destroyBlock(); }

    /// Does nothing if both arrays have the same block. Otherwise destroys its own elements before it copies the
    /// others; if a copy fails, the array is empty and may be used again.
    Array& operator=(const Array& other);

    /// Number of elements.
    unsigned int size() const { return m_block == nullptr ? 0 : m_block->count; }

    /// Number of elements that the block has room for.
    unsigned int capacity() const { return m_block == nullptr ? 0 : m_block->capacity; }

    /// @exception IndexOutOfBounds (0, size - 1, index) if there is no such element; the array is unchanged
    T& operator[](unsigned int index) { return *element(checked(index)); }
    const T& operator[](unsigned int index) const { return *element(checked(index)); }

    /// The elements, for loops over all of them: end() - begin() is the size. Valid until the array grows or is
    /// cleared, assigned or destroyed; both are null if there is no block.
    T* begin() noexcept { return m_block == nullptr ? nullptr : places(m_block); }
    const T* begin() const noexcept { return m_block == nullptr ? nullptr : places(m_block); }
    T* end() noexcept { return m_block == nullptr ? nullptr : places(m_block) + m_block->count; }
    const T* end() const noexcept { return m_block == nullptr ? nullptr : places(m_block) + m_block->count; }

    /// Appends a copy of @p value, which may be an element of this array.
    /// @exception NullPointer if the array must grow and there is no memory; it is unchanged then
    void append(const T& value);
    void append(T& value) { append(static_cast<const T&>(value)); }

    /// Appends an element that is built in its place from @p arguments, which may refer to elements of this array. A
    /// full array grows: the new element is built first in the new block, then the others are copied. If an exception
    /// leaves the constructor or a copy, the array is unchanged; one that leaves the destructor of an old element
    /// leaves the array with the new element. Without memory the arguments are not used: an owner that is passed as a
    /// plain pointer stays with the caller.
    /// @return the new element, valid until the array grows or is cleared, assigned or destroyed
    /// @exception NullPointer if the array must grow and there is no memory; it is unchanged then
    template<class... Arguments>
    T& emplace(Arguments&&... arguments);

    /// Exchanges the elements and capacities of two arrays: no element is copied, moved or destroyed, and references to
    /// elements stay valid.
    void swap(Array& other) noexcept { std::swap(m_block, other.m_block); }

    /// Destroys all elements and makes a new block of capacity 8. @exception NullPointer without memory for it
    void clear();

    /// Destroys all elements and frees the block. Unlike clear() it needs no memory: it is for owners that end. The
    /// array may be used again; its capacity is 0 until it grows.
    void release() { destroyBlock(); }

    /// Whether an element equals @p value by its `operator==`.
    bool contains(const T& value) const;

    /// Makes room for @p required elements. A block has less than 4 GiB.
    /// @exception NullPointer without memory, or if the block would be too large; the array keeps its block then
    void ensureCapacity(unsigned int required);

    /// Destroys the element at @p index and moves the later ones down by one place.
    ///
    /// Required behaviour: an index equal to the size changes nothing, unlike in operator[]; callers rely on it. An
    /// exception from the element's destructor reaches the caller after the later elements have moved.
    /// @exception IndexOutOfBounds for a larger index
    void remove(unsigned int index);

    /// Name of this kind of array in serialized class names; valid until the process ends.
    static const String& className();

    /// Required behaviour: prints one line on standard output and returns, with the array unchanged. Only writing
    /// throws.
    void deserializeFromElement(const XmlElement* element) override;

    /// @exception SerializationFailed always, with @p name in its message; @p out is unchanged
    void serializeToXML(const String& name, String& out) override;

    const String& objectClassName() override { return className(); }

protected:
    void insertValueToContainer(int, const XmlElement*, String&) override {}

private:
    struct Block
    {
        unsigned int count;
        unsigned int capacity;
        // the elements follow without a gap
    };

    static constexpr unsigned int smallestCapacity = 8;

    /// Destroys an unfinished block with its elements if copying an element throws.
    class BlockGuard;

    /// Destroys an element that is in no block's count yet if copying another one throws.
    class ElementGuard;

    /// Stores a grown block after the old one is freed, even if one of its elements threw.
    class StoringGuard;

    /// Closes the gap of a removed element, even if its destructor throws.
    class GapGuard;

    /// Destroys the remaining elements and frees their block, even if a destructor throws.
    class RestGuard;

    static unsigned int capacityFor(unsigned int required);
    static Block* allocate(unsigned int required, unsigned int reported);
    static Block* allocatePlaces(unsigned int capacity, unsigned int reported);
    static Block* copyOf(const Block* source);
    static void copyElements(const Block* source, Block* target);
    static void copyGrownElements(Block* source, Block* target);
    static void destroyBlock(Block* block);

    static T* places(Block* block) { return reinterpret_cast<T*>(block + 1); }
    static const T* places(const Block* block) { return reinterpret_cast<const T*>(block + 1); }

    T* element(unsigned int index) { return places(m_block) + index; }
    const T* element(unsigned int index) const { return places(m_block) + index; }

    unsigned int ownIndex(const T& value) const;
    void appendGrown(const T& value);
    template<class... Arguments>
    T& emplaceGrown(Arguments&&... arguments);
    unsigned int checked(unsigned int index) const;
    void destroyBlock();

    /// Null while operator= or clear() has destroyed the old block and has no new one yet, and stays null if that
    /// operation fails. Null after destruction, and in an array that another one has taken from.
    Block* m_block;
};

template<>
QOR_API const String& Array<String>::className();
template<>
QOR_API const String& Array<unsigned int>::className();
}

#include "qor/arrayimplementation.h"
