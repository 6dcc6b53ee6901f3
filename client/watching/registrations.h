/// @file
/// Registrations for the platform's callbacks. All of it runs on the worker.
#pragma once

#include "client/watching/listeners.h"
#include "platform/coreaudio.h"

#include <cstddef>

namespace sonavit::watching
{
/// How many listeners of this process are kept for good, because their unregistration failed and the platform may call
/// them at any time. Any thread.
std::size_t keptListeners() noexcept;

/// A registration from construction to end(): of Target with Source. The listener is released when its unregistration
/// has succeeded, and is kept for good otherwise.
template<class Source, class Target>
class Registration
{
public:
    using Operation = HRESULT (*)(Source& source, Target& listener);

    Registration() = default;
    /// Registers. The registration is empty if that fails, and the listener is released. @param listener is adopted
    Registration(Source& source, Target* listener, Operation enter, Operation leave);
    Registration(Registration&& other) noexcept;
    Registration& operator=(Registration&& other) noexcept; ///< ends the former one
    ~Registration();

    void end() noexcept;
    HRESULT result() const noexcept { return m_result; } ///< of the registration
    Source* source() const noexcept { return m_source; }
    explicit operator bool() const noexcept { return m_listener != nullptr; }

private:
    void swap(Registration& other) noexcept;

    Source* m_source = nullptr; ///< with one reference
    Target* m_listener = nullptr;
    Operation m_leave = nullptr;
    HRESULT m_result = S_OK;
};

using DeviceRegistration = Registration<IMMDeviceEnumerator, DeviceListener>;
using VolumeRegistration = Registration<IAudioEndpointVolume, VolumeListener>;
using ControlRegistration = Registration<IPart, ControlListener>;

extern template class Registration<IMMDeviceEnumerator, DeviceListener>;
extern template class Registration<IAudioEndpointVolume, VolumeListener>;
extern template class Registration<IPart, ControlListener>;

DeviceRegistration registerForDevices(IMMDeviceEnumerator& enumerator, const std::shared_ptr<Inbox>& inbox);
VolumeRegistration registerForVolume(IAudioEndpointVolume& volume, const std::shared_ptr<Inbox>& inbox,
                                     const EndpointId& endpoint);
/// @param control the interface of the control whose changes are meant
ControlRegistration registerForControl(IPart& part, const std::shared_ptr<Inbox>& inbox, std::uint32_t watch,
                                       const IID& control);
}
