#include "COM/comptr.h"
#include "countedobject.h"
#include "plainpointer.h"
#include "suites.h"

#include <utility>

namespace bench
{
namespace
{
using Handle = COMPtr<IUnknown>::pointer;
using Plain = PlainPointer<IUnknown>;

/// Copies a handle, and releases the copy.
template<class Pointer>
void copyHandle(benchmark::State& state)
{
    const Pointer handle(newCountedObject());
    for (auto _ : state)
    {
        const Pointer copy(handle);
        benchmark::DoNotOptimize(copy.get());
    }
}

/// Assigns two handles in turn.
template<class Pointer>
void assignHandle(benchmark::State& state)
{
    const Pointer first(newCountedObject());
    const Pointer second(newCountedObject());
    Pointer target(first);
    for (auto _ : state)
    {
        target = second;
        benchmark::DoNotOptimize(target.get());
        target = first;
        benchmark::DoNotOptimize(target.get());
    }
}

/// Hands a handle over to another one, and back.
template<class Pointer>
void moveHandle(benchmark::State& state)
{
    Pointer first(newCountedObject());
    for (auto _ : state)
    {
        Pointer second(std::move(first));
        benchmark::DoNotOptimize(second.get());
        first = std::move(second);
        benchmark::DoNotOptimize(first.get());
    }
}

/// What a copy of a handle does, written by hand.
void countByHand(benchmark::State& state)
{
    IUnknown* const object = newCountedObject();
    for (auto _ : state)
    {
        IUnknown* const copy = object;
        if (copy != nullptr)
            copy->AddRef();
        benchmark::DoNotOptimize(copy);
        if (copy != nullptr)
            copy->Release();
    }
    object->Release();
}
}

void addHandles(Comparisons& comparisons)
{
    const char* const theirName = "a plain pointer class";
    comparisons.add("COM handle: copy, let go", copyHandle<Handle>, "AddRef, Release", countByHand);
    comparisons.add("COM handle: copy, let go", copyHandle<Handle>, theirName, copyHandle<Plain>);
    comparisons.add("COM handle: assign twice", assignHandle<Handle>, theirName, assignHandle<Plain>);
    comparisons.add("COM handle: move, move back", moveHandle<Handle>, theirName, moveHandle<Plain>);
}
}
