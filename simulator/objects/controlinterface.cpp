#include "simulator/core/simulatedobject.h"
#include "simulator/objects/objects.h"

namespace sim
{
namespace
{
/// Describes one control of a part. It answers even if the machine has lost the part.
class ControlInterfaceObject final : public ComObject<IControlInterface>
{
public:
    ControlInterfaceObject(const std::shared_ptr<State>& state, std::string partId, UINT index, const IID& iid,
                           OptionalString controlName)
        : ComObject(state, std::move(partId)),
          m_index(index),
          m_iid(iid),
          m_controlName(std::move(controlName))
    {
    }

    std::string finerName() const override { return name() + " control " + std::to_string(m_index); }

    HRESULT STDMETHODCALLTYPE GetName(LPWSTR* name) override
    {
        return call("IControlInterface::GetName", outputs(name),
                    [&] { return storeText("IControlInterface::GetName", m_controlName, name); });
    }

    HRESULT STDMETHODCALLTYPE GetIID(GUID* iid) override
    {
        return call("IControlInterface::GetIID", outputs(iid),
                    [&]() -> HRESULT
                    {
                        *iid = m_iid;
                        return S_OK;
                    });
    }

private:
    const UINT m_index;
    const IID m_iid;
    const OptionalString m_controlName;
};
}

IControlInterface* makeControlInterface(const std::shared_ptr<State>& state, std::string partId, UINT index, IID iid,
                                        OptionalString controlName)
{
    return new ControlInterfaceObject(state, std::move(partId), index, iid, std::move(controlName));
}
}
