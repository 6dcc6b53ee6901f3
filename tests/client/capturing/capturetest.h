/// @file
/// Captures of machines that run for the purpose.
#pragma once

#include "simulator/redirection.h"
#include "simulator/simulation.h"
#include "sonavit/capture.h"
#include "tests/support/questions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

/// A capture, and what it did.
struct Captured
{
    sonavit::Capture capture;
    sim::JournalEntries journal;
    sim::Census left;

    std::vector<std::string> lines() const;
    /// Call, object and code of each problem.
    std::vector<std::string> problems() const;
};

/// Tests of captures. Each machine runs for one capture or one examination alone.
class CaptureTest : public testing::Test
{
protected:
    /// Called with the running machine before a capture begins.
    using Preparation = std::function<void(sim::Simulation&)>;

    void SetUp() override;
    void TearDown() override;

    /// The result of a capture of a running machine.
    static sonavit::Result<sonavit::Capture> resultOf(sim::Simulation& simulation,
                                                      const sonavit::CaptureOptions& options = {});
    static Captured captured(const sim::Machine& machine, const Preparation& prepare = {});
    static support::Examination examined(const sim::Machine& machine);
    /// The machine of a capture; a failure of the test and an empty machine if it cannot be read.
    static sim::Machine replayed(const Captured& captured);
    /// Writes the machine to a file. @return how to look at it
    static std::string lookAt(const sim::Machine& machine);

private:
    std::unique_ptr<sim::Redirection> m_redirection;
};
