#include "simulator/core/systemmemory.h"

#include "platform/coreaudio.h"

#include <utility>

namespace sim::systemmemory
{
namespace
{
/// Is notified of every block that the process frees. COM has one such spy in a process; if another one is already
/// registered, blocks that users free stay in the census.
class FreeSpy final : public IMallocSpy
{
public:
    explicit FreeSpy(std::function<void(void*)> onFree) : m_onFree(std::move(onFree)) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override
    {
        const bool isKnown = IsEqualGUID(iid, __uuidof(IUnknown)) || IsEqualGUID(iid, __uuidof(IMallocSpy));
        *object = isKnown ? this : nullptr;
        return isKnown ? S_OK : E_NOINTERFACE;
    }

    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }

    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    SIZE_T STDMETHODCALLTYPE PreAlloc(SIZE_T bytes) override { return bytes; }

    void* STDMETHODCALLTYPE PostAlloc(void* memory) override { return memory; }

    void* STDMETHODCALLTYPE PreFree(void* memory, BOOL) override
    {
        m_onFree(memory);
        return memory;
    }

    void STDMETHODCALLTYPE PostFree(BOOL) override {}

    SIZE_T STDMETHODCALLTYPE PreRealloc(void* memory, SIZE_T bytes, void** passedOn, BOOL) override
    {
        m_onFree(memory);
        *passedOn = memory;
        return bytes;
    }

    void* STDMETHODCALLTYPE PostRealloc(void* memory, BOOL) override { return memory; }

    void* STDMETHODCALLTYPE PreGetSize(void* memory, BOOL) override { return memory; }

    SIZE_T STDMETHODCALLTYPE PostGetSize(SIZE_T bytes, BOOL) override { return bytes; }

    void* STDMETHODCALLTYPE PreDidAlloc(void* memory, BOOL) override { return memory; }

    int STDMETHODCALLTYPE PostDidAlloc(void*, BOOL, int answer) override { return answer; }

    void STDMETHODCALLTYPE PreHeapMinimize() override {}

    void STDMETHODCALLTYPE PostHeapMinimize() override {}

private:
    const std::function<void(void*)> m_onFree;
};
}

void* allocate(std::size_t bytes)
{
    return CoTaskMemAlloc(bytes);
}

void free(void* memory)
{
    CoTaskMemFree(memory);
}

void watchFrees(const std::function<void(void*)>& onFree)
{
    static FreeSpy* const spy = new FreeSpy(onFree); // stays with COM to the end
    CoRegisterMallocSpy(spy);
}
}
