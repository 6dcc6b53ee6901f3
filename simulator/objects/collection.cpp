#include "simulator/core/simulatedobject.h"
#include "simulator/objects/objects.h"

namespace sim
{
namespace
{
/// A snapshot of endpoints: later changes of the machine do not affect it.
class CollectionObject final : public ComObject<IMMDeviceCollection>
{
public:
    CollectionObject(const std::shared_ptr<State>& state, std::string name, std::vector<std::string> deviceIds)
        : ComObject(state, std::move(name)),
          m_deviceIds(std::move(deviceIds))
    {
    }

    HRESULT STDMETHODCALLTYPE GetCount(UINT* count) override
    {
        return call("IMMDeviceCollection::GetCount", outputs(count),
                    [&]() -> HRESULT
                    {
                        *count = static_cast<UINT>(m_deviceIds.size());
                        return S_OK;
                    });
    }

    HRESULT STDMETHODCALLTYPE Item(UINT index, IMMDevice** device) override
    {
        const auto answer = [&]() -> HRESULT
        {
            if (index >= m_deviceIds.size())
                return E_INVALIDARG;
            *device = makeDevice(state(), m_deviceIds[index]);
            return *device == nullptr ? AUDCLNT_E_DEVICE_INVALIDATED : S_OK;
        };
        return call("IMMDeviceCollection::Item", outputs(device), answer, index);
    }

private:
    const std::vector<std::string> m_deviceIds;
};
}

IMMDeviceCollection* makeCollection(const std::shared_ptr<State>& state, std::string name,
                                    std::vector<std::string> deviceIds)
{
    return new CollectionObject(state, std::move(name), std::move(deviceIds));
}
}
