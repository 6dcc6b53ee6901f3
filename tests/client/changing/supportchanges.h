/// @file
/// What the tests of changes share: contexts, journal lists, and the platform's objects of a simulated machine.
#pragma once

#include "client/changing/volumechange.h"
#include "simulator/machine/valuetext.h"
#include "tests/support/clienttest.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace support
{
inline constexpr GUID someContext = {0x01234567, 0x89AB, 0xCDEF, {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}};

/// The recorded calls of the setters.
inline std::vector<std::string> setters(const sim::Simulation& simulation)
{
    std::vector<std::string> calls;
    for (const sim::JournalEntry& entry : const_cast<sim::Simulation&>(simulation).journal().entries())
    {
        const std::string& name = entry.operation;
        if (name.find("::Set") != std::string::npos || name.find("::VolumeStep") != std::string::npos ||
            name.find("::Commit") != std::string::npos)
            calls.push_back(entry.call());
    }
    return calls;
}

/// The end of a setter's arguments in the journal.
inline std::string withContext()
{
    return sim::guidText(someContext) + ")";
}

inline std::vector<double> decibelsOf(const sonavit::Volume& volume)
{
    std::vector<double> levels;
    for (const sonavit::Level& channel : volume.channels.value())
        levels.push_back(channel.decibels.value().value());
    return levels;
}

inline sim::EndpointVolume volumeOf(float minimum, float maximum, float step, std::vector<float> channels)
{
    sim::EndpointVolume volume;
    volume.minimum = minimum;
    volume.maximum = maximum;
    volume.step = step;
    volume.channels = std::move(channels);
    return volume;
}

/// A machine with one endpoint.
struct OneEndpoint
{
    OneEndpoint(float minimum, float maximum, float step, std::vector<float> channels)
        : OneEndpoint(volumeOf(minimum, maximum, step, std::move(channels)))
    {
    }
    explicit OneEndpoint(const sim::EndpointVolume& volume = {}) : endpoint(builder.card("Analog Audio").speaker())
    {
        endpoint.volume(volume);
    }

    sim::MachineBuilder builder;
    sim::EndpointBuilder endpoint;
};

/// A test that opens endpoints itself and changes them on its own thread.
class ChangingTest : public ClientTest
{
protected:
    void TearDown() override
    {
        m_enumerator.reset();
        m_com.reset();
        ClientTest::TearDown();
    }

    /// An endpoint, read completely; at most one enumerator is opened.
    sonavit::reading::EndpointReading open(const std::string& id)
    {
        if (!m_com)
            m_com.emplace();
        if (m_enumerator == nullptr)
            m_enumerator = std::make_unique<Enumerator>(sonavit::reading::createEnumerator().value());
        sonavit::reading::EndpointReading reading =
            sonavit::reading::openEndpoint(**m_enumerator, sonavit::EndpointId(id)).value();
        sonavit::reading::readEndpoint(reading);
        simulation().journal().clear();
        return reading;
    }

    sonavit::changing::ChangeContext context{someContext};

private:
    using Enumerator = sonavit::reading::Enumerator;

    std::optional<ComOnThisThread> m_com;
    std::unique_ptr<Enumerator> m_enumerator; // the handle's own destructor may throw
};
}
