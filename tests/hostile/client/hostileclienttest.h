/// @file
/// A System on hostile platforms.
#pragma once

#include "sonavit/system.h"
#include "tests/hostile/platforms/platform.h"
#include "tests/support/clienttest.h"

#include <memory>

namespace hostile
{
/// A test of the client layer on platforms that lie, one after the other. At the end of each the machine holds nothing
/// of the layer's.
class HostileClientTest : public support::ClientTest
{
protected:
    void TearDown() override;

    /// Starts the machine, its lies and a System that is polled, which has not asked anything yet.
    sonavit::System& begin(const Platform& platform);
    sonavit::System& begin(sim::Machine machine);
    sonavit::System& audio() { return *m_audio; }
    /// From now on the platform tells the truth about its machine.
    void beHonest();
    /// What a System sees that begins now.
    sonavit::Result<sonavit::Snapshot> newSnapshot();
    /// Ends the System, and looks at what is left and at what it has cost.
    void end();

private:
    References m_references;
    std::unique_ptr<sonavit::System> m_audio;
};
}
