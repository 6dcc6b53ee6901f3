/// A stream of operations on arrays, each of which is done to a std::vector as well: afterwards both have the same
/// elements, the capacity is that of the rule, each element is alive once, and a failed copy has changed nothing.
#include "qor/array.h"
#include "qor/exception.h"
#include "tests/fuzz/support/check.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace
{
using fuzz::check;

class CopyFailed
{
};

/// A number with memory of its own, so that the sanitizer sees an element that is lost, used after its end, or ended
/// twice. The copy of that number throws.
class Element
{
public:
    explicit Element(unsigned int number) : m_number(std::make_unique<unsigned int>(number)) { ++alive; }
    Element(const Element& other) : m_number(copyOf(other)) { ++alive; }
    Element& operator=(const Element&) = delete;
    ~Element() { --alive; }

    unsigned int number() const { return *m_number; }

    static inline long alive = 0;
    static inline long copiesUntilFailure = 0; ///< 0: no copy fails

private:
    static std::unique_ptr<unsigned int> copyOf(const Element& other)
    {
        if (copiesUntilFailure > 0 && --copiesUntilFailure == 0)
            throw CopyFailed();
        return std::make_unique<unsigned int>(other.number());
    }

    std::unique_ptr<unsigned int> m_number;
};

using Array = qor::Array<Element>;

/// What an array is: its elements, and the room that its block has. Without a block there is none.
struct Model
{
    std::vector<unsigned int> elements;
    unsigned int capacity = 8;

    /// Capacities are 8, 16, 32 and so on.
    void grow(unsigned int required)
    {
        if (capacity != 0 && capacity >= required)
            return;
        capacity = 8;
        while (capacity < required)
            capacity *= 2;
    }

    void append(unsigned int number)
    {
        elements.push_back(number);
        grow(static_cast<unsigned int>(elements.size()));
    }
};

struct Pair
{
    Array array;
    Model model;
};

using Pairs = std::array<Pair, 3>;

enum class Operation
{
    append,
    appendOwn,
    emplace,
    emplaceOwn,
    read,
    remove,
    clear,
    reserve,
    reserveTooMuch,
    assign,
    copy,
    swap,
    take,
    kMaxValue = take
};

void checkOutOfBounds(const qor::IndexOutOfBounds& refusal, const Model& model, unsigned int index)
{
    check(refusal.low() == 0, "the lowest index is 0");
    check(refusal.high() == static_cast<int>(model.elements.size()) - 1, "the highest index is the last");
    check(refusal.index() == static_cast<int>(index), "the index is the one that was asked for");
}

void read(const Pair& pair, unsigned int index)
{
    try
    {
        const unsigned int number = pair.array[index].number();
        check(index < pair.model.elements.size(), "operator[] refuses an index outside");
        check(number == pair.model.elements[index], "operator[] gives the element");
    }
    catch (const qor::IndexOutOfBounds& refusal)
    {
        check(index >= pair.model.elements.size(), "operator[] refuses nothing else");
        checkOutOfBounds(refusal, pair.model, index);
    }
}

/// An index equal to the size changes nothing.
void remove(Pair& pair, unsigned int index)
{
    std::vector<unsigned int>& elements = pair.model.elements;
    try
    {
        pair.array.remove(index);
        check(index <= elements.size(), "remove() refuses an index outside");
        if (index < elements.size())
            elements.erase(elements.begin() + index);
    }
    catch (const qor::IndexOutOfBounds& refusal)
    {
        check(index > elements.size(), "remove() refuses nothing else");
        checkOutOfBounds(refusal, pair.model, index);
    }
}

/// No block has 4 GiB.
void reserveTooMuch(Array& array, unsigned int required)
{
    try
    {
        array.ensureCapacity(required);
        check(false, "a block of 4 GiB is refused");
    }
    catch (const qor::NullPointer& refusal)
    {
        check(refusal.message().toUtf8() == "Asked for array of size: " + std::to_string(required),
              "the refusal names the number");
    }
}

/// Makes the change in the model last, so that a change that fails has not happened there.
void change(Operation operation, Pair& target, Pair& other, unsigned int number)
{
    Array& array = target.array;
    std::vector<unsigned int>& elements = target.model.elements;
    const unsigned int own = elements.empty() ? 0 : number % static_cast<unsigned int>(elements.size());
    switch (operation)
    {
    case Operation::append:
        array.append(Element(number));
        target.model.append(number);
        break;
    case Operation::appendOwn:
        if (elements.empty())
            break;
        array.append(array[own]);
        target.model.append(elements[own]);
        break;
    case Operation::emplace:
        check(array.emplace(number).number() == number, "emplace() gives the new element");
        target.model.append(number);
        break;
    case Operation::emplaceOwn:
        if (elements.empty())
            break;
        array.emplace(array[own]);
        target.model.append(elements[own]);
        break;
    case Operation::read:
        read(target, number);
        break;
    case Operation::remove:
        remove(target, number);
        break;
    case Operation::clear:
        array.clear();
        target.model = Model();
        break;
    case Operation::reserve:
        array.ensureCapacity(number);
        target.model.grow(number);
        break;
    case Operation::reserveTooMuch:
        reserveTooMuch(array, 0x20000001U + number * 0xD00000U);
        break;
    case Operation::assign:
        array = other.array;
        target.model = Model(other.model);
        break;
    case Operation::copy:
    {
        const Array copy(other.array);
        check(copy.capacity() == other.model.capacity, "a copy has the capacity of its source");
        array = copy;
        target.model = Model(other.model);
        break;
    }
    case Operation::swap:
        array.swap(other.array);
        std::swap(target.model, other.model);
        break;
    case Operation::take:
    {
        Array taker(array, Array::Taken());
        check(array.size() == 0 && array.capacity() == 0, "an array that was taken from has nothing");
        array = taker;
        break;
    }
    }
}

void checkElements(const Pair& pair)
{
    const std::vector<unsigned int>& elements = pair.model.elements;
    check(pair.array.size() == elements.size(), "as many elements");
    check(std::equal(pair.array.begin(), pair.array.end(), elements.begin(), elements.end(),
                     [](const Element& element, unsigned int number) { return element.number() == number; }),
          "the same elements");
    check(pair.array.capacity() == pair.model.capacity, "the capacity of the rule");
}

/// An array that was assigned to is empty then and has no block; any other one is as it was, but a block that has grown
/// before may stay.
void settleFailure(Operation operation, Pair& target)
{
    const bool isReplaced =
        operation == Operation::assign || operation == Operation::copy || operation == Operation::take;
    if (isReplaced && target.array.capacity() == 0)
        target.model = Model{{}, 0};
    const auto size = static_cast<unsigned int>(target.model.elements.size());
    if (target.array.capacity() != target.model.capacity)
        target.model.grow(size + 1);
}
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    {
        Pairs pairs;
        while (input.remaining_bytes() > 0)
        {
            const auto operation = input.ConsumeEnum<Operation>();
            const auto places = input.ConsumeIntegral<std::uint8_t>();
            const auto number = input.ConsumeIntegral<std::uint8_t>();
            Pair& target = pairs[places % pairs.size()];
            Pair& other = pairs[places / pairs.size() % pairs.size()];
            Element::copiesUntilFailure = places >= 240 ? 1 + number % 16 : 0;

            try
            {
                change(operation, target, other, number);
            }
            catch (const CopyFailed&)
            {
                settleFailure(operation, target);
            }
            Element::copiesUntilFailure = 0;

            long elements = 0;
            for (const Pair& pair : pairs)
            {
                checkElements(pair);
                elements += static_cast<long>(pair.model.elements.size());
            }
            check(Element::alive == elements, "each element is alive once");
        }
    }
    check(Element::alive == 0, "no element outlives its array");
    return 0;
}
