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
    ControlInterfaceObject(const std::shared_ptr<State>& state, std::string partId, const IID& iid,
                           std::string interfaceName)
        : ComObject(state, std::move(partId)),
          m_iid(iid),
          m_interfaceName(std::move(interfaceName))
    {
    }

    HRESULT STDMETHODCALLTYPE GetName(LPWSTR* name) override
    {
        return call("IControlInterface::GetName", outputs(name),
                    [&] { return storeText("IControlInterface::GetName", m_interfaceName, name); });
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
    const IID m_iid;
    const std::string m_interfaceName;
};
}

IControlInterface* makeControlInterface(const std::shared_ptr<State>& state, std::string partId, IID iid,
                                        std::string interfaceName)
{
    return new ControlInterfaceObject(state, std::move(partId), iid, std::move(interfaceName));
}
}
