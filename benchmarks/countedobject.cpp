#include "countedobject.h"

#include <atomic>

namespace bench
{
namespace
{
class CountedObject final : public IUnknown
{
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override
    {
        *object = nullptr;
        return E_NOINTERFACE;
    }

    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_count; }

    ULONG STDMETHODCALLTYPE Release() override
    {
        const ULONG left = --m_count;
        if (left == 0)
            delete this;
        return left;
    }

private:
    std::atomic<ULONG> m_count{1};
};
}

IUnknown* newCountedObject()
{
    return new CountedObject;
}

std::shared_ptr<IUnknown> newSharedObject()
{
    return std::make_shared<CountedObject>();
}
}
