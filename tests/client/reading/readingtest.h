/// @file
/// What the tests of the readings have in common.
#pragma once

#include "client/reading/endpointreading.h"
#include "client/reading/grouping.h"
#include "simulator/machine/file/machinefile.h"
#include "tests/support/clienttest.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace reading = sonavit::reading;

/// Everything that a first snapshot consists of.
struct Everything
{
    reading::Listing listing;
    reading::Defaults defaults;
    reading::WaveIds waveIds;
    std::vector<sonavit::Card> cards;

    /// The reading of that endpoint; null if it was not listed.
    const reading::EndpointReading* find(const std::string& id) const;
    /// All problems of all kinds.
    std::vector<sonavit::Problem> problems() const;
};

/// A test that calls the readings on its own thread.
class ReadingTest : public support::ClientTest
{
protected:
    /// Starts a machine and creates its enumerator.
    sim::Simulation& start(sim::Machine machine);
    sim::Simulation& start(const std::string& machineName) { return start(sim::findMachine(machineName)); }
    void TearDown() override;

    IMMDeviceEnumerator& enumerator() { return **m_enumerator; }
    /// The endpoint with that id, opened and not read.
    reading::EndpointReading open(const std::string& id);
    /// The same, read.
    reading::EndpointReading read(const std::string& id);
    /// Reads all in the order of a first snapshot, and groups it.
    Everything readEverything();

private:
    std::optional<support::ComOnThisThread> m_com;
    std::unique_ptr<reading::Enumerator> m_enumerator;
};

/// The problems of one field.
std::vector<sonavit::Problem> problemsOf(const reading::EndpointReading& reading, sonavit::EndpointField field);

/// A witness that keeps what it sees, as "operation object 0xCODE".
class KeepingWitness final : public reading::Witness
{
public:
    void failed(std::string_view operation, std::string_view object, HRESULT code) override;

    std::vector<std::string> seen;
};

// Matchers of problems.
MATCHER_P2(IsFailureOf, operation, code, "")
{
    return arg.kind() == sonavit::Problem::Kind::platform && arg.operation() == operation &&
           arg.code() == static_cast<std::int32_t>(code);
}

namespace sonavit
{
inline namespace v1
{
inline void PrintTo(const Problem& problem, std::ostream* out)
{
    *out << problem.operation() << " on \"" << problem.object() << "\": " << problem.sentence();
}
}
}
