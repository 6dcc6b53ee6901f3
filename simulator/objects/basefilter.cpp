#include "simulator/core/simulatedobject.h"
#include "simulator/objects/objects.h"

namespace sim
{
namespace
{
/// Can be activated and held. The machine has no filter graphs, so every operation returns E_NOTIMPL.
class BaseFilterObject final : public ComObject<IBaseFilter>
{
public:
    BaseFilterObject(const std::shared_ptr<State>& state, std::string deviceId) : ComObject(state, std::move(deviceId))
    {
    }

    HRESULT STDMETHODCALLTYPE GetClassID(CLSID* clsid) override
    {
        return refuse("IBaseFilter::GetClassID", outputs(clsid));
    }

    HRESULT STDMETHODCALLTYPE Stop() override { return refuse("IBaseFilter::Stop", outputs()); }

    HRESULT STDMETHODCALLTYPE Pause() override { return refuse("IBaseFilter::Pause", outputs()); }

    HRESULT STDMETHODCALLTYPE Run(REFERENCE_TIME) override { return refuse("IBaseFilter::Run", outputs()); }

    HRESULT STDMETHODCALLTYPE GetState(DWORD, FILTER_STATE* filterState) override
    {
        return refuse("IBaseFilter::GetState", outputs(filterState));
    }

    HRESULT STDMETHODCALLTYPE SetSyncSource(IReferenceClock*) override
    {
        return refuse("IBaseFilter::SetSyncSource", outputs());
    }

    HRESULT STDMETHODCALLTYPE GetSyncSource(IReferenceClock** clock) override
    {
        return refuse("IBaseFilter::GetSyncSource", outputs(clock));
    }

    HRESULT STDMETHODCALLTYPE EnumPins(IEnumPins** pins) override
    {
        return refuse("IBaseFilter::EnumPins", outputs(pins));
    }

    HRESULT STDMETHODCALLTYPE FindPin(LPCWSTR id, IPin** pin) override
    {
        return call(
            "IBaseFilter::FindPin", outputs(pin), [] { return E_NOTIMPL; }, id);
    }

    HRESULT STDMETHODCALLTYPE QueryFilterInfo(FILTER_INFO* info) override
    {
        return refuse("IBaseFilter::QueryFilterInfo", outputs(info));
    }

    HRESULT STDMETHODCALLTYPE JoinFilterGraph(IFilterGraph*, LPCWSTR) override
    {
        return refuse("IBaseFilter::JoinFilterGraph", outputs());
    }

    HRESULT STDMETHODCALLTYPE QueryVendorInfo(LPWSTR* info) override
    {
        return refuse("IBaseFilter::QueryVendorInfo", outputs(info));
    }

private:
    template<class Outputs>
    HRESULT refuse(const char* operation, const Outputs& results)
    {
        return call(operation, results, [] { return E_NOTIMPL; });
    }
};
}

IBaseFilter* makeBaseFilter(const std::shared_ptr<State>& state, std::string deviceId)
{
    return new BaseFilterObject(state, std::move(deviceId));
}
}
