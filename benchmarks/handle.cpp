#include "COM/comptr.h"
#include "countedobject.h"
#include "suites.h"

#include <memory>

namespace bench
{
namespace
{
using Handle = COMPtr<IUnknown>::pointer;

/// Copies a handle, and releases the copy.
template<class Pointer>
Comparisons::Work copying(const Pointer& handle)
{
    return [handle](benchmark::State& state)
    {
        for (auto _ : state)
        {
            const Pointer copy(handle);
            benchmark::DoNotOptimize(copy.get());
        }
    };
}

/// What a handle does, written by hand.
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
    const Handle handle(newCountedObject());
    comparisons.add("COM handle: copy, let go", copying(handle), "AddRef, Release", countByHand);
    comparisons.add("COM handle: copy, let go", copying(handle), "std::shared_ptr", copying(newSharedObject()));
}
}
