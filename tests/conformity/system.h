/// @file
/// The Core Audio that is checked: the system's or a simulated one.
#pragma once

#include "tests/conformity/held.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace conformity
{
/// One endpoint of the system.
struct EndpointInSystem
{
    std::string id;
    std::string name; ///< its full name, or its id
    EDataFlow flow = eRender;
    DWORD state = 0;
    Held<IMMDevice> device;

    bool isActive() const { return state == DEVICE_STATE_ACTIVE; }
};

/// The provider's endpoints and what a check may do to them. COM must be initialised on the thread.
class System
{
public:
    /// @param mayChange whether checks may set a level or a property, which they put back
    /// @param isAdministrator whether the account may write to property stores; no value if it is unknown
    System(bool mayChange, std::optional<bool> isAdministrator);

    bool mayChange() const;
    std::optional<bool> isAdministrator() const;

    /// A reference on the process's enumerator. Empty if the system refuses it.
    static Held<IMMDeviceEnumerator> createEnumerator();
    IMMDeviceEnumerator& enumerator();

    /// The endpoints of both flows in every state, as they were at the first call.
    const std::vector<EndpointInSystem>& endpoints();
    void eachActive(const std::function<void(const EndpointInSystem&)>& action);

    /// The device with that id; empty if it cannot be opened.
    Held<IMMDevice> device(const std::string& id);
    /// The device that the endpoint's first connector leads to; empty if there is none.
    Held<IMMDevice> adapter(const EndpointInSystem& endpoint);
    /// Calls @p action once for each adapter that an endpoint leads to.
    void eachAdapter(const std::function<void(const std::string& id, IMMDevice&, IDeviceTopology&)>& action);

private:
    const bool m_mayChange;
    const std::optional<bool> m_isAdministrator;
    Held<IMMDeviceEnumerator> m_enumerator;
    std::optional<std::vector<EndpointInSystem>> m_endpoints;
};

/// The interface I of a device; empty if it has none.
template<class I>
Held<I> activated(IMMDevice& device)
{
    Held<I> result;
    device.Activate(sim::InterfaceTraits<I>::iid(), CLSCTX_ALL, nullptr, result.putVoid());
    return result;
}

/// The string that a getter such as IMMDevice::GetId stores; empty if the call fails.
template<class Object, class Getter>
std::string textOf(Object& object, Getter getter)
{
    LPWSTR text = nullptr;
    const HRESULT result = (object.*getter)(&text);
    return SUCCEEDED(result) ? taken(text) : std::string();
}
}
