/// @file
/// The object model on hostile platforms.
#pragma once

#include "tests/hostile/platforms/platform.h"
#include "tests/support/librarytest.h"

namespace hostile
{
/// A test of the object model on platforms that lie, one after the other. At the end of each the machine holds nothing
/// but what the object model leaves there on purpose: the lists of neighbours, and ids of default endpoints.
class HostileLibraryTest : public support::LibraryTest
{
protected:
    void TearDown() override;

    /// Starts the machine and its lies.
    sim::Simulation& begin(const Platform& platform);
    /// From now on the platform tells the truth about its machine.
    void beHonest();
    /// Ends the module, and looks at what is left and at what it has cost.
    void end();

private:
    References m_references;
    bool m_isRunning = false;
};
}
