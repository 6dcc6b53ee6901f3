#include "simulator/windows/enumeratorfactory.h"

#include "simulator/core/state.h"
#include "simulator/core/watchedcall.h"
#include "simulator/objects/objects.h"

#include <atomic>
#include <memory>

namespace sim
{
namespace
{
std::atomic<bool> isServer{false};

class EnumeratorFactory final : public IClassFactory
{
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override
    {
        if (object == nullptr)
            return E_POINTER;
        const bool isKnown = IsEqualGUID(iid, __uuidof(IUnknown)) || IsEqualGUID(iid, __uuidof(IClassFactory));
        *object = isKnown ? this : nullptr;
        return isKnown ? S_OK : E_NOINTERFACE;
    }

    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }

    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override
    {
        return createCurrentEnumerator(outer, CLSCTX_INPROC_SERVER, iid, object);
    }

    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};
}

HRESULT createCurrentEnumerator(IUnknown* outer, DWORD context, REFIID iid, void** object)
{
    if (object != nullptr)
        *object = nullptr;
    const std::shared_ptr<State> state = currentState();
    if (state == nullptr)
        return object == nullptr ? E_POINTER : REGDB_E_CLASSNOTREG;
    const auto answer = [&]
    {
        if (!threadHasCom())
            return CO_E_NOTINITIALIZED;
        if ((context & CLSCTX_INPROC_SERVER) == 0)
            return REGDB_E_CLASSNOTREG;
        return outer != nullptr ? CLASS_E_NOAGGREGATION : createEnumerator(state, iid, object);
    };
    return watchedCall(*state, "CoCreateInstance", {}, nullptr, outputs(object), answer, __uuidof(MMDeviceEnumerator),
                       context, iid);
}

bool threadHasCom()
{
    APTTYPE type = APTTYPE_CURRENT;
    APTTYPEQUALIFIER qualifier = APTTYPEQUALIFIER_NONE;
    return CoGetApartmentType(&type, &qualifier) != CO_E_NOTINITIALIZED;
}

void serveAllApartments()
{
    isServer = true;
}

bool servesAllApartments()
{
    return isServer;
}

IClassFactory& enumeratorFactory()
{
    static IClassFactory* const factory = new EnumeratorFactory;
    return *factory;
}
}
