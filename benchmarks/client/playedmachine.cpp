#include "playedmachine.h"

#include "client/reading/endpointreading.h"
#include "client/worker/worker.h"
#include "machines.h"

#include <memory>
#include <stdexcept>

namespace bench
{
PlayedMachine::PlayedMachine(const std::string& name)
    : m_redirection(reinterpret_cast<const void*>(&sonavit::reading::createEnumerator)),
      m_simulation(machineNamed(name))
{
    m_simulation.deliverAtOnce(true);
    sonavit::worker::replaceClock(std::make_shared<StandingClock>());
}

PlayedMachine::~PlayedMachine()
{
    sonavit::worker::replaceClock(nullptr);
}

sonavit::System::Options PlayedMachine::options()
{
    sonavit::System::Options options;
    options.delivery = sonavit::Delivery::poll;
    options.onWorkerStart = [this] { static_cast<void>(m_simulation.registerOnThisThread()); };
    return options;
}

std::string PlayedMachine::activeOutput() const
{
    for (const sim::Endpoint& endpoint : m_simulation.machine().endpoints)
    {
        if (endpoint.flow == eRender && endpoint.state == DEVICE_STATE_ACTIVE && endpoint.volume)
            return endpoint.id;
    }
    throw std::runtime_error("the machine has no active output");
}

std::size_t PlayedMachine::calls()
{
    settle();
    const std::size_t calls = m_simulation.journal()
                                  .entries()
                                  .without("CoTaskMemFree")
                                  .without("PropVariantClear")
                                  .without("IMMNotificationClient::*")
                                  .without("IAudioEndpointVolumeCallback::*")
                                  .size();
    m_simulation.journal().clear();
    return calls;
}

void PlayedMachine::settle()
{
    if (const auto worker = sonavit::worker::Worker::current())
        worker->settle();
}
}
