#include "qor/array.h"

#include "suites.h"
#include "texts.h"
#include "visited.h"

#include <numeric>
#include <string>
#include <vector>

namespace bench
{
namespace
{
template<class T>
void add(qor::Array<T>& sequence, const T& value)
{
    sequence.append(value);
}

template<class T>
void add(std::vector<T>& sequence, const T& value)
{
    sequence.push_back(value);
}

template<class Sequence, class T>
Sequence filled(const std::vector<T>& values)
{
    Sequence sequence;
    for (const T& value : values)
        add(sequence, value);
    return sequence;
}

/// Appends all values one by one to an empty sequence, and destroys it.
template<class Sequence, class T>
Comparisons::Work appending(const std::vector<T>& values)
{
    return [values](benchmark::State& state)
    {
        for (auto _ : state)
        {
            Sequence sequence;
            for (const T& value : values)
                add(sequence, value);
            benchmark::DoNotOptimize(&sequence[0]);
            benchmark::ClobberMemory();
        }
    };
}

template<class T>
void makeRoom(qor::Array<T>& sequence, std::size_t size)
{
    sequence.ensureCapacity(static_cast<unsigned int>(size));
}

template<class T>
void makeRoom(std::vector<T>& sequence, std::size_t size)
{
    sequence.reserve(size);
}

/// The same with room for all of them from the start.
template<class Sequence, class T>
Comparisons::Work appendingToRoom(const std::vector<T>& values)
{
    return [values](benchmark::State& state)
    {
        for (auto _ : state)
        {
            Sequence sequence;
            makeRoom(sequence, values.size());
            for (const T& value : values)
                add(sequence, value);
            benchmark::DoNotOptimize(&sequence[0]);
            benchmark::ClobberMemory();
        }
    };
}

/// Visits all elements, as callers do. Not inlined, so that the compiler optimises both loops alike.
template<class T>
[[gnu::noinline]] unsigned int sumOf(const qor::Array<T>& sequence)
{
    unsigned int sum = 0;
    for (unsigned int i = 0; i < sequence.size(); ++i)
        sum += visited(sequence[i]);
    return sum;
}

template<class T>
[[gnu::noinline]] unsigned int sumOf(const std::vector<T>& sequence)
{
    unsigned int sum = 0;
    for (const T& element : sequence)
        sum += visited(element);
    return sum;
}

template<class Sequence, class T>
Comparisons::Work iterating(const std::vector<T>& values)
{
    return [values](benchmark::State& state)
    {
        const Sequence sequence = filled<Sequence>(values);
        if (sumOf(sequence) != sumOf(values))
            state.SkipWithError("wrong sum");
        const Sequence* source = &sequence;
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(source);
            benchmark::DoNotOptimize(sumOf(*source));
        }
    };
}

/// Copies a sequence, and destroys the copy.
template<class Sequence, class T>
Comparisons::Work copying(const std::vector<T>& values)
{
    return [values](benchmark::State& state)
    {
        const Sequence sequence = filled<Sequence>(values);
        for (auto _ : state)
        {
            const Sequence copy(sequence);
            benchmark::DoNotOptimize(&copy[0]);
            benchmark::ClobberMemory();
        }
    };
}

template<class Ours, class Theirs>
void addOperations(Comparisons& comparisons, const std::string& elements, const std::string& theirName,
                   const std::vector<Ours>& ours, const std::vector<Theirs>& theirs)
{
    const auto name = [&](const char* operation)
    { return "array of " + std::to_string(ours.size()) + " " + elements + ": " + operation; };
    comparisons.add(name("append"), appending<qor::Array<Ours>>(ours), theirName,
                    appending<std::vector<Theirs>>(theirs));
    comparisons.add(name("append"), appending<qor::Array<Ours>>(ours), theirName + ", reserved",
                    appendingToRoom<std::vector<Theirs>>(theirs));
    comparisons.add(name("append to room"), appendingToRoom<qor::Array<Ours>>(ours), theirName + ", reserved",
                    appendingToRoom<std::vector<Theirs>>(theirs));
    comparisons.add(name("visit"), iterating<qor::Array<Ours>>(ours), theirName,
                    iterating<std::vector<Theirs>>(theirs));
    comparisons.add(name("copy"), copying<qor::Array<Ours>>(ours), theirName, copying<std::vector<Theirs>>(theirs));
}
}

void addNumberArrays(Comparisons& comparisons)
{
    for (const unsigned int size : {8u, 64u, 1000u})
    {
        std::vector<unsigned int> numbers(size);
        std::iota(numbers.begin(), numbers.end(), 1u);
        addOperations(comparisons, "numbers", "std::vector<unsigned>", numbers, numbers);
    }
}

void addTextArrays(Comparisons& comparisons)
{
    for (const unsigned int size : {8u, 64u, 1000u})
    {
        const std::vector<std::u16string> texts = endpointIds(size);
        addOperations(comparisons, "texts", "std::vector<std::u16string>", ownTexts(texts), texts);
    }
}
}
