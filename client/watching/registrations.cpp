#include "client/watching/registrations.h"

#include "client/reading/handle.h"

#include <atomic>
#include <utility>

namespace sonavit::watching
{
namespace
{
std::atomic<std::size_t> kept{0};

/// The one that was kept last; the others follow it. What is kept stays within reach: it is not lost.
template<class Target>
std::atomic<Target*> latestKept{nullptr};

template<class Target>
void keep(Target* listener) noexcept
{
    ++kept;
    Target* former = latestKept<Target>.load();
    do
        listener->keepBefore(former);
    while (!latestKept<Target>.compare_exchange_weak(former, listener));
}
}

std::size_t keptListeners() noexcept
{
    return kept.load();
}

template<class Source, class Target>
Registration<Source, Target>::Registration(Source& source, Target* listener, Operation enter, Operation leave)
    : m_source(&source),
      m_listener(listener),
      m_leave(leave)
{
    source.AddRef();
    try
    {
        m_result = enter(source, *listener);
    }
    catch (...)
    {
        keep(std::exchange(m_listener, nullptr)); // it is not known how far the registration has come
        reading::release(&source);
        throw;
    }
    if (SUCCEEDED(m_result))
        return;
    std::exchange(m_listener, nullptr)->Release();
    reading::release(std::exchange(m_source, nullptr));
}

template<class Source, class Target>
Registration<Source, Target>::Registration(Registration&& other) noexcept
{
    swap(other);
}

template<class Source, class Target>
Registration<Source, Target>& Registration<Source, Target>::operator=(Registration&& other) noexcept
{
    if (this != &other)
    {
        end();
        swap(other);
    }
    return *this;
}

template<class Source, class Target>
Registration<Source, Target>::~Registration()
{
    end();
}

template<class Source, class Target>
void Registration<Source, Target>::end() noexcept
{
    m_result = S_OK;
    if (m_listener == nullptr)
        return;
    Target* const listener = std::exchange(m_listener, nullptr);
    Source* const source = std::exchange(m_source, nullptr);
    bool hasEnded = false;
    try
    {
        hasEnded = SUCCEEDED(m_leave(*source, *listener));
    }
    catch (...)
    {
        hasEnded = false;
    }
    if (hasEnded)
        listener->Release();
    else
        keep(listener);
    reading::release(source);
}

template<class Source, class Target>
void Registration<Source, Target>::swap(Registration& other) noexcept
{
    std::swap(m_source, other.m_source);
    std::swap(m_listener, other.m_listener);
    std::swap(m_leave, other.m_leave);
    std::swap(m_result, other.m_result);
}

template class Registration<IMMDeviceEnumerator, DeviceListener>;
template class Registration<IAudioEndpointVolume, VolumeListener>;
template class Registration<IPart, ControlListener>;

DeviceRegistration registerForDevices(IMMDeviceEnumerator& enumerator, const std::shared_ptr<Inbox>& inbox)
{
    return DeviceRegistration(
        enumerator, new DeviceListener(inbox),
        [](IMMDeviceEnumerator& source, DeviceListener& listener)
        { return source.RegisterEndpointNotificationCallback(&listener); },
        [](IMMDeviceEnumerator& source, DeviceListener& listener)
        { return source.UnregisterEndpointNotificationCallback(&listener); });
}

VolumeRegistration registerForVolume(IAudioEndpointVolume& volume, const std::shared_ptr<Inbox>& inbox,
                                     const EndpointId& endpoint)
{
    return VolumeRegistration(
        volume, new VolumeListener(inbox, endpoint),
        [](IAudioEndpointVolume& source, VolumeListener& listener)
        { return source.RegisterControlChangeNotify(&listener); },
        [](IAudioEndpointVolume& source, VolumeListener& listener)
        { return source.UnregisterControlChangeNotify(&listener); });
}

ControlRegistration registerForControl(IPart& part, const std::shared_ptr<Inbox>& inbox, std::uint32_t watch,
                                       const IID& control)
{
    return ControlRegistration(
        part, new ControlListener(inbox, watch, control),
        [](IPart& source, ControlListener& listener)
        { return source.RegisterControlChangeCallback(listener.control(), &listener); },
        [](IPart& source, ControlListener& listener) { return source.UnregisterControlChangeCallback(&listener); });
}
}
