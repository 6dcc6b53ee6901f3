/// @file
/// What programs do with the client layer while memory runs out.
#pragma once

#include "simulator/core/answeringscope.h"
#include "simulator/simulation.h"
#include "sonavit/client.h"

#include <memory>
#include <vector>

namespace faults::memory
{
/// A program with a System, which has read its first snapshot.
class ClientSubject
{
public:
    ClientSubject(sim::Simulation& simulation, sonavit::System& audio);
    ClientSubject(const ClientSubject&) = delete;
    ClientSubject& operator=(const ClientSubject&) = delete;
    virtual ~ClientSubject() = default;

    /// The operations, in which memory may run out.
    virtual void work() = 0;

protected:
    sonavit::System& audio() { return m_audio; }
    /// An active endpoint with volume and its card, as far as the machine has such.
    const sonavit::EndpointId& endpoint() const { return m_endpoint; }
    const sonavit::CardId& card() const { return m_card; }

    /// @p event is the machine's work; what the layer's callbacks do in it is not.
    template<class Event>
    void cause(const Event& event)
    {
        const sim::AnsweringScope machine(true);
        if (!m_endpoint.text().empty())
            event(m_simulation.events(), m_endpoint.text());
    }

private:
    sim::Simulation& m_simulation;
    sonavit::System& m_audio;
    sonavit::EndpointId m_endpoint;
    sonavit::CardId m_card;
};

struct ClientCase
{
    const char* name;
    std::unique_ptr<ClientSubject> (*make)(sim::Simulation& simulation, sonavit::System& audio);
};

template<class S>
ClientCase clientCaseOf(const char* name)
{
    return {name, [](sim::Simulation& simulation, sonavit::System& audio) -> std::unique_ptr<ClientSubject> {
                return std::make_unique<S>(simulation, audio);
            }};
}

std::vector<ClientCase> readingCases();
std::vector<ClientCase> changingCases();

/// Options of a System that is polled and that waits for as long as no computer is busy.
sonavit::System::Options polledOptions();
}
