#pragma once

#include "sonavit/system.h"
#include "tests/support/librarytest.h"
#include "tools/sonavit/program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace support
{
/// What a call of the program left behind.
struct Answer
{
    int code = -1;
    std::string out;
    std::string err;

    std::vector<std::string> lines() const;
};

/// Makes the machine answer the thread that calls, which Windows wants on each thread.
void meet(sim::Simulation& simulation);

/// Sees what a monitor of the same process sees, at about the same time: all Systems of a process share the thread that
/// asks the platform. It must end before the machine.
class Observer
{
public:
    explicit Observer(sim::Simulation& simulation);

    /// Waits until something changes, at most that long.
    void wait(std::chrono::milliseconds longest);

private:
    sonavit::System m_audio;
    sonavit::Subscription m_subscription;
};

/// A test of the program's commands, called in this process.
///
/// After run(machine) a call without --machine works on that machine, as on the system's own Core Audio, and at the end
/// the machine must hold nothing but what the library leaves there on purpose.
class ProgramTest : public LibraryTest
{
protected:
    ProgramTest();
    void TearDown() override;

    /// As that of the base.
    sim::Simulation& run(sim::Machine machine);

    /// What call() uses, with other streams.
    sonavit::program::Environment environment(std::ostream& out, std::ostream& err);

    Answer call(const std::vector<std::string>& words);

    unsigned width = 0; ///< of the terminal
    bool hasColours = false;
    bool isTerminal = false;
    std::function<bool(std::chrono::milliseconds)> pause = [](std::chrono::milliseconds) { return true; };
    std::function<std::shared_ptr<void>()> deferEnd = [] { return nullptr; };
    std::function<sim::Machine(const std::string&)> findMachine = sim::findMachine; ///< for --machine

    /// As in Environment; a test with a simulation of its own registers that one.
    std::function<void()> onWorkerStart = [this]
    {
        if (m_isRunning)
            meet(simulation());
    };
    std::string input; ///< what the commands find on standard input

private:
    long directSoundTexts();
    long unfreedValues();
    std::vector<sim::JournalEntry> succeededHere(const std::string& operation);

    bool m_isRunning = false;
};

/// What the program says on standard error if the system denies its account the properties of that many endpoints.
std::string unreadableNote(std::size_t endpoints);

/// The name of a machine that ships, as a test may be called.
std::string testName(std::string machine);

/// One card with a speaker that is the default (stereo, -18 dB of -65.25 to 0), unplugged headphones and a muted
/// microphone; the speaker's wire has a volume and a mute in the hardware.
sim::Machine smallMachine();

/// Ids of its endpoints.
std::string speakerId();
std::string headphonesId();
std::string microphoneId();

/// The card's ids.
std::string smallCardId();
std::string smallInstanceId();
}
